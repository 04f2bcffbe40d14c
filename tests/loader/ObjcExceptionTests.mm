#import "tests/loader/HostClasses.h"

#include "tests/loader/TestImages.h"
#include "tests/loader/Thrower.h"

#include <thread>
#include <vector>

#include <malloc.h>

namespace {

using Callback = void (*)();

void raise() {
    [NSException raise:@"Raised" format:@"for a test"];
}

/// Thrown with no other owner than a pool.
void throwCounted() {
    @throw [[CountedException make] autorelease];
}

void throwNumber() {
    @throw @5;
}

void throwString() {
    @throw @"text";
}

void doNothing() {}

void catchNatively() {
    @try {
        raise();
    } @catch (NSException *) {
        @try {
            throwNumber();
        } @catch (NSNumber *) {
        }
    }
}

class ObjcExceptions : public testing::TestWithParam<const char *> {
protected:
    ObjcExceptions()
        : pool_([NSAutoreleasePool new]), image_(GetParam(), "ObjcCatches"),
          cxx_(GetParam(), "CxxCatches") {}
    ~ObjcExceptions() override { [pool_ release]; }

    template <class Function>
    Function *function(const char *name) const {
        return image_.function<Function>(name);
    }

    /// The name of the object that comes out of `body`; nil when none does.
    template <class Body>
    static NSString *nameOfThrown(const Body &body) {
        @try {
            body();
        } @catch (NSException *exception) {
            return [exception name];
        }
        return nil;
    }

    NSAutoreleasePool *pool_;
    int count_ = 0;
    LoadedImage image_;
    LoadedImage cxx_;
};
INSTANTIATE_TEST_SUITE_P(, ObjcExceptions, testing::ValuesIn(allVariants), variantName);

TEST_P(ObjcExceptions, ofFoundationAreCaught) {
    NSException *const caught = function<id(Callback, int *)>("catchesException")(raise, &count_);
    EXPECT_STREQ([[caught name] UTF8String], "Raised");
    EXPECT_STREQ([[caught reason] UTF8String], "for a test");
    EXPECT_EQ(count_, 101);
    EXPECT_EQ(function<id(Callback, int *)>("catchesException")(doNothing, &count_), nil);
    EXPECT_EQ(count_, 202);
}

TEST_P(ObjcExceptions, ofFoundationItselfAreCaught) {
    // Raised by compiled library code, several frames deep.
    NSException *const caught = function<id(Callback, int *)>("catchesException")(
        [] { [[NSArray array] objectAtIndex:3]; }, &count_);
    EXPECT_STREQ([[caught name] UTF8String], "NSRangeException");
}

TEST_P(ObjcExceptions, ofAnyClassAreCaughtById) {
    const auto catches = function<id(Callback, int *)>("catchesAnyObject");
    EXPECT_STREQ([[catches(raise, &count_) name] UTF8String], "Raised");
    EXPECT_EQ([catches(throwNumber, &count_) intValue], 5);
    EXPECT_STREQ([catches(throwString, &count_) UTF8String], "text");
    EXPECT_EQ(count_, 3);
}

TEST_P(ObjcExceptions, areCaughtByTheFirstHandlerOfTheirClass) {
    const auto catches = function<int(Callback)>("catchesByClass");
    EXPECT_EQ(catches(throwString), 1);
    EXPECT_EQ(catches(throwNumber), 2);
    EXPECT_EQ(catches(raise), 3);
    EXPECT_EQ(catches(throwCounted), 3);
    EXPECT_EQ(catches(doNothing), 0);
}

TEST_P(ObjcExceptions, ofAnotherClassAreCaughtByDots) {
    const auto catches = function<int(Callback, int *)>("catchesEverythingElse");
    EXPECT_EQ(catches(raise, &count_), 1);
    EXPECT_EQ(catches(throwNumber, &count_), 2);
    EXPECT_EQ(catches(doNothing, &count_), 0);
}

TEST_P(ObjcExceptions, ofCxxAreCaughtByDots) {
    const auto catches = function<int(Callback, int *)>("catchesEverythingElse");
    EXPECT_EQ(catches(throwOutOfRange, &count_), 2);
    EXPECT_EQ(count_, 1);
}

TEST_P(ObjcExceptions, ofAnotherClassPass) {
    @try {
        function<id(Callback, int *)>("catchesException")(throwNumber, &count_);
        ADD_FAILURE() << "caught";
    } @catch (NSNumber *number) {
        EXPECT_EQ([number intValue], 5);
    }
    EXPECT_EQ(count_, 101);
}

TEST_P(ObjcExceptions, passFramesAndRunTheirCleanUps) {
    EXPECT_STREQ([nameOfThrown([&] { function<void(Callback, int *)>("passes")(raise, &count_); })
                     UTF8String],
                 "Raised");
    EXPECT_EQ(count_, 1);
    EXPECT_STREQ([nameOfThrown([&] {
                     function<void(Callback, int *)>("onlyFinally")(raise, &count_);
                 }) UTF8String],
                 "Raised");
    EXPECT_EQ(count_, 102);
}

TEST_P(ObjcExceptions, passCxxHandlersOfTypes) {
    const auto catches = cxx_.function<int(Callback, int *)>("catchesByBase");
    EXPECT_STREQ([nameOfThrown([&] { catches(raise, &count_); }) UTF8String], "Raised");
    EXPECT_EQ(count_, 1);
}

TEST_P(ObjcExceptions, areCaughtByCxxDots) {
    const auto catches = cxx_.function<int(Callback, int *)>("catchesEverything");
    EXPECT_EQ(catches(throwCounted, &count_), 1);
    EXPECT_EQ(count_, 1);
    [pool_ release];
    pool_ = [NSAutoreleasePool new];
    EXPECT_EQ([CountedException living], 0);
}

TEST_P(ObjcExceptions, areRethrownByCxxHandlers) {
    const auto rethrows = cxx_.function<int(Callback, int *)>("rethrows");
    EXPECT_STREQ([nameOfThrown([&] { rethrows(raise, &count_); }) UTF8String], "Raised");
    EXPECT_EQ(count_, 12);
    count_ = 0;
    EXPECT_EQ(cxx_.function<int(Callback, int *)>("rethrowsWithin")(raise, &count_), 111);
    count_ = 0;
    EXPECT_EQ(cxx_.function<int(Callback, int *)>("rethrowsOutOfBoth")(raise, &count_), 102);
}

TEST_P(ObjcExceptions, nestWithCxxOnes) {
    const auto cxx = cxx_.function<int(Callback, Callback)>("catchesWithin");
    EXPECT_EQ(cxx(raise, throwInteger), 111);
    EXPECT_EQ(cxx(throwInteger, raise), 111);
    EXPECT_EQ(cxx(raise, raise), 111);
    EXPECT_EQ(cxx(raise, catchInternally), 101);
    EXPECT_EQ(cxx(throwInteger, catchNatively), 101);
    const auto objc = function<int(Callback, Callback)>("catchesObjectsWithin");
    EXPECT_EQ(objc(raise, throwNumber), 111);
    EXPECT_EQ(objc(raise, catchInternally), 101);
    EXPECT_EQ(objc(raise, catchNatively), 101);
}

TEST_P(ObjcExceptions, areReplacedByCxxOnesAndTheOtherWayRound) {
    const auto replaces = cxx_.function<void(Callback, Callback, int *)>("replaces");
    EXPECT_STREQ([nameOfThrown([&] { replaces(throwInteger, raise, &count_); }) UTF8String],
                 "Raised");
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(outcomeOf([&] { replaces(throwCounted, throwOutOfRange, &count_); }),
              Outcome::outOfRange);
    EXPECT_EQ(count_, 4);
    [pool_ release];
    pool_ = [NSAutoreleasePool new];
    EXPECT_EQ([CountedException living], 0);
}

TEST_P(ObjcExceptions, areRethrownUnchanged) {
    const auto rethrows = function<void(Callback, int *)>("rethrowsObject");
    EXPECT_STREQ([nameOfThrown([&] { rethrows(raise, &count_); }) UTF8String], "Raised");
    EXPECT_EQ(count_, 11);
    EXPECT_EQ(function<int(Callback)>("rethrowsObjectWithin")(raise), 111);
    EXPECT_EQ(function<int(Callback)>("rethrowsObjectOutOfBoth")(raise), 102);
}

TEST_P(ObjcExceptions, thrownByTheImageAreCaughtByIt) {
    id object = [[NSObject new] autorelease];
    EXPECT_EQ(function<id(id)>("catchesThrown")(object), object);
}

TEST_P(ObjcExceptions, thrownByTheImageAreCaughtByTheProcess) {
    id object = [[NSObject new] autorelease];
    @try {
        function<void(id)>("throwsObject")(object);
        ADD_FAILURE() << "not thrown";
    } @catch (id caught) {
        EXPECT_EQ(caught, object);
    }
}

TEST_P(ObjcExceptions, areReplacedInTheirHandler) {
    CountedException *const other = [CountedException make];
    EXPECT_STREQ([nameOfThrown([&] {
                     function<void(Callback, id)>("replacesObject")(raise, other);
                 }) UTF8String],
                 "Counted");
    EXPECT_EQ([other retainCount], 1U);
    [other release];
}

TEST_P(ObjcExceptions, liveUntilTheirHandlerEnds) {
    NSString *const reason = function<id(id)>("catchesReleased")([CountedException make]);
    EXPECT_STREQ([reason UTF8String], "a test");
    EXPECT_EQ([CountedException living], 0);
    [reason release];
}

TEST_P(ObjcExceptions, areReleasedAsOftenAsRetained) {
    CountedException *const object = [CountedException make];
    EXPECT_EQ(function<id(id)>("catchesThrown")(object), object);
    EXPECT_EQ([object retainCount], 1U);
    static CountedException *thrown;
    thrown = object;
    const Callback throws = [] { @throw thrown; };
    function<int(Callback)>("rethrowsObjectWithin")(throws);
    EXPECT_EQ([object retainCount], 1U);
    function<int(Callback)>("rethrowsObjectOutOfBoth")(throws);
    EXPECT_EQ([object retainCount], 1U);
    cxx_.function<int(Callback, int *)>("rethrowsWithin")(throws, &count_);
    EXPECT_EQ([object retainCount], 1U);
    cxx_.function<int(Callback, Callback)>("catchesWithin")(throws, throws);
    EXPECT_EQ([object retainCount], 1U);
    function<int(Callback, Callback)>("catchesObjectsWithin")(throws, throws);
    EXPECT_EQ([object retainCount], 1U);
    nameOfThrown([&] { function<void(Callback, int *)>("rethrowsObject")(throws, &count_); });
    EXPECT_EQ([object retainCount], 1U);
    nameOfThrown([&] { function<void(Callback, int *)>("passes")(throws, &count_); });
    EXPECT_EQ([object retainCount], 1U);
    [object release];
    EXPECT_EQ([CountedException living], 0);
}

TEST_P(ObjcExceptions, ofCxxPassTryFramesUnharmed) {
    const auto catches = function<id(Callback, int *)>("catchesException");
    EXPECT_EQ(outcomeOf([&] { catches(throwOutOfRange, &count_); }), Outcome::outOfRange);
    EXPECT_EQ(count_, 101);
    EXPECT_EQ(outcomeOf([&] { catches(throwInteger, &count_); }), Outcome::integer);
    EXPECT_EQ(count_, 202);
    const auto catchesAny = function<id(Callback, int *)>("catchesAnyObject");
    EXPECT_EQ(outcomeOf([&] { catchesAny(throwOutOfRange, &count_); }), Outcome::outOfRange);
    EXPECT_EQ(count_, 203);
}

TEST_P(ObjcExceptions, leaveSynchronisedBlocksOpen) {
    id object = [[NSObject new] autorelease];
    const auto synchronises = function<int(id, Callback)>("synchronises");
    EXPECT_STREQ([nameOfThrown([&] { synchronises(object, raise); }) UTF8String], "Raised");
    std::thread([&] { EXPECT_EQ(synchronises(object, doNothing), 1); }).join();
}

TEST_P(ObjcExceptions, ofAMissingClassMatchNothing) {
    const LoadedImage absent(GetParam(), "Absent");
    EXPECT_TRUE(absent.function<bool()>("absentClassIsNil")());
    EXPECT_EQ(absent.function<int(Callback)>("catchesAbsent")(raise), 2);
    const auto only = absent.function<int(Callback)>("catchesOnlyAbsent");
    EXPECT_STREQ([nameOfThrown([&] { only(raise); }) UTF8String], "Raised");
    EXPECT_EQ(outcomeOf([&] { only(throwOutOfRange); }), Outcome::outOfRange);
}

TEST_P(ObjcExceptions, areHandledByThreadsAtTheSameTime) {
    const auto catches = function<int(Callback)>("catchesByClass");
    const auto within = cxx_.function<int(Callback, Callback)>("catchesWithin");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int j = 0; j < 50; ++j) {
                NSAutoreleasePool *const pool = [NSAutoreleasePool new];
                for (int k = 0; k < 20; ++k) {
                    ASSERT_EQ(catches(throwCounted), 3);
                    ASSERT_EQ(within(throwCounted, throwInteger), 111);
                }
                [pool release];
            }
        });
    for (auto &thread : threads)
        thread.join();
    EXPECT_EQ([CountedException living], 0);
}

TEST_P(ObjcExceptions, doNotAddUp) {
    const auto catches = function<id(Callback, int *)>("catchesException");
    const auto passes = function<void(Callback, int *)>("passes");
    const auto once = [&] {
        NSAutoreleasePool *const pool = [NSAutoreleasePool new];
        catches(throwCounted, &count_);
        nameOfThrown([&] { passes(throwCounted, &count_); });
        [pool release];
    };
    once();
    const auto before = mallinfo2().uordblks;
    for (int i = 1; i < 20000; ++i)
        once();
    EXPECT_EQ(count_, 20000 * (101 + 1));
    EXPECT_EQ([CountedException living], 0);
    EXPECT_LT(mallinfo2().uordblks, before + 20000);
}

} // namespace
