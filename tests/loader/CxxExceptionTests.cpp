#include "tests/loader/TestImages.h"
#include "tests/loader/Thrower.h"

#include <exception>
#include <stdexcept>
#include <thread>
#include <vector>

#include <malloc.h>

namespace {

using Callback = void (*)();

void throwRuntimeError() {
    throw std::runtime_error("a runtime error");
}

void doNothing() {}

class CxxExceptions : public testing::TestWithParam<const char *> {
protected:
    CxxExceptions() : image_(GetParam(), "CxxCatches") {}

    template <class Function>
    Function *function(const char *name) const {
        return image_.function<Function>(name);
    }

    int count_ = 0;
    LoadedImage image_;
};
INSTANTIATE_TEST_SUITE_P(, CxxExceptions, testing::ValuesIn(allVariants), variantName);

TEST_P(CxxExceptions, areCaughtByTheirBase) {
    const auto catches = function<int(Callback, int *)>("catchesByBase");
    EXPECT_EQ(catches(throwOutOfRange, &count_), 1);
    EXPECT_EQ(count_, 1);
    EXPECT_EQ(catches(throwRuntimeError, &count_), 2);
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(catches(doNothing, &count_), 0);
}

TEST_P(CxxExceptions, areObjectsOfTheProcess) {
    EXPECT_STREQ(function<const char *(Callback)>("messageOf")(throwOutOfRange), "out of range");
    EXPECT_STREQ(function<const char *(Callback)>("messageOf")(throwRuntimeError),
                 "a runtime error");
}

TEST_P(CxxExceptions, areCaughtByValueAndByDots) {
    EXPECT_EQ(function<int(Callback)>("catchesInteger")(throwInteger), 42);
    EXPECT_EQ(function<int(Callback, int *)>("catchesEverything")(throwInteger, &count_), 1);
    EXPECT_EQ(function<int(Callback, int *)>("catchesEverything")(throwOutOfRange, &count_), 1);
    EXPECT_EQ(count_, 2);
}

TEST_P(CxxExceptions, ofAnotherTypePass) {
    const auto catches = function<int(Callback, int *)>("catchesUnrelated");
    EXPECT_EQ(outcomeOf([&] { catches(throwOutOfRange, &count_); }), Outcome::outOfRange);
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(outcomeOf([&] { catches(throwInteger, &count_); }), Outcome::integer);
    EXPECT_EQ(count_, 4);
}

TEST_P(CxxExceptions, areRethrownUnchanged) {
    const auto rethrows = function<int(Callback, int *)>("rethrows");
    EXPECT_EQ(outcomeOf([&] { rethrows(throwOutOfRange, &count_); }), Outcome::outOfRange);
    EXPECT_EQ(count_, 12);
    count_ = 0;
    EXPECT_EQ(function<int(Callback, int *)>("rethrowsWithin")(throwOutOfRange, &count_), 111);
    count_ = 0;
    EXPECT_EQ(function<int(Callback, int *)>("rethrowsOutOfBoth")(throwOutOfRange, &count_), 102);
}

TEST_P(CxxExceptions, thrownByTheImageAreCaughtByIt) {
    EXPECT_EQ(function<int(int)>("catchesOwn")(23), 23);
    EXPECT_EQ(function<int(int)>("catchesCopy")(23), 24);
}

TEST_P(CxxExceptions, thrownByTheImageAreCaughtByTheProcess) {
    try {
        function<int(int)>("throwsOwn")(5);
        FAIL() << "not thrown";
    } catch (const std::exception &error) {
        EXPECT_STREQ(error.what(), "own error");
    }
    try {
        function<int(int)>("throwsInteger")(5);
        FAIL() << "not thrown";
    } catch (int value) {
        EXPECT_EQ(value, 5);
    }
}

TEST_P(CxxExceptions, ofTypesThatImagesShareAreCaughtByEach) {
    const LoadedImage other(GetParam(), "CxxCatches");
    const auto catches = function<int(void (*)(int), int)>("catchesSharedOrHidden");
    for (const auto &thrower : {std::cref(image_), std::cref(other)}) {
        EXPECT_EQ(catches(thrower.get().function<void(int)>("throwsShared"), 5), 5);
        EXPECT_EQ(catches(thrower.get().function<void(int)>("throwsHidden"), 5), -5);
    }
    EXPECT_EQ(outcomeOf([&] { function<void(int)>("throwsHidden")(5); }), Outcome::other);
}

TEST_P(CxxExceptions, nest) {
    const auto catches = function<int(Callback, Callback)>("catchesWithin");
    EXPECT_EQ(catches(throwOutOfRange, throwInteger), 111);
    EXPECT_EQ(catches(throwOutOfRange, catchInternally), 101);
    EXPECT_EQ(std::current_exception(), nullptr);
}

TEST_P(CxxExceptions, areReplacedInTheirHandler) {
    const auto replaces = function<void(Callback, Callback, int *)>("replaces");
    EXPECT_THROW(replaces(throwOutOfRange, throwInteger, &count_), int);
    EXPECT_EQ(count_, 2);
    EXPECT_EQ(std::uncaught_exceptions(), 0);
    EXPECT_EQ(std::current_exception(), nullptr);
}

TEST_P(CxxExceptions, ofACallerAreRethrownByTheImage) {
    try {
        throwOutOfRange();
    } catch (...) {
        EXPECT_THROW(function<void()>("rethrowsForCaller")(), std::out_of_range);
    }
}

TEST_P(CxxExceptions, areVisibleToTheProcessWhileTheImageHandlesThem) {
    static bool seen;
    seen = false;
    function<int(Callback, Callback)>("handlesWhileCalling")(throwOutOfRange, [] {
        try {
            std::rethrow_exception(std::current_exception());
        } catch (const std::out_of_range &) {
            seen = true;
        }
    });
    EXPECT_TRUE(seen);
}

TEST_P(CxxExceptions, endTheProcessWhereNoneMayPass) {
    EXPECT_DEATH(function<void(Callback)>("throwsFromNoexcept")(throwOutOfRange),
                 "terminate called after throwing an instance of 'std::out_of_range'");
}

TEST_P(CxxExceptions, areHandledByThreadsAtTheSameTime) {
    const auto catches = function<int(Callback, int *)>("catchesByBase");
    const auto within = function<int(Callback, Callback)>("catchesWithin");
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            int count = 0;
            for (int j = 0; j < 2000; ++j) {
                ASSERT_EQ(catches(throwOutOfRange, &count), 1);
                ASSERT_EQ(within(throwOutOfRange, throwInteger), 111);
            }
            EXPECT_EQ(count, 2000);
        });
    for (auto &thread : threads)
        thread.join();
}

TEST_P(CxxExceptions, doNotAddUp) {
    const auto catches = function<int(Callback, int *)>("catchesByBase");
    const auto passes = function<int(Callback, int *)>("rethrows");
    const auto catchesOwn = function<int(int)>("catchesOwn");
    outcomeOf([&] { passes(throwOutOfRange, &count_); });
    count_ = 0;
    const auto before = mallinfo2().uordblks;
    for (int i = 0; i < 20000; ++i) {
        ASSERT_EQ(catches(throwOutOfRange, &count_), 1);
        ASSERT_EQ(outcomeOf([&] { passes(throwOutOfRange, &count_); }), Outcome::outOfRange);
        ASSERT_EQ(catchesOwn(i), i);
    }
    EXPECT_EQ(count_, 20000 * (1 + 12));
    EXPECT_LT(mallinfo2().uordblks, before + 20000);
}

TEST_P(CxxExceptions, passAfterOtherImagesHaveComeAndGone) {
    for (int i = 0; i < 20; ++i) {
        const LoadedImage another(GetParam(), "CxxCatches");
        EXPECT_EQ(another.function<int(Callback, int *)>("catchesByBase")(throwOutOfRange, &count_),
                  1);
    }
    EXPECT_EQ(function<int(Callback, int *)>("catchesByBase")(throwOutOfRange, &count_), 1);
}

TEST(FailingStart, isALoadErrorThatSaysWhy) {
    try {
        macho::Image::load(imageFile("FailingStart"));
        FAIL() << "loaded";
    } catch (const macho::LoadError &error) {
        EXPECT_EQ(error.what(),
                  imageFile("FailingStart").string() + ": an initialiser failed: no such luck");
    }
}

} // namespace
