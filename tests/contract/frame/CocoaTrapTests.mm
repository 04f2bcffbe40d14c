// NSExceptions inside an operation: logged once, raised in the host, replaced by the fallback.

#import "ActingScene.h"

#include "host/core/Core.h"
#include "host/family/Siblings.h"

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

#include <gmock/gmock.h>

#include <optional>
#include <string>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

@interface SpecialException : NSException
@end
@implementation SpecialException
@end

/// Has neither name nor reason, for which Foundation would put words of its own.
@interface NamelessException : NSException
@end

@implementation NamelessException

- (NSString *)name {
    return nil;
}

- (NSString *)reason {
    return nil;
}

@end

/// Raises another exception when the log line asks it for one of its parts.
@interface TreacherousException : NSException {
@public
    SEL treacherous;
}
@end

@implementation TreacherousException

static void betray(TreacherousException *self, SEL selector) {
    if (sel_isEqual(self->treacherous, selector))
        raiseNSException("Second", [NSStringFromSelector(selector) UTF8String]);
}

- (NSString *)name {
    betray(self, _cmd);
    return [super name];
}

- (NSString *)reason {
    betray(self, _cmd);
    return [super reason];
}

- (NSDictionary *)userInfo {
    betray(self, _cmd);
    return [super userInfo];
}

@end

namespace {

void raiseNR() {
    raiseNSException("N", "R");
}

// "Name: reason" of the NSException that leaves the body, if one does.
template <class Body>
std::optional<std::string> leavingException(Body body) {
    @try {
        body();
    } @catch (NSException *exception) {
        return std::string([[exception name] UTF8String]) + ": " + [[exception reason] UTF8String];
    }
    return std::nullopt;
}

// What the body writes to stderr.
template <class Body>
std::string logOf(Body body) {
    testing::internal::CaptureStderr();
    body();
    return testing::internal::GetCapturedStderr();
}

// The message of a log line, behind the date and process that Foundation puts before it.
std::string messageIn(const std::string &log) {
    const auto prefixEnd = log.find("] ");
    return prefixEnd == std::string::npos ? log : log.substr(prefixEnd + 2);
}

} // namespace

TEST(CocoaTrap, LetsAnOperationWithoutAnExceptionAnswer) {
    ActingScene scene([] {});
    const std::string log =
        logOf([&] { EXPECT_EQ(scene.host.get(scene.info, "processIdentifier").integer(), 7); });
    EXPECT_EQ(log, "");
    EXPECT_THAT(scene.host.calls(), IsEmpty());
}

TEST(CocoaTrap, LogsOneLine) {
    ActingScene scene(raiseNR);
    const std::string log = logOf([&] { scene.host.get(scene.info, "processIdentifier"); });
    EXPECT_EQ(messageIn(log), "A N: R, Info: (null)\n");
}

TEST(CocoaTrap, LogsTheUserInfo) {
    NSDictionary *info = [NSDictionary dictionaryWithObject:@"value" forKey:@"key"];
    ActingScene scene(
        [&] { [[NSException exceptionWithName:@"N" reason:@"R" userInfo:info] raise]; });
    const std::string log = logOf([&] { scene.host.get(scene.info, "processIdentifier"); });
    EXPECT_EQ(messageIn(log),
              "A N: R, Info: " + std::string([[info description] UTF8String]) + "\n");
}

TEST(CocoaTrap, LogsWhatTheExceptionLacks) {
    ActingScene scene(
        [] { [[NamelessException exceptionWithName:@"N" reason:nil userInfo:nil] raise]; });
    const std::string log = logOf([&] { scene.host.get(scene.info, "processIdentifier"); });
    EXPECT_EQ(messageIn(log), "A (null): (null), Info: (null)\n");
}

TEST(CocoaTrap, TakesPercentSignsInTheExceptionAsText) {
    ActingScene scene([] { raiseNSException("%@ %s", "100 %n"); });
    const std::string log = logOf([&] { scene.host.get(scene.info, "processIdentifier"); });
    EXPECT_EQ(messageIn(log), "A %@ %s: 100 %n, Info: (null)\n");
}

TEST(CocoaTrap, RaisesOneHostExceptionAroundTheNSException) {
    ActingScene scene(raiseNR);
    const host::Outcome outcome = scene.host.get(scene.info, "processIdentifier");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
    EXPECT_EQ(outcome.exception->cocoaName, "N");
    EXPECT_EQ(outcome.exception->cocoaReason, "R");
    EXPECT_EQ(host::siblings::makeCount(), 1u);
    EXPECT_THAT(scene.host.strayExceptions(), IsEmpty());
}

TEST(CocoaTrap, RaisesBeforeItGivesUpItsReference) {
    ActingScene scene(raiseNR);
    scene.host.get(scene.info, "processIdentifier");
    EXPECT_THAT(scene.host.calls(), ElementsAre("RuntimeRaiseException(NSExceptionZKT#2)",
                                                "REALUnlockObject(NSExceptionZKT#2)"));
}

TEST(CocoaTrap, LeavesTheHostTheOnlyReference) {
    ActingScene scene(raiseNR);
    const host::Outcome outcome = scene.host.get(scene.info, "processIdentifier");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(scene.host.references(outcome.exception->object.handle()), 1);
}

TEST(CocoaTrap, GivesTheFallbackOfTheOperation) {
    ActingScene scene(raiseNR);
    EXPECT_EQ(scene.host.get(scene.info, "processIdentifier").value.integer(), 0);
    EXPECT_EQ(scene.host.get(scene.info, "thermalState").value.integer(), -1);
    EXPECT_EQ(scene.host.get(scene.info, "systemUptime").value.number(), 0.0);
    EXPECT_TRUE(scene.host.get(scene.info, "hostName").value.isNil());
}

TEST(CocoaTrap, RaisesForEachException) {
    ActingScene scene(raiseNR);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(scene.host.get(scene.info, "processIdentifier").raised());
    EXPECT_EQ(host::siblings::makeCount(), 3u);
}

TEST(CocoaTrap, CatchesSubclassesOfNSException) {
    ActingScene scene(
        [] { [[SpecialException exceptionWithName:@"N" reason:@"R" userInfo:nil] raise]; });
    std::string log;
    log = logOf([&] { EXPECT_TRUE(scene.host.get(scene.info, "processIdentifier").raised()); });
    EXPECT_EQ(messageIn(log), "A N: R, Info: (null)\n");
}

TEST(CocoaTrap, KeepsTheReferencesOfTheNSException) {
    NSException *exception = [[NSException alloc] initWithName:@"N" reason:@"R" userInfo:nil];
    ActingScene scene([&] { [exception raise]; });
    const NSUInteger before = [exception retainCount];
    for (int i = 0; i < 3; ++i)
        scene.host.get(scene.info, "processIdentifier");
    EXPECT_EQ([exception retainCount], before);
    [exception release];
}

TEST(CocoaTrap, RaisesNothingWhenTheSiblingMakesNothing) {
    ActingScene scene(raiseNR);
    host::siblings::setExceptionMaking(host::siblings::ExceptionMaking::answerNil);
    const std::string log = logOf([&] {
        const host::Outcome outcome = scene.host.get(scene.info, "thermalState");
        EXPECT_FALSE(outcome.raised());
        EXPECT_EQ(outcome.value.integer(), -1);
    });
    EXPECT_EQ(messageIn(log), "A N: R, Info: (null)\n");
    EXPECT_EQ(host::siblings::makeCount(), 1u);
    EXPECT_THAT(scene.host.trace(), IsEmpty()) << "the services are not even looked up";
}

TEST(CocoaTrap, LetsTheFailingSendOutWithoutSibling) {
    ActingScene scene(raiseNR, host::Siblings::none);
    std::optional<std::string> thrown;
    const std::string log = logOf([&] {
        thrown = leavingException([&] { scene.host.get(scene.info, "processIdentifier"); });
    });
    ASSERT_TRUE(thrown);
    EXPECT_THAT(*thrown, StartsWith("NSInvalidArgumentException: "));
    EXPECT_THAT(*thrown, HasSubstr("NewNSExceptionZKT:"));
    EXPECT_EQ(messageIn(log), "A N: R, Info: (null)\n") << "the line comes first";
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(CocoaTrap, FindsASiblingThatArrivesLater) {
    ActingScene scene(raiseNR, host::Siblings::none);
    EXPECT_TRUE(leavingException([&] { scene.host.get(scene.info, "processIdentifier"); }));
    host::siblings::installExceptions(host::Core::current());
    EXPECT_TRUE(scene.host.get(scene.info, "processIdentifier").raised());
}

TEST(CocoaTrap, LetsAnExceptionOfTheSiblingOut) {
    ActingScene scene(raiseNR);
    host::siblings::setExceptionMaking(host::siblings::ExceptionMaking::raise);
    const auto thrown = leavingException([&] { scene.host.get(scene.info, "processIdentifier"); });
    ASSERT_TRUE(thrown);
    EXPECT_THAT(*thrown, StartsWith("SiblingFailure: "));
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(CocoaTrap, LetsAnExceptionRaisedForTheLogLineOut) {
    TreacherousException *exception = [[TreacherousException alloc] initWithName:@"First"
                                                                          reason:@"R"
                                                                        userInfo:nil];
    ActingScene scene([&] { [exception raise]; });
    for (SEL part : { @selector(name), @selector(reason), @selector(userInfo) }) {
        const std::string partName = [NSStringFromSelector(part) UTF8String];
        SCOPED_TRACE(partName);
        exception->treacherous = part;
        std::optional<std::string> thrown;
        const std::string log = logOf([&] {
            thrown = leavingException([&] { scene.host.get(scene.info, "processIdentifier"); });
        });
        exception->treacherous = nullptr;
        EXPECT_EQ(thrown, "Second: " + partName);
        EXPECT_EQ(log, "");
    }
    EXPECT_EQ(host::siblings::makeCount(), 0u);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
    [exception release];
}

TEST(CocoaTrap, IsReentrant) {
    host::Host *host = nullptr;
    host::ObjectRef inner;
    int depth = 0;
    ActingScene scene([&] {
        if (++depth == 1) {
            // The same operation inside itself, as a callback would do.
            auto *getter = reinterpret_cast<std::int64_t (*)(REALobjectStruct *, std::intptr_t)>(
                host->getterOf("NSProcessInfoZKT", "processIdentifier"));
            EXPECT_EQ(getter(inner.handle(), 0), 0);
        } else {
            raiseNR();
        }
    });
    host = &scene.host;
    inner = scene.info;
    const host::Outcome outcome = scene.host.get(scene.info, "processIdentifier");
    inner = {};
    EXPECT_EQ(outcome.value.integer(), 7) << "the outer operation is not disturbed";
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->cocoaName, "N");
    EXPECT_EQ(host::siblings::makeCount(), 1u);
}

TEST(CocoaTrap, LetsAnObjectThatIsNoExceptionThrough) {
    NSString *thing = @"thing";
    ActingScene scene([&] { @throw thing; });
    id thrown = nil;
    testing::internal::CaptureStderr();
    @try {
        scene.host.get(scene.info, "processIdentifier");
    } @catch (id object) {
        thrown = object;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(thrown, thing);
    EXPECT_EQ(host::siblings::makeCount(), 0u);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}
