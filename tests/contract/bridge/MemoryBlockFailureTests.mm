// Memory blocks that cannot be had: which step failed, and what the program is told.

#import "MemoryBlockScene.h"
#import "TracedObject.h"

#include "Caught.h"

#include <gmock/gmock.h>

#include <new>
#include <stdexcept>
#include <utility>

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

TEST(MemoryBlockFailure, OfTheServiceIsToldWithTheSize) {
    MemoryBlockScene scene;
    scene.host.services().answerNull("newMemoryBlock");
    EXPECT_EQ(scene.convertSize(1234).handle(), nullptr);
    EXPECT_THAT(scene.hostCalls(), ElementsAreArray(inOrder(Lines{"newMemoryBlock(1234) = nil"},
                                                            raisingOutOfMemory(1234, 1))));
    scene.expectOutOfMemory(1234);
}

TEST(MemoryBlockFailure, OfAMissingServiceIsToldWithTheSize) {
    MemoryBlockScene scene;
    scene.host.services().hide("newMemoryBlock");
    EXPECT_EQ(scene.convertSize(1).handle(), nullptr);
    EXPECT_THAT(scene.hostCalls(), ElementsAreArray(raisingOutOfMemory(1, 1)));
    EXPECT_EQ(scene.host.services().lookups("newMemoryBlock"), 1u);
    scene.expectOutOfMemory(1);
}

TEST(MemoryBlockFailure, OfAHostWithoutThatMuchMemoryIsTold) {
    MemoryBlockScene scene;
    scene.host.setMemoryBlockLimit(15);
    EXPECT_EQ(scene.convertSize(16).handle(), nullptr);
    scene.expectOutOfMemory(16);
    EXPECT_NE(scene.convertSize(15).handle(), nullptr);
    EXPECT_FALSE(scene.host.hasPendingException());
}

TEST(MemoryBlockFailure, ToGiveADataPointerReleasesTheBlock) {
    MemoryBlockScene scene;
    scene.hideDataPointerMethod();
    scene.host.services().answerNull("memoryBlockGetPtr");
    EXPECT_EQ(scene.convertSize(5).handle(), nullptr);
    EXPECT_THAT(
        scene.hostCalls(),
        ElementsAreArray(inOrder(
            Lines{"newMemoryBlock(5) = MemoryBlock#1"}, loadingFromScratch(2, "nil"),
            Lines{"memoryBlockGetPtr(MemoryBlock#1) = nil", "REALUnlockObject(MemoryBlock#1)"},
            raisingOutOfMemory(5, 3))));
    scene.expectOutOfMemory(5);
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}

TEST(MemoryBlockFailure, WithoutMethodAndServiceReleasesTheBlock) {
    MemoryBlockScene scene;
    scene.hideDataPointerMethod();
    scene.host.services().hide("memoryBlockGetPtr");
    EXPECT_EQ(scene.convertSize(5).handle(), nullptr);
    EXPECT_THAT(scene.hostCalls(),
                ElementsAreArray(inOrder(
                    Lines{"newMemoryBlock(5) = MemoryBlock#1"}, loadingFromScratch(2, "nil"),
                    Lines{"REALUnlockObject(MemoryBlock#1)"}, raisingOutOfMemory(5, 3))));
    scene.expectOutOfMemory(5);
}

namespace {

void *noPointer(host::ObjectHandle) {
    return nullptr;
}
void *loadNoPointer(host::ObjectHandle, const char *) {
    return reinterpret_cast<void *>(noPointer);
}

} // namespace

// A method that was found is believed: the service is not asked in its place.
TEST(MemoryBlockFailure, OfTheMethodReleasesTheBlock) {
    MemoryBlockScene scene;
    scene.host.services().replace("REALLoadObjectMethod", loadNoPointer);
    EXPECT_EQ(scene.convertSize(5).handle(), nullptr);
    EXPECT_EQ(scene.host.services().lookups("memoryBlockGetPtr"), 0u);
    EXPECT_THAT(scene.host.calls(), Contains("REALUnlockObject(MemoryBlock#1)"));
    scene.expectOutOfMemory(5);
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}

TEST(MemoryBlockFailure, LeavesTheNextConversionAsItWas) {
    MemoryBlockScene scene;
    scene.host.services().answerNull("newMemoryBlock");
    scene.convertSize(5);
    scene.expectOutOfMemory(5);
    scene.host.services().restore("newMemoryBlock");
    EXPECT_NE(scene.convertSize(5).handle(), nullptr);
    EXPECT_FALSE(scene.host.hasPendingException());
}

namespace {

enum class Thrown : std::uint8_t { badAlloc, standard, cocoa };

void throwOf(Thrown thrown) {
    if (thrown == Thrown::badAlloc)
        throw std::bad_alloc();
    if (thrown == Thrown::standard)
        throw std::runtime_error("on the way");
    refusing("way")("way");
}

/// A host call of the conversion that throws the first time.
struct Step {
    const char *name;
    const char *service; ///< null: the data pointer's method itself
    std::int64_t size = 5;
    bool hidesMethod = false;
    const char *refused = nullptr; ///< a service that answers nothing
};
void PrintTo(const Step &step, std::ostream *out) {
    *out << step.name;
}

constexpr Step steps[] = {
    {"MakingTheBlock", "newMemoryBlock"},
    {"LoadingTheMethod", "REALLoadObjectMethod"},
    {"ReleasingTheScratchBlock", "REALUnlockObject"},
    {"TheMethod", nullptr},
    {"TheDataPointersService", "memoryBlockGetPtr", 5, true},
    {"TheGuard", "PluginCallFunctionWithExceptionHandler", leastLargeSize},
    {"MakingTheInstance", "PluginNewInstance", leastLargeSize},
    {"LoadingTheConstructor", "REALLoadObjectMethod", leastLargeSize},
    {"ReadingTheSize", "REALGetPropValueInteger", leastLargeSize},
    {"AskingForTheSize", "memoryBlockGetSize", leastLargeSize, false, "REALGetPropValueInteger"},
};

Thrown thrownByMethod;
void *throwingMethod(host::ObjectHandle) {
    throwOf(thrownByMethod);
    return nullptr;
}
void *loadThrowingMethod(host::ObjectHandle, const char *) {
    return reinterpret_cast<void *>(throwingMethod);
}

class MemoryBlockStep : public testing::TestWithParam<Step> {
protected:
    void arrange(Thrown thrown) {
        const Step &step = GetParam();
        if (step.hidesMethod)
            scene.hideDataPointerMethod();
        if (step.refused != nullptr)
            scene.host.services().answerNull(step.refused);
        if (step.service == nullptr) {
            thrownByMethod = thrown;
            scene.host.services().replace("REALLoadObjectMethod", loadThrowingMethod);
            return;
        }
        scene.host.services().fail(step.service, [this, thrown] {
            if (!std::exchange(hasThrown, true))
                throwOf(thrown);
        });
    }
    host::ObjectRef convert() { return scene.convertSize(GetParam().size); }
    /// Whatever was made on the way is released, but for what the host refused to release.
    void expectNothingLeft() {
        if (GetParam().service != nullptr)
            EXPECT_TRUE(hasThrown);
        scene.host.shutDown();
        if (GetParam().name == std::string_view("ReleasingTheScratchBlock"))
            EXPECT_THAT(scene.host.violations(),
                        ElementsAre(testing::StartsWith("MemoryBlock#2 leaked, 1 reference")));
        else
            EXPECT_THAT(scene.host.violations(), IsEmpty());
    }

    MemoryBlockScene scene;
    bool hasThrown = false;
};

} // namespace

TEST_P(MemoryBlockStep, ThatRunsOutOfMemoryIsReported) {
    arrange(Thrown::badAlloc);
    EXPECT_EQ(convert().handle(), nullptr);
    scene.expectOutOfMemory(GetParam().size);
    EXPECT_THAT(scene.host.strayExceptions(), IsEmpty());
    expectNothingLeft();
}

TEST_P(MemoryBlockStep, LetsAnotherExceptionPass) {
    arrange(Thrown::standard);
    EXPECT_EQ(standardExceptionFrom([this] { convert(); }), "on the way");
    EXPECT_FALSE(scene.host.hasPendingException());
    expectNothingLeft();
}

TEST_P(MemoryBlockStep, LetsACocoaExceptionPass) {
    arrange(Thrown::cocoa);
    EXPECT_EQ(cocoaExceptionFrom([this] { convert(); }), "Refused: way");
    EXPECT_FALSE(scene.host.hasPendingException());
    expectNothingLeft();
}

INSTANTIATE_TEST_SUITE_P(, MemoryBlockStep, testing::ValuesIn(steps),
                         [](const auto &tested) { return std::string(tested.param.name); });

namespace {

class MemoryBlockReportStep : public testing::TestWithParam<const char *> {};

} // namespace

// Memory can run short while its shortage is being reported, too.
TEST_P(MemoryBlockReportStep, ThatRunsOutOfMemoryIsMadeAgain) {
    MemoryBlockScene scene;
    scene.host.services().answerNull("newMemoryBlock");
    bool hasThrown = false;
    scene.host.services().fail(GetParam(), [&] {
        if (!std::exchange(hasThrown, true))
            throwOf(Thrown::badAlloc);
    });
    EXPECT_EQ(scene.convertSize(5).handle(), nullptr);
    EXPECT_TRUE(hasThrown);
    scene.expectOutOfMemory(5);
    EXPECT_THAT(scene.host.strayExceptions(), IsEmpty());
    scene.host.shutDown();
    EXPECT_THAT(scene.host.violations(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, MemoryBlockReportStep,
                         testing::Values("PluginNewInstance", "REALSetPropValueString",
                                         "REALSetPropValueInteger", "RuntimeRaiseException"),
                         [](const auto &tested) { return std::string(tested.param); });

// The exception of a large block's constructor is dropped, but not the failure to drop it.
TEST(MemoryBlockReport, OfALargeBlockLetsAFailingReleasePass) {
    MemoryBlockScene scene;
    scene.host.setMemoryBlockLimit(15);
    std::vector<std::string> released;
    scene.host.services().fail("REALUnlockObject", [&] {
        released.push_back(scene.host.calls().back());
        if (released.back() != "REALUnlockObject(MemoryBlock#1)")
            throwOf(Thrown::standard);
    });
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertSize(leastLargeSize); }), "on the way");
    EXPECT_THAT(released, ElementsAre("REALUnlockObject(MemoryBlock#1)",
                                      "REALUnlockObject(OutOfMemoryException#2)"));
    EXPECT_EQ(scene.host.services().calls("RuntimeRaiseException"), 0u);
    scene.host.shutDown();
    EXPECT_THAT(scene.host.violations(),
                ElementsAre(testing::StartsWith("OutOfMemoryException#2 leaked, 1 reference")));
}

TEST(MemoryBlockReport, LetsAnotherExceptionPass) {
    MemoryBlockScene scene;
    scene.host.services().answerNull("newMemoryBlock");
    scene.host.services().fail("PluginNewInstance", [] { throwOf(Thrown::standard); });
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertSize(5); }), "on the way");
    EXPECT_EQ(scene.host.services().calls("RuntimeRaiseException"), 0u);
    scene.host.shutDown();
    EXPECT_THAT(scene.host.violations(), IsEmpty());
}

// Reading the data is no call of the host's.
TEST(MemoryBlockData, ThatThrowsIsNotReported) {
    MemoryBlockScene scene;
    scene.data->onBytes = [] { throw std::bad_alloc(); };
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertSize(5); }), std::bad_alloc().what());
    scene.data->onBytes = [] { refusing("bytes")("bytes"); };
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertSize(5); }), "Refused: bytes");
    EXPECT_FALSE(scene.host.hasPendingException());
    EXPECT_THAT(scene.hostCalls(), IsEmpty());
}
