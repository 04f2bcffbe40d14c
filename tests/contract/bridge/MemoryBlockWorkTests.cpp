// A memory block by the host class's own constructor, the part that runs under the host's guard.

#include "LoadedPlugin.h"
#include "host/classes/Inspect.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;

namespace {

struct MemoryBlockRequest {
    std::int64_t size;
    host::ObjectHandle block;
};

constexpr const char *constructor = "Constructor(bytes as Integer)";

struct WorkScene : LoadedPlugin {
    host::ObjectRef work(std::int64_t size) {
        MemoryBlockRequest request{size, nullptr};
        work_(&request);
        EXPECT_EQ(request.size, size);
        return host::ObjectRef::adopt(request.block);
    }
    void (*const work_)(void *) = imageFunction<void(void *)>(image,
                                                              "REALNewMemoryBlockWork(void*)");
};

// What the property "Size" is made to say.
std::int64_t reportedSize;
bool reportSize(host::ObjectHandle, const char *, std::int64_t *size) {
    *size = reportedSize;
    return true;
}
bool reportNothingButWrite(host::ObjectHandle, const char *, std::int64_t *size) {
    *size = reportedSize;
    return false;
}
std::int64_t sizeByService(host::ObjectHandle) {
    return reportedSize;
}

} // namespace

TEST(MemoryBlockWork, ConstructsABlockAndChecksItsSize) {
    WorkScene scene;
    const host::ObjectRef made = scene.work(100);
    EXPECT_EQ(host::memoryBlockSize(made), 100u);
    EXPECT_EQ(scene.host.references(made), 1);
    EXPECT_THAT(
        scene.host.trace(),
        ElementsAre("find PluginNewInstance", "PluginNewInstance(\"MemoryBlock\") = MemoryBlock#1",
                    "find REALLoadObjectMethod",
                    "REALLoadObjectMethod(MemoryBlock#1, \"Constructor(bytes as "
                    "Integer)\") = pointer",
                    "MemoryBlock.Constructor(MemoryBlock#1, 100)", "find REALGetPropValueInteger",
                    "REALGetPropValueInteger(MemoryBlock#1, \"Size\", pointer) = true"));
}

TEST(MemoryBlockWork, LoadsTheConstructorOnce) {
    WorkScene scene;
    scene.work(100);
    scene.host.clearTrace();
    EXPECT_EQ(host::memoryBlockSize(scene.work(7)), 7u);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("PluginNewInstance(\"MemoryBlock\") = MemoryBlock#2",
                            "MemoryBlock.Constructor(MemoryBlock#2, 7)",
                            "REALGetPropValueInteger(MemoryBlock#2, \"Size\", pointer) = true"));
}

TEST(MemoryBlockWork, PassesASizeOf64Bits) {
    WorkScene scene;
    const host::ObjectRef made = scene.work(3'000'000'000);
    EXPECT_EQ(host::memoryBlockSize(made), 3'000'000'000u);
    EXPECT_THAT(scene.host.calls(), Contains("MemoryBlock.Constructor(MemoryBlock#1, 3000000000)"));
}

TEST(MemoryBlockWork, WithoutConstructorReleasesTheInstance) {
    WorkScene scene;
    scene.host.hideMethod(constructor);
    EXPECT_EQ(scene.work(100).handle(), nullptr);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("PluginNewInstance(\"MemoryBlock\") = MemoryBlock#1",
                            "REALLoadObjectMethod(MemoryBlock#1, \"Constructor(bytes as "
                            "Integer)\") = nil",
                            "REALUnlockObject(MemoryBlock#1)"));
}

TEST(MemoryBlockWork, KeepsThatThereIsNoConstructor) {
    WorkScene scene;
    scene.host.hideMethod(constructor);
    scene.work(100);
    scene.host.showMethod(constructor);
    scene.host.clearTrace();
    EXPECT_EQ(scene.work(100).handle(), nullptr);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("PluginNewInstance(\"MemoryBlock\") = MemoryBlock#2",
                            "REALUnlockObject(MemoryBlock#2)"));
}

TEST(MemoryBlockWork, TakesNoSizeFromAPropertyThatCouldNotBeRead) {
    WorkScene scene;
    reportedSize = 1'000'000;
    scene.host.services().replace("REALGetPropValueInteger", reportNothingButWrite);
    scene.host.services().hide("memoryBlockGetSize");
    EXPECT_EQ(scene.work(100).handle(), nullptr);
    scene.host.services().restore("memoryBlockGetSize");
    EXPECT_EQ(host::memoryBlockSize(scene.work(100)), 100u);
}

TEST(MemoryBlockWork, WithoutAnySizeTakesItForZero) {
    WorkScene scene;
    scene.host.services().hide("REALGetPropValueInteger");
    scene.host.services().hide("memoryBlockGetSize");
    EXPECT_EQ(scene.work(1).handle(), nullptr);
    EXPECT_EQ(scene.host.calls().back(), "REALUnlockObject(MemoryBlock#1)");
    EXPECT_NE(scene.work(0).handle(), nullptr);
}

TEST(MemoryBlockWork, HandsOutNoBlockThatIsSmallerThanAsked) {
    struct Row {
        std::int64_t wanted, actual;
        bool handedOut;
    };
    constexpr Row rows[] = {{100, 100, true},        {100, 99, false}, {100, 101, true},
                            {100, 0, false},         {100, -1, false}, {1, 0, false},
                            {100, 0x100000063, true}};
    WorkScene scene;
    for (const char *route : {"property", "service"}) {
        if (std::string_view(route) == "property") {
            scene.host.services().replace("REALGetPropValueInteger", reportSize);
        } else {
            scene.host.services().answerNull("REALGetPropValueInteger");
            scene.host.services().replace("memoryBlockGetSize", sizeByService);
        }
        for (const Row &row : rows) {
            SCOPED_TRACE(std::string(route) + ' ' + std::to_string(row.actual));
            reportedSize = row.actual;
            const host::ObjectRef made = scene.work(row.wanted);
            EXPECT_EQ(made.handle() != nullptr, row.handedOut);
            EXPECT_EQ(scene.host.account().liveObjects, row.handedOut ? 1u : 0u);
        }
    }
}

TEST(MemoryBlockWork, DoesNotAskTheServiceForASizeThatThePropertyTold) {
    WorkScene scene;
    reportedSize = 99;
    scene.host.services().replace("REALGetPropValueInteger", reportSize);
    scene.work(100);
    EXPECT_EQ(scene.host.services().lookups("memoryBlockGetSize"), 0u);
}
