// Host memory blocks from Cocoa data: what is copied, and by which calls.

#import "MemoryBlockScene.h"

#include <gmock/gmock.h>

#include <limits>
#include <numeric>

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

std::string bytesInOrder(std::size_t count) {
    std::string bytes(count, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    return bytes;
}

NSData *dataOf(const std::string &bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}

} // namespace

TEST(MemoryBlock, OfNilIsNil) {
    MemoryBlockScene scene;
    EXPECT_EQ(scene.convert(nil).handle(), nullptr);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
    EXPECT_FALSE(scene.host.hasPendingException());
}

TEST(MemoryBlock, OfEmptyDataIsNil) {
    MemoryBlockScene scene;
    EXPECT_EQ(scene.convert([NSData data]).handle(), nullptr);
    EXPECT_EQ(scene.convert([NSMutableData dataWithCapacity:100]).handle(), nullptr);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
    EXPECT_FALSE(scene.host.hasPendingException());
}

TEST(MemoryBlock, OfBytesWithoutALengthIsNil) {
    MemoryBlockScene scene;
    EXPECT_EQ(scene.convertSize(0).handle(), nullptr);
    EXPECT_THAT(scene.host.trace(), ElementsAre("[data bytes]", "[data length]"));
    EXPECT_FALSE(scene.host.hasPendingException());
}

// A length of 2^63 and more is none that a block could have.
TEST(MemoryBlock, OfALengthBelowZeroIsNil) {
    MemoryBlockScene scene;
    for (const std::int64_t size : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()})
        EXPECT_EQ(scene.convertSize(size).handle(), nullptr);
    EXPECT_THAT(scene.hostCalls(), IsEmpty());
    EXPECT_FALSE(scene.host.hasPendingException());
}

TEST(MemoryBlock, OfALengthWithoutBytesIsNil) {
    MemoryBlockScene scene;
    scene.data->size = 5;
    EXPECT_EQ(scene.convert(scene.data).handle(), nullptr);
    EXPECT_THAT(scene.hostCalls(), IsEmpty());
    EXPECT_FALSE(scene.host.hasPendingException());
}

TEST(MemoryBlock, HoldsTheBytes) {
    MemoryBlockScene scene;
    for (const std::size_t size : {1u, 3u, 4u, 5u, 255u, 4096u, 65537u}) {
        SCOPED_TRACE(size);
        const std::string bytes = bytesInOrder(size);
        const host::ObjectRef made = scene.convert(dataOf(bytes));
        EXPECT_EQ(scene.host.className(made), "MemoryBlock");
        EXPECT_EQ(host::memoryBlockBytes(made), bytes);
    }
}

TEST(MemoryBlock, BelongsToTheCaller) {
    MemoryBlockScene scene;
    const host::ObjectRef made = scene.convert(dataOf("abc"));
    EXPECT_EQ(scene.host.references(made), 1);
    EXPECT_THAT(scene.host.liveObjects(), ElementsAre(block(1)));
}

TEST(MemoryBlock, IsACopy) {
    MemoryBlockScene scene;
    NSMutableData *data = [NSMutableData dataWithBytes:"abc" length:3];
    const host::ObjectRef first = scene.convert(data);
    static_cast<char *>([data mutableBytes])[1] = 'x';
    const host::ObjectRef second = scene.convert(data);
    EXPECT_EQ(host::memoryBlockBytes(first), "abc");
    EXPECT_EQ(host::memoryBlockBytes(second), "axc");
}

TEST(MemoryBlock, LeavesTheDataAsItWas) {
    MemoryBlockScene scene;
    NSData *data = dataOf("abc");
    const NSUInteger references = [data retainCount];
    scene.convert(data);
    EXPECT_EQ([data retainCount], references);
    EXPECT_TRUE([data isEqualToData:dataOf("abc")]);
}

TEST(MemoryBlock, AsksTheDataForBytesAndLengthOnce) {
    MemoryBlockScene scene;
    scene.convertSize(3);
    EXPECT_THAT(scene.host.calls(), testing::Contains("[data bytes]").Times(1));
    EXPECT_THAT(scene.host.calls(), testing::Contains("[data length]").Times(1));
    EXPECT_EQ(scene.host.calls().at(0), "[data bytes]");
    EXPECT_EQ(scene.host.calls().at(1), "[data length]");
}

TEST(MemoryBlock, IsMadeBySizeAndFilledThroughItsOwnMethod) {
    MemoryBlockScene scene;
    const host::ObjectRef made = scene.convert(dataOf("abc"));
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("find newMemoryBlock", "newMemoryBlock(3) = MemoryBlock#1",
                            "newMemoryBlock(4) = MemoryBlock#2", "find REALLoadObjectMethod",
                            "REALLoadObjectMethod(MemoryBlock#2, \"Operator_Convert() As Ptr\") "
                            "= pointer",
                            "find REALUnlockObject", "REALUnlockObject(MemoryBlock#2)",
                            "MemoryBlock.Operator_Convert(MemoryBlock#1) = pointer"));
}

TEST(MemoryBlock, NeedsNoScratchBlockOnceTheMethodIsFound) {
    MemoryBlockScene scene;
    scene.convert(dataOf("abc"));
    for (int number : {3, 4}) {
        scene.host.clearTrace();
        scene.convert(dataOf("abcd"));
        EXPECT_THAT(scene.host.trace(),
                    ElementsAre("newMemoryBlock(4) = " + block(number),
                                "MemoryBlock.Operator_Convert(" + block(number) + ") = pointer"));
    }
}

TEST(MemoryBlock, LooksForTheMethodAgainUntilItIsFound) {
    MemoryBlockScene scene;
    scene.hideDataPointerMethod();
    for (int number : {1, 3}) {
        scene.host.clearTrace();
        scene.convert(dataOf("abc"));
        EXPECT_THAT(
            scene.host.calls(),
            ElementsAreArray(inOrder(Lines{"newMemoryBlock(3) = " + block(number)},
                                     loadingFromScratch(number + 1, "nil"),
                                     Lines{"memoryBlockGetPtr(" + block(number) + ") = pointer"})));
    }
    scene.host.showMethod(dataPointerMethod);
    scene.host.clearTrace();
    scene.convert(dataOf("abc"));
    EXPECT_THAT(scene.host.calls(),
                ElementsAreArray(inOrder(
                    Lines{"newMemoryBlock(3) = MemoryBlock#5"}, loadingFromScratch(6, "pointer"),
                    Lines{"MemoryBlock.Operator_Convert(MemoryBlock#5) = pointer"})));
    scene.host.clearTrace();
    scene.convert(dataOf("abc"));
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("newMemoryBlock(3) = MemoryBlock#7",
                            "MemoryBlock.Operator_Convert(MemoryBlock#7) = pointer"));
}

TEST(MemoryBlock, IsFilledThroughTheServiceWhereTheMethodIsMissing) {
    MemoryBlockScene scene;
    scene.hideDataPointerMethod();
    const host::ObjectRef made = scene.convert(dataOf("abc"));
    EXPECT_EQ(host::memoryBlockBytes(made), "abc");
    EXPECT_EQ(scene.host.services().calls("memoryBlockGetPtr"), 1u);
}

TEST(MemoryBlock, IsAskedForTheMethodItselfWithoutAScratchBlock) {
    MemoryBlockScene scene;
    host::Services &services = scene.host.services();
    services.fail("newMemoryBlock", [&] { services.answerNull("newMemoryBlock"); });
    const host::ObjectRef made = scene.convert(dataOf("abc"));
    EXPECT_EQ(host::memoryBlockBytes(made), "abc");
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("newMemoryBlock(3) = MemoryBlock#1", "newMemoryBlock(4) = nil",
                            "REALLoadObjectMethod(MemoryBlock#1, \"Operator_Convert() As Ptr\") "
                            "= pointer",
                            "MemoryBlock.Operator_Convert(MemoryBlock#1) = pointer"));
}
