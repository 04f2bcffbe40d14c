// Memory blocks of 2 GB and more, made by the host class's own constructor under the host's guard.

#include "Caught.h"
#import "MemoryBlockScene.h"
#include "RepeatedMemory.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

constexpr std::int64_t threeBillion = 3'000'000'000;

constexpr const char *loadConstructor =
    "REALLoadObjectMethod(MemoryBlock#1, \"Constructor(bytes as Integer)\") = pointer";

/// A scene whose blocks have no data pointer, so that no large copy is made.
struct LargeScene : MemoryBlockScene {
    LargeScene() {
        hideDataPointerMethod();
        host.services().answerNull("memoryBlockGetPtr");
    }
};

std::int64_t reportedSize;
bool reportSize(host::ObjectHandle, const char *, std::int64_t *size) {
    *size = reportedSize;
    return true;
}

RepeatedMemory *destination;
void *pointerToDestination(host::ObjectHandle) {
    return destination->begin();
}

/// A guard that finds an exception raised, whatever the callback did.
host::ObjectHandle guardWithException(void (*callback)(void *), void *argument) {
    callback(argument);
    return host::Host::current().newInstance("RuntimeException").release();
}

/// A guard that fails when its callback has made the block.
host::ObjectHandle guardThrowingLate(void (*callback)(void *), void *argument) {
    callback(argument);
    throw std::runtime_error("late");
}

} // namespace

TEST(MemoryBlockSize, BelowTheBorderTakesTheService) {
    MemoryBlockScene scene;
    scene.host.services().answerNull("newMemoryBlock");
    scene.convertSize(leastLargeSize - 1);
    EXPECT_THAT(scene.hostCalls(),
                ElementsAreArray(inOrder(Lines{"newMemoryBlock(2147483646) = nil"},
                                         raisingOutOfMemory(leastLargeSize - 1, 1))));
    scene.expectOutOfMemory(leastLargeSize - 1);
}

TEST(MemoryBlockSize, FromTheBorderOnTakesTheConstructor) {
    MemoryBlockScene scene;
    scene.host.services().answerNull("PluginCallFunctionWithExceptionHandler");
    scene.convertSize(leastLargeSize);
    EXPECT_THAT(scene.hostCalls(),
                ElementsAreArray(
                    inOrder(Lines{"PluginCallFunctionWithExceptionHandler(pointer, pointer) = nil"},
                            raisingOutOfMemory(leastLargeSize, 1))));
    scene.expectOutOfMemory(leastLargeSize);
}

TEST(LargeMemoryBlock, IsConstructedUnderTheGuard) {
    LargeScene scene;
    scene.convertSize(leastLargeSize);
    EXPECT_THAT(
        scene.hostCalls(),
        ElementsAreArray(inOrder(
            Lines{"PluginCallFunctionWithExceptionHandler(pointer, pointer) = nil",
                  "PluginNewInstance(\"MemoryBlock\") = MemoryBlock#1", loadConstructor,
                  "MemoryBlock.Constructor(MemoryBlock#1, 2147483647)",
                  "REALGetPropValueInteger(MemoryBlock#1, \"Size\", pointer) = true"},
            loadingFromScratch(2, "nil"),
            Lines{"memoryBlockGetPtr(MemoryBlock#1) = nil", "REALUnlockObject(MemoryBlock#1)"},
            raisingOutOfMemory(leastLargeSize, 3))));
    scene.expectOutOfMemory(leastLargeSize);
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}

// Neither the number nor the copy stops at what 32 bits hold.
TEST(LargeMemoryBlock, HoldsEveryByte) {
    RepeatedMemory source(threeBillion);
    RepeatedMemory target(threeBillion);
    destination = &target;
    std::uint32_t state = 1;
    for (const auto chunk : {source.repeated(), source.last()})
        std::ranges::generate(chunk, [&] {
            state = state * 1664525 + 1013904223;
            return static_cast<unsigned char>(state >> 24);
        });

    MemoryBlockScene scene;
    scene.hideDataPointerMethod();
    scene.host.services().replace("memoryBlockGetPtr", pointerToDestination);
    scene.data->pointer = source.begin();
    scene.data->size = threeBillion;
    const host::ObjectRef made = scene.convert(scene.data);
    ASSERT_NE(made.handle(), nullptr);
    EXPECT_EQ(host::memoryBlockSize(made), static_cast<std::uint64_t>(threeBillion));
    EXPECT_THAT(scene.hostCalls(), testing::Contains("MemoryBlock.Constructor(MemoryBlock#1, "
                                                     "3000000000)"));
    EXPECT_FALSE(scene.host.hasPendingException());

    EXPECT_TRUE(std::ranges::equal(target.repeated(), source.repeated()));
    const std::size_t copied = threeBillion % RepeatedMemory::chunkSize;
    const auto last = target.last();
    EXPECT_TRUE(std::ranges::equal(last.first(copied), source.last().first(copied)));
    EXPECT_TRUE(std::ranges::all_of(last.subspan(copied), [](auto byte) { return byte == 0; }));
}

TEST(LargeMemoryBlock, OneByteShortIsReportedWithTheSizeAskedFor) {
    MemoryBlockScene scene;
    reportedSize = threeBillion - 1;
    scene.host.services().replace("REALGetPropValueInteger", reportSize);
    EXPECT_EQ(scene.convertSize(threeBillion).handle(), nullptr);
    EXPECT_THAT(scene.hostCalls(),
                ElementsAreArray(inOrder(
                    Lines{"PluginCallFunctionWithExceptionHandler(pointer, pointer) = nil",
                          "PluginNewInstance(\"MemoryBlock\") = MemoryBlock#1", loadConstructor,
                          "MemoryBlock.Constructor(MemoryBlock#1, 3000000000)",
                          "REALGetPropValueInteger(MemoryBlock#1, pointer, pointer) = true",
                          "REALUnlockObject(MemoryBlock#1)"},
                    raisingOutOfMemory(threeBillion, 2))));
    const auto raised = scene.host.takePendingException();
    ASSERT_TRUE(raised);
    EXPECT_EQ(raised->message, "Failed to allocate a memoryblock with 3000000000 bytes in size.");
}

TEST(LargeMemoryBlock, WhoseConstructorRaisesIsReportedAsOutOfMemory) {
    const std::string guarded = "PluginCallFunctionWithExceptionHandler(pointer, pointer) = ";
    MemoryBlockScene scene;
    scene.host.setMemoryBlockLimit(1000);
    EXPECT_EQ(scene.convertSize(threeBillion).handle(), nullptr);
    EXPECT_THAT(
        scene.hostCalls(),
        ElementsAreArray(inOrder(
            Lines{guarded + "OutOfMemoryException#2",
                  "PluginNewInstance(\"MemoryBlock\") = MemoryBlock#1", loadConstructor,
                  "MemoryBlock.Constructor(MemoryBlock#1, 3000000000)",
                  "REALGetPropValueInteger(MemoryBlock#1, \"Size\", pointer) = true",
                  "REALUnlockObject(MemoryBlock#1)", "REALUnlockObject(OutOfMemoryException#2)"},
            raisingOutOfMemory(threeBillion, 3, 2))));
    scene.expectOutOfMemory(threeBillion);
    EXPECT_THAT(scene.host.strayExceptions(), IsEmpty())
        << "the constructor's own is not passed on";
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}

TEST(LargeMemoryBlock, CountsWhateverTheGuardFoundRaised) {
    LargeScene scene;
    scene.host.services().replace("PluginCallFunctionWithExceptionHandler", guardWithException);
    scene.convertSize(leastLargeSize);
    const Lines calls = scene.hostCalls();
    const auto released = std::ranges::find(calls, "REALUnlockObject(RuntimeException#2)");
    ASSERT_NE(released, calls.end());
    ASSERT_NE(released + 1, calls.end());
    EXPECT_EQ(released[1], "newMemoryBlock(4) = MemoryBlock#3") << "the block goes on being filled";
    scene.expectOutOfMemory(leastLargeSize);
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}

TEST(LargeMemoryBlock, IsReleasedWhenTheGuardThrowsAfterIt) {
    LargeScene scene;
    scene.host.services().replace("PluginCallFunctionWithExceptionHandler", guardThrowingLate);
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertSize(leastLargeSize); }), "late");
    EXPECT_EQ(scene.hostCalls().back(), "REALUnlockObject(MemoryBlock#1)");
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}

TEST(LargeMemoryBlock, WithoutItsConstructorIsReported) {
    MemoryBlockScene scene;
    scene.host.hideMethod("Constructor(bytes as Integer)");
    EXPECT_EQ(scene.convertSize(threeBillion).handle(), nullptr);
    scene.expectOutOfMemory(threeBillion);
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}

// Of the largest length that counts as one.
TEST(LargeMemoryBlock, OfAllThatCanBeAddressedIsReported) {
    MemoryBlockScene scene;
    constexpr std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(scene.convertSize(greatest).handle(), nullptr);
    EXPECT_THAT(scene.hostCalls(),
                testing::Contains("MemoryBlock.Constructor(MemoryBlock#1, 9223372036854775807)"));
    scene.expectOutOfMemory(greatest);
}

TEST(LargeMemoryBlock, IsAskedForTheMethodItselfWithoutAScratchBlock) {
    LargeScene scene;
    scene.host.services().hide("newMemoryBlock");
    scene.convertSize(leastLargeSize);
    EXPECT_THAT(scene.hostCalls(),
                testing::Contains("REALLoadObjectMethod(MemoryBlock#1, \"Operator_Convert() As "
                                  "Ptr\") = nil"));
    scene.expectOutOfMemory(leastLargeSize);
}
