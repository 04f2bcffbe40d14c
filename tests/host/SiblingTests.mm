#include "ChildProcess.h"

#include "host/core/Core.h"
#include "host/family/Siblings.h"

#include "tests/host/FakePlugin.h"

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include <cstdlib>

/// Answers no reason at all.
@interface ReasonlessException : NSException
@end

@implementation ReasonlessException
- (NSString *)reason {
    return nil;
}
@end

namespace {

using namespace host;
using testing::IsEmpty;

ObjectHandle wrap(NSException *exception) {
    using Message = ObjectHandle (*)(id, SEL, id);
    const SEL selector = @selector(NewNSExceptionZKT:);
    const Class receiver = [NSException class];
    return reinterpret_cast<Message>(reinterpret_cast<void (*)()>(
        [receiver methodForSelector:selector]))(receiver, selector, exception);
}

bool responds(SEL selector) {
    return [NSException respondsToSelector:selector];
}

NSException *sampleException() {
    return [NSException exceptionWithName:@"N" reason:@"R" userInfo:nil];
}

TEST(Siblings, WrapNSExceptions) {
    Host host;
    NSException *exception = sampleException();
    const NSUInteger before = [exception retainCount];
    const ObjectHandle object = wrap(exception);
    EXPECT_EQ(host.name(object), "NSExceptionZKT#1");
    EXPECT_EQ(host.references(object), 1);
    EXPECT_EQ(*static_cast<NSException **>(host.dataOf(object)), exception);
    EXPECT_EQ([exception retainCount], before + 1);
    EXPECT_THAT(host.calls(), IsEmpty()) << "the sibling is no part of the plug-in";
    raiseException(object);
    unlockObject(object);
    {
        const auto raised = host.takePendingException();
        ASSERT_TRUE(raised);
        EXPECT_EQ(raised->className, "NSExceptionZKT");
        EXPECT_EQ(raised->cocoaName, "N");
        EXPECT_EQ(raised->cocoaReason, "R");
        EXPECT_EQ(raised->message, "R");
    }
    EXPECT_EQ([exception retainCount], before);
}

TEST(Siblings, ExceptionsWithoutAReasonHaveNoMessage) {
    Host host;
    NSException *exception = [[[ReasonlessException alloc] initWithName:@"N"
                                                                 reason:@"unread"
                                                               userInfo:nil] autorelease];
    const ObjectHandle object = wrap(exception);
    raiseException(object);
    unlockObject(object);
    const auto raised = host.takePendingException();
    EXPECT_FALSE(raised->message);
    EXPECT_EQ(raised->cocoaName, "N");
    EXPECT_EQ(raised->cocoaReason, "");
}

TEST(Siblings, CanRefuseToWrap) {
    Host host;
    siblings::setExceptionMaking(siblings::ExceptionMaking::answerNil);
    EXPECT_EQ(wrap(sampleException()), nullptr);
    siblings::setExceptionMaking(siblings::ExceptionMaking::wrap);
    host.hideClass("NSExceptionZKT");
    EXPECT_EQ(wrap(sampleException()), nullptr);
    EXPECT_THAT(host.liveObjects(), IsEmpty());
}

TEST(Siblings, CanRaiseInsteadOfWrapping) {
    Host host;
    siblings::setExceptionMaking(siblings::ExceptionMaking::raise);
    NSString *name = nil;
    @try {
        wrap(sampleException());
    } @catch (NSException *exception) {
        name = [exception name];
    }
    siblings::setExceptionMaking(siblings::ExceptionMaking::wrap);
    EXPECT_TRUE([name isEqualToString:@"SiblingFailure"]);
}

TEST(Siblings, CountWhatTheyAreSent) {
    Host host;
    siblings::resetCounts();
    [NSException performSelector:@selector(PrepareNSExceptionZKT)];
    EXPECT_EQ(siblings::prepareCount(), 1U);
    [NSException performSelector:@selector(GetInstancesDictionaryZKT)];
    EXPECT_EQ(siblings::registryRequests(), 1U);
    unlockObject(wrap(sampleException()));
    EXPECT_EQ(siblings::makeCount(), 1U);
    siblings::resetCounts();
    EXPECT_EQ(siblings::makeCount() + siblings::prepareCount() + siblings::registryRequests(), 0U);
}

TEST(Registry, KeysByIdentityWithoutReferences) {
    Host host;
    void *registry = [NSException performSelector:@selector(GetInstancesDictionaryZKT)];
    EXPECT_EQ(registry, siblings::registry());
    NSMutableString *first = [NSMutableString stringWithString:@"same"];
    NSMutableString *second = [NSMutableString stringWithString:@"same"];
    const NSUInteger before = [first retainCount];
    int value = 0;
    CFDictionarySetValue(static_cast<CFMutableDictionaryRef>(registry), first, &value);
    EXPECT_EQ([first retainCount], before);
    EXPECT_EQ(siblings::registered(first), &value);
    EXPECT_EQ(siblings::registered(second), nullptr);
    EXPECT_EQ(siblings::registryCount(), 1U);
    CFDictionaryRemoveValue(static_cast<CFMutableDictionaryRef>(registry), first);
    EXPECT_EQ(siblings::registryCount(), 0U);
}

// What NSException was given stays for the life of the process, so that these need one of their
// own each. Where the program cannot start itself again, the runner has to give them theirs.

[[noreturn]] void endWith(bool success) {
    std::_Exit(success ? 0 : 1);
}

struct SiblingPresence : testing::Test {
    SiblingPresence() {
        if (!isEmulated())
            GTEST_FLAG_SET(death_test_style, "threadsafe");
    }
};

using SiblingPresenceDeathTest = SiblingPresence;

TEST_F(SiblingPresenceDeathTest, NoneAreThereUntilInstalled) {
    const auto body = [] {
        Host host{{.siblings = ::host::Siblings::none}};
        bool right = !responds(@selector(NewNSExceptionZKT:)) &&
                     !responds(@selector(PrepareNSExceptionZKT)) &&
                     !responds(@selector(GetInstancesDictionaryZKT)) &&
                     pluginNewInstance("NSExceptionZKT") == nullptr;
        siblings::installRegistry();
        right = right && responds(@selector(GetInstancesDictionaryZKT)) &&
                !responds(@selector(PrepareNSExceptionZKT));
        siblings::installExceptions(Core::current());
        right = right && responds(@selector(NewNSExceptionZKT:)) &&
                responds(@selector(PrepareNSExceptionZKT)) && wrap(sampleException()) != nullptr;
        endWith(right);
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

TEST_F(SiblingPresenceDeathTest, ExceptionsAlone) {
    const auto body = [] {
        Host host{{.siblings = ::host::Siblings::exceptions}};
        endWith(responds(@selector(NewNSExceptionZKT:)) &&
                !responds(@selector(GetInstancesDictionaryZKT)));
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

TEST_F(SiblingPresenceDeathTest, RegistryAlone) {
    const auto body = [] {
        Host host{{.siblings = ::host::Siblings::registry}};
        endWith(!responds(@selector(NewNSExceptionZKT:)) &&
                !responds(@selector(PrepareNSExceptionZKT)) &&
                responds(@selector(GetInstancesDictionaryZKT)));
    };
    EXPECT_EXIT(body(), testing::ExitedWithCode(0), "");
}

} // namespace
