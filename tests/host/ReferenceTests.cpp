#include "tests/host/FakePlugin.h"

#include "host/classes/Inspect.h"

namespace {

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char *plain = "PlainZKT";

struct References : testing::Test {
    References() { host.addClass({.name = plain}); }
    Host host;
};

using StringReferences = References;

TEST_F(References, NewInstanceHasOne) {
    const ObjectHandle object = pluginNewInstance(plain);
    EXPECT_EQ(host.references(object), 1);
    EXPECT_EQ(host.name(object), "PlainZKT#1");
    unlockObject(object);
    EXPECT_FALSE(host.isLive(object));
    EXPECT_EQ(host.references(object), 0);
}

TEST_F(References, LockAndUnlockCount) {
    const ObjectHandle object = pluginNewInstance(plain);
    lockObject(object);
    EXPECT_EQ(host.references(object), 2);
    unlockObject(object);
    EXPECT_EQ(host.references(object), 1);
    unlockObject(object);
    EXPECT_THAT(host.liveObjects(), IsEmpty());
}

TEST_F(References, NumbersAreNeverReused) {
    unlockObject(pluginNewInstance(plain));
    const ObjectHandle second = pluginNewInstance(plain);
    EXPECT_EQ(host.name(second), "PlainZKT#2");
    unlockObject(second);
}

TEST_F(References, OwnersAddAndDropTheirs) {
    ObjectRef first = host.newInstance(plain);
    EXPECT_EQ(host.references(first), 1);
    {
        const ObjectRef second = first;
        EXPECT_EQ(host.references(first), 2);
    }
    EXPECT_EQ(host.references(first), 1);
    const ObjectHandle handle = first;
    first = {};
    EXPECT_FALSE(host.isLive(handle));
}

TEST_F(References, ReleasingAnOwnerGivesItsReferenceToThePlugin) {
    ObjectRef owner = host.newInstance(plain);
    const ObjectHandle handle = owner.release();
    unlockObject(handle);
    EXPECT_FALSE(host.isLive(handle));
    EXPECT_THAT(host.violations(), IsEmpty());
}

TEST_F(References, LeakIsReportedAtTheEndWithItsHistory) {
    const ObjectHandle object = pluginNewInstance(plain);
    lockObject(object);
    lockObject(object);
    unlockObject(object);
    host.shutDown();
    EXPECT_THAT(host.violations(),
                ElementsAre("PlainZKT#1 leaked, 2 references never released (made by "
                            "PluginNewInstance, locked by REALLockObject, locked by "
                            "REALLockObject, released by REALUnlockObject)"));
    EXPECT_EQ(host.account().leaks, 1U);
}

TEST_F(References, WhatAProgramHoldsIsNoLeak) {
    const ObjectRef held = host.newInstance(plain);
    const StringRef text = host.makeString("abc");
    host.shutDown();
    EXPECT_THAT(host.violations(), IsEmpty());
    EXPECT_TRUE(host.isLive(held));
}

TEST_F(References, LeakedContainerIsReportedAndItsContentIsNot) {
    const ObjectHandle array = makeArray(objectElements).release();
    const ObjectHandle element = integerVariant(7);
    auto *insert = reinterpret_cast<void (*)(ObjectHandle, std::int64_t, ObjectHandle)>(
        service<void *(ObjectHandle)>("PluginObjectArrayInsertProc")(array));
    insert(array, 0, element);
    unlockObject(element);
    EXPECT_TRUE(host.isLive(element));
    host.shutDown();
    EXPECT_THAT(host.violations(), ElementsAre(HasSubstr("Array#1 leaked, 1 reference")));
}

TEST_F(References, ReleaseOfAnObjectThatThePluginDoesNotHold) {
    const ObjectRef owner = host.newInstance(plain);
    unlockObject(owner);
    EXPECT_EQ(host.references(owner), 1);
    EXPECT_THAT(host.violations(),
                ElementsAre("REALUnlockObject: releases PlainZKT#1, of which the plug-in holds no "
                            "reference (made by the host, handed to the host by the host)"));
}

TEST_F(References, UseAfterRelease) {
    const ObjectHandle object = pluginNewInstance(plain);
    unlockObject(object);
    lockObject(object);
    unlockObject(object);
    const std::string history = "(made by PluginNewInstance, released by REALUnlockObject, freed "
                                "by REALUnlockObject)";
    EXPECT_THAT(host.violations(),
                ElementsAre("REALLockObject: got PlainZKT#1 after it was freed " + history,
                            "REALUnlockObject: got PlainZKT#1 after it was freed " + history));
}

TEST_F(References, NilWhereAnObjectIsNeeded) {
    lockObject(nullptr);
    unlockString(nullptr);
    EXPECT_THAT(host.violations(),
                ElementsAre("REALLockObject: got nil where a live object is needed",
                            "REALUnlockString: got nil where a live string is needed"));
}

TEST_F(References, WildPointer) {
    int something = 0;
    lockObject(reinterpret_cast<ObjectHandle>(&something));
    unlockString(reinterpret_cast<StringHandle>(&something));
    lockObject(reinterpret_cast<ObjectHandle>(std::intptr_t{16}));
    EXPECT_THAT(
        host.violations(),
        ElementsAre(
            "REALLockObject: got a pointer that is no host object where a live object is needed",
            "REALUnlockString: got a pointer that is no host string where a live string is needed",
            "REALLockObject: got a pointer that is no host object where a live object is needed"));
    EXPECT_EQ(host.name(reinterpret_cast<ObjectHandle>(&something)), "invalid");
}

TEST_F(References, HandlesOfTheWrongKind) {
    const ObjectHandle object = pluginNewInstance(plain);
    const StringHandle string = buildString("abc");
    lockObject(reinterpret_cast<ObjectHandle>(string));
    lockString(reinterpret_cast<StringHandle>(object));
    EXPECT_THAT(host.violations(),
                ElementsAre("REALLockObject: got String#1 where an object is needed (made by "
                            "REALBuildString)",
                            "REALLockString: got PlainZKT#1 where a string is needed (made by "
                            "PluginNewInstance)"));
    EXPECT_EQ(host.references(object), 1);
    EXPECT_EQ(host.references(string), 1);
    unlockObject(object);
    unlockString(string);
}

TEST_F(References, LongHistoriesKeepTheFirstAndTheLatest) {
    const ObjectHandle object = pluginNewInstance(plain);
    for (int i = 0; i < 20; ++i) {
        lockObject(object);
        unlockObject(object);
    }
    const std::string history = host.history(object);
    EXPECT_THAT(history, testing::StartsWith(
                             "made by PluginNewInstance, (29 more), released by REALUnlockObject, "
                             "locked by REALLockObject,"));
    EXPECT_THAT(history, testing::EndsWith("locked by REALLockObject, released by "
                                           "REALUnlockObject"));
    unlockObject(object);
}

TEST_F(StringReferences, LeakUseAfterReleaseAndOverRelease) {
    const StringHandle leaked = buildString("a");
    lockString(leaked);
    const StringHandle freed = buildString("b");
    unlockString(freed);
    unlockString(freed);
    const StringRef held = host.makeString("c");
    unlockString(held);
    host.shutDown();
    EXPECT_THAT(host.violations(),
                ElementsAre(HasSubstr("REALUnlockString: got String#2 after it was freed"),
                            HasSubstr("REALUnlockString: releases String#3, of which the plug-in "
                                      "holds no reference"),
                            "String#1 leaked, 2 references never released (made by "
                            "REALBuildString, locked by REALLockString)"));
}

TEST_F(StringReferences, FreedBytesArePoisoned) {
    const StringHandle string = buildString("secret that is long enough to be on the heap");
    const auto *bytes = service<const char *(StringHandle)>("StringGetCString")(string);
    unlockString(string);
    EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 0xDB);
    EXPECT_EQ(host.bytes(string), "");
}

TEST(Quarantine, KeepsFreedObjectsUpToItsLimit) {
    Host host{{.quarantineLimit = 2}};
    host.addClass({.name = plain});
    std::vector<ObjectHandle> objects;
    for (int i = 0; i < 3; ++i)
        objects.push_back(pluginNewInstance(plain));
    for (const ObjectHandle object : objects)
        unlockObject(object);
    EXPECT_EQ(host.name(objects[0]), "invalid");
    EXPECT_EQ(host.name(objects[1]), "PlainZKT#2");
    EXPECT_EQ(host.name(objects[2]), "PlainZKT#3");
}

TEST(Quarantine, ManyObjectsDoNotGrowTheProcess) {
    Host host{{.tracing = false, .quarantineLimit = 16}};
    host.addClass({.name = plain});
    for (int i = 0; i < 100'000; ++i) {
        unlockObject(pluginNewInstance(plain));
        unlockString(buildString("abc"));
    }
    EXPECT_THAT(host.liveObjects(), IsEmpty());
    EXPECT_THAT(host.calls(), IsEmpty());
    EXPECT_EQ(host.account().calls, 400'000U);
}

TEST(Violations, UnexaminedOnesReachTheHandlerWhenTheHostDies) {
    std::vector<std::string> seen;
    Host::onUnexamined([&](const std::string &violation) { seen.push_back(violation); });
    {
        Host host;
        lockObject(nullptr);
        EXPECT_THAT(host.violations(), testing::SizeIs(1));
        lockString(nullptr);
        buildString("leaked");
    }
    Host::onUnexamined([](const std::string &violation) { ADD_FAILURE() << violation; });
    EXPECT_THAT(seen, ElementsAre(HasSubstr("REALLockString: got nil"),
                                  HasSubstr("String#1 leaked, 1 reference never released")));
}

TEST(Violations, OneHostAtATime) {
    const Host host;
    EXPECT_THROW(Host(), UsageError);
    EXPECT_EQ(&Host::current(), &host);
}

TEST(Violations, NoHostNoCurrentOne) {
    EXPECT_FALSE(Host::exists());
    EXPECT_THROW(Host::current(), UsageError);
}

} // namespace
