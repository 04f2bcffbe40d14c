// Wrappers of Core Foundation objects: what is written to the instance, what is retained, and what
// is left behind.

#include "Caught.h"
#include "CoreFoundationSpy.h"
#include "DispatchScene.h"
#import "ShapedObject.h"
#include "WatchedInstance.h"

#include <CoreText/CoreText.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

struct CoreFoundationWrapper : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;
    const Typed run{{CTRunGetTypeID()}};

    CoreFoundationData dataOf(host::ObjectHandle instance) {
        CoreFoundationData data;
        std::memcpy(&data, host.dataOf(instance), sizeof data);
        return data;
    }
    std::size_t received(const std::string &message) {
        const std::vector<std::string> lines = host.calls();
        return static_cast<std::size_t>(std::ranges::count(lines, '[' + message + ']'));
    }
};

} // namespace

TEST_F(CoreFoundationWrapper, HoldsTheObjectInItsFirstField) {
    scene.knowCoreFoundation("CTRunZKT");
    const host::ObjectRef made = scene.convert(run);
    EXPECT_EQ(dataOf(made).object, (const void *)run);
}

TEST_F(CoreFoundationWrapper, KeepsItsSecondField) {
    scene.knowCoreFoundation("CTRunZKT", {.untouched = 0x0123456789ABCDEF});
    const host::ObjectRef made = scene.convert(run);
    EXPECT_EQ(dataOf(made).untouched, 0x0123456789ABCDEFu);
}

TEST_F(CoreFoundationWrapper, KeepsItsTag) {
    scene.knowCoreFoundation("CTRunZKT");
    const host::ObjectRef made = scene.convert(run);
    EXPECT_EQ(dataOf(made).tag, 0x52424346u);
}

TEST_F(CoreFoundationWrapper, GetsItsTagWrittenAgain) {
    const CoreFoundationData data;
    const WatchedInstance instance(offsetof(CoreFoundationData, tag), &data, sizeof data);
    host.services().replace("PluginNewInstance", WatchedInstance::answer);
    EXPECT_EQ(scene.convertRaw(run), instance.handle());
    EXPECT_TRUE(instance.wasWritten());
    [run release]; // what the instance holds
}

TEST_F(CoreFoundationWrapper, RetainsTheObjectOnce) {
    scene.knowCoreFoundation("CTRunZKT");
    const NSUInteger references = [run retainCount];
    const host::ObjectRef made = scene.convert(run);
    EXPECT_EQ([run retainCount], references + 1);
    EXPECT_EQ(received("retain"), 1u);
}

TEST_F(CoreFoundationWrapper, HasOneReference) {
    scene.knowCoreFoundation("CTRunZKT");
    const host::ObjectRef made = scene.convert(run);
    EXPECT_EQ(host.references(made), 1);
}

TEST_F(CoreFoundationWrapper, IsNeverRegisteredAndNewEachTime) {
    scene.knowCoreFoundation("CTRunZKT");
    const CoreFoundationSpy spy(scene.image);
    const host::ObjectRef first = scene.convert(run);
    const host::ObjectRef second = scene.convert(run);
    EXPECT_NE(first.handle(), second.handle());
    EXPECT_EQ(host::siblings::registryCount(), 0u);
    EXPECT_THAT(spy.calls(), ElementsAre("CFDictionaryGetValue", "CFDictionaryGetValue"));
}

TEST_F(CoreFoundationWrapper, OfARegisteredObjectIsTheRegistrysInstance) {
    scene.knowCoreFoundation("CTRunZKT");
    const host::ObjectRef stored = host.newInstance(processInfoClass);
    const RegistryEntry entry((const void *)run, stored.handle());
    EXPECT_EQ(scene.convert(run).handle(), stored.handle());
    EXPECT_EQ(run->typesAsked, 0u);
}

TEST_F(CoreFoundationWrapper, IsAskedForByTypeFirstAndThenAsAnObject) {
    scene.knowCoreFoundation("CFObjectZKT");
    const host::ObjectRef made = scene.convert(run);
    EXPECT_THAT(scene.requests(), ElementsAre(asks("CTRunZKT"), asks("CFObjectZKT", 1)));
}

TEST_F(CoreFoundationWrapper, WithoutAnyHostClassIsNilAndNothingIsWalked) {
    scene.know("ShapedObjectZKT");
    scene.know("NSObjectZKT");
    const NSUInteger references = [run retainCount];
    EXPECT_EQ(scene.convertRaw(run), nullptr);
    EXPECT_THAT(scene.requests(), ElementsAre(asks("CTRunZKT"), asks("CFObjectZKT")));
    EXPECT_EQ(received("class"), 0u);
    EXPECT_EQ([run retainCount], references);
}

TEST_F(CoreFoundationWrapper, WithAnotherTagIsNilAndLeftAsItWas) {
    scene.know("ShapedObjectZKT");
    scene.knowCoreFoundation("CFObjectZKT");
    scene.knowCoreFoundation("CTRunZKT", {.tag = 0x52424347});
    const NSUInteger references = [run retainCount];
    EXPECT_EQ(scene.convertRaw(run), nullptr);
    EXPECT_EQ([run retainCount], references);
    EXPECT_THAT(scene.requests(), ElementsAre(asks("CTRunZKT", 1)));
    EXPECT_THAT(host.liveObjects(), ElementsAre("CTRunZKT#1"));
    EXPECT_EQ(received("class"), 0u);
    host.shutDown();
    EXPECT_THAT(host.violations(), ElementsAre(HasSubstr("CTRunZKT#1 leaked, 1 reference")));
}

TEST_F(CoreFoundationWrapper, ComparesTheWholeTag) {
    for (const std::uint64_t tag :
         {std::uint64_t{0}, std::uint64_t{0x46434252}, std::uint64_t{0x100000000 + 0x52424346},
          std::uint64_t{0x5242434600000000}, std::uint64_t{0x8000000052424346}}) {
        SCOPED_TRACE(tag);
        CoreFoundationData data;
        data.tag = tag;
        const WatchedInstance instance(0, &data, sizeof data);
        host.services().replace("PluginNewInstance", WatchedInstance::answer);
        EXPECT_EQ(scene.convertRaw(run), nullptr);
        EXPECT_FALSE(instance.wasWritten());
    }
}

TEST_F(CoreFoundationWrapper, AsAnObjectNeedsTheTagToo) {
    scene.knowCoreFoundation("CFObjectZKT", {.tag = 0});
    EXPECT_EQ(scene.convertRaw(run), nullptr);
    EXPECT_THAT(scene.requests(), ElementsAre(asks("CTRunZKT"), asks("CFObjectZKT", 1)));
    host.shutDown();
    EXPECT_THAT(host.violations(), ElementsAre(HasSubstr("CFObjectZKT#1 leaked")));
}

TEST_F(CoreFoundationWrapper, WhoseObjectRefusesTheRetainIsAbandonedForTheWalk) {
    scene.knowCoreFoundation("CTRunZKT");
    scene.know("ShapedObjectZKT");
    int retains = 0;
    run->onMessage = [&](std::string_view message) {
        if (message == "retain" && ++retains == 1)
            [NSException raise:@"Refused" format:@"retain"];
    };
    {
        EXPECT_EQ(host.className(scene.convert(run)), "ShapedObjectZKT");
    }
    EXPECT_EQ(retains, 2);
    run->onMessage = nullptr;
    host.shutDown();
    static_cast<void>(host.violations()); // whether the first instance is released is left open
}

TEST_F(CoreFoundationWrapper, LetsAStandardExceptionFromTheObjectPass) {
    run->onMessage = [](std::string_view message) {
        if (message == "_cfTypeID")
            throw std::runtime_error("no type");
    };
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertRaw(run); }), "no type");
    EXPECT_EQ(received("class"), 0u);
}
