#include "tests/host/FakePlugin.h"

#include <cstring>

namespace {

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

struct MemoryDamage : testing::Test {
    MemoryDamage() {
        host.addClass({.name = "NearZKT", .dataSize = 16});
        host.addClass({.name = "FarZKT", .dataSize = 16, .dataOffset = 64});
    }
    static char *bytes(ObjectHandle object) { return reinterpret_cast<char *>(object); }
    Host host;
};

TEST_F(MemoryDamage, InstanceDataMayBeWrittenWhole) {
    const ObjectHandle near = pluginNewInstance("NearZKT");
    const ObjectHandle far = pluginNewInstance("FarZKT");
    EXPECT_EQ(host.dataOf(near), bytes(near) + 48);
    EXPECT_EQ(host.dataOf(far), bytes(far) + 64);
    std::memset(host.dataOf(near), 1, 16);
    std::memset(host.dataOf(far), 1, 16);
    unlockObject(near);
    unlockObject(far);
    EXPECT_THAT(host.violations(), IsEmpty());
}

TEST_F(MemoryDamage, DataStartsAsZeroesOrAsStated) {
    host.addClass({.name = "TaggedZKT",
                   .dataSize = 24,
                   .dataOffset = 48,
                   .initialData = std::vector<std::byte>(8, std::byte{0x46})});
    const ObjectHandle object = pluginNewInstance("TaggedZKT");
    const std::string data(static_cast<const char *>(host.dataOf(object)), 24);
    EXPECT_EQ(data, std::string(8, '\x46') + std::string(16, '\0'));
    unlockObject(object);
}

TEST_F(MemoryDamage, OneByteBehindTheData) {
    const ObjectHandle object = pluginNewInstance("NearZKT");
    bytes(object)[48 + 16] = 0;
    lockObject(object);
    EXPECT_THAT(host.violations(),
                ElementsAre("REALLockObject: NearZKT#1 was overwritten behind its 16 bytes of "
                            "instance data (made by PluginNewInstance)"));
    unlockObject(object);
    unlockObject(object);
    EXPECT_THAT(host.violations(), testing::SizeIs(1)) << "damage is reported once";
}

TEST_F(MemoryDamage, EveryByteBeforeTheDataIsGuarded) {
    for (std::size_t place = 0; place < 64; ++place) {
        const ObjectHandle object = pluginNewInstance("FarZKT");
        bytes(object)[place] = static_cast<char>(bytes(object)[place] + 1);
        const std::size_t before = host.violations().size();
        unlockObject(object);
        ASSERT_EQ(host.violations().size(), before + 1) << "byte " << place;
        EXPECT_THAT(host.violations().back(),
                    testing::HasSubstr("was overwritten before its instance data"));
    }
}

TEST_F(MemoryDamage, WriteAfterReleaseIsFoundAtTheEnd) {
    const ObjectHandle object = pluginNewInstance("NearZKT");
    unlockObject(object);
    bytes(object)[50] = 0;
    EXPECT_THAT(host.violations(), IsEmpty());
    host.shutDown();
    EXPECT_THAT(host.violations(),
                ElementsAre(testing::StartsWith(
                    "the host: NearZKT#1 was written to after it was freed (made by")));
}

TEST_F(MemoryDamage, FreedDataIsPoisoned) {
    const ObjectHandle object = pluginNewInstance("NearZKT");
    unlockObject(object);
    EXPECT_EQ(static_cast<unsigned char>(bytes(object)[48]), 0xDB);
    EXPECT_EQ(host.dataOf(object), nullptr);
}

TEST_F(MemoryDamage, ClassesCannotOverlapTheHeader) {
    EXPECT_THROW(host.addClass({.name = "BadZKT", .dataOffset = 40}), UsageError);
    EXPECT_THROW(host.addClass({.name = "NearZKT"}), UsageError);
    EXPECT_THROW(host.addClass({.name = "BadZKT", .superclass = "NoSuchClass"}), UsageError);
    EXPECT_THROW(host.addClass({.name = "BadZKT",
                                .dataSize = 8,
                                .initialData = std::vector<std::byte>(9, std::byte{})}),
                 UsageError);
}

} // namespace
