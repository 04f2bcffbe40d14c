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

namespace {

enum class Thrown : std::uint8_t { badAlloc, standard, cocoa };

void throwOf(Thrown thrown) {
    if (thrown == Thrown::badAlloc)
        throw std::bad_alloc();
    if (thrown == Thrown::standard)
        throw std::runtime_error("on the way");
    refusing("way")("way");
}

Thrown thrownByMethod;
void *throwingMethod(host::ObjectHandle) {
    throwOf(thrownByMethod);
    return nullptr;
}
void *loadThrowingMethod(host::ObjectHandle, const char *) {
    return reinterpret_cast<void *>(throwingMethod);
}

/// A host call of the conversion that throws: the data pointer's method, or the service that is
/// asked for a large block's size where the property cannot be read.
enum class Step : std::uint8_t { method, size };

class MemoryBlockStep : public testing::TestWithParam<Step> {
protected:
    void arrange(Thrown thrown) {
        host::Services &services = scene.host.services();
        thrownByMethod = thrown;
        if (GetParam() == Step::method)
            return services.replace("REALLoadObjectMethod", loadThrowingMethod);
        services.answerNull("REALGetPropValueInteger");
        services.fail("memoryBlockGetSize", [thrown] { throwOf(thrown); });
    }
    [[nodiscard]] static std::int64_t size() {
        return GetParam() == Step::method ? 5 : leastLargeSize;
    }
    host::ObjectRef convert() { return scene.convertSize(size()); }
    void expectNothingLeft() {
        scene.host.shutDown();
        EXPECT_THAT(scene.host.violations(), IsEmpty());
    }

    MemoryBlockScene scene;
};

} // namespace

TEST_P(MemoryBlockStep, ThatRunsOutOfMemoryIsReported) {
    arrange(Thrown::badAlloc);
    EXPECT_EQ(convert().handle(), nullptr);
    scene.expectOutOfMemory(size());
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

namespace {

// What could not be released, and nothing else.
void expectLeaked(MemoryBlockScene &scene, const char *leak) {
    scene.host.shutDown();
    EXPECT_THAT(scene.host.violations(), ElementsAre(leak));
}

} // namespace

// A block that cannot be used is released before the shortage is told: what fails then is not
// dropped.
TEST(MemoryBlockFailure, ToReleaseABlockWithoutADataPointerPasses) {
    MemoryBlockScene scene;
    scene.host.services().replace("REALLoadObjectMethod", loadNoPointer);
    int released = 0;
    scene.host.services().fail("REALUnlockObject", [&] {
        if (++released == 2) // behind the scratch block that the method is looked up with
            throwOf(Thrown::standard);
    });
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertSize(5); }), "on the way");
    EXPECT_FALSE(scene.host.hasPendingException());
    expectLeaked(scene,
                 "MemoryBlock#1 leaked, 1 reference never released (made by newMemoryBlock)");
}

TEST(MemoryBlockFailure, ToReleaseALargeBlockWithoutAConstructorPasses) {
    MemoryBlockScene scene;
    scene.host.services().answerNull("REALLoadObjectMethod");
    scene.host.services().fail("REALUnlockObject", [] { throwOf(Thrown::standard); });
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertSize(leastLargeSize); }), "on the way");
    EXPECT_FALSE(scene.host.hasPendingException());
    expectLeaked(scene,
                 "MemoryBlock#1 leaked, 1 reference never released (made by PluginNewInstance)");
}

INSTANTIATE_TEST_SUITE_P(, MemoryBlockStep, testing::Values(Step::method, Step::size),
                         [](const auto &tested) {
                             return tested.param == Step::method ? "TheMethod" : "AskingForTheSize";
                         });

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
