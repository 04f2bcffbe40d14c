// The family's wrapper classes that the host stands in for, and containers read as they are.

#include "host/classes/Inspect.h"
#include "host/family/Siblings.h"

#include "tests/host/FakePlugin.h"

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include <cstring>

namespace {

using namespace host;
using testing::IsEmpty;

/// What a plug-in does with a new wrapper of an object.
void wrap(const Host &host, ObjectHandle instance, id object) {
    [object retain];
    std::memcpy(host.dataOf(instance), &object, sizeof object);
}

TEST(WrapperClasses, AreThereWhenAskedFor) {
    Host host{{.siblings = ::host::Siblings::wrappers}};
    for (const char *name : {"NSFontZKT", "NSPathComponentCellZKT", "NSExpressionZKT",
                             "NSUserNotificationZKT", "QCCompositionRepositoryZKT", "CFObjectZKT",
                             "CTRunDelegateZKT", "NSRangeZKT", "NSExceptionZKT"}) {
        SCOPED_TRACE(name);
        const ObjectHandle object = pluginNewInstance(name);
        ASSERT_NE(object, nullptr);
        unlockObject(object);
    }
    EXPECT_EQ(pluginNewInstance("NSObjectZKT"), nullptr);
}

TEST(WrapperClasses, AreNotThereOtherwise) {
    Host host;
    EXPECT_EQ(pluginNewInstance("NSFontZKT"), nullptr);
    EXPECT_EQ(pluginNewInstance("CFObjectZKT"), nullptr);
    EXPECT_EQ(pluginNewInstance("NSRangeZKT"), nullptr);
}

TEST(WrapperClasses, BringTheRegistry) {
    Host host{{.siblings = ::host::Siblings::wrappers}};
    EXPECT_TRUE([NSException respondsToSelector:@selector(GetInstancesDictionaryZKT)]);
    EXPECT_TRUE([NSException respondsToSelector:@selector(NewNSExceptionZKT:)]);
}

TEST(WrapperClasses, GiveBackWhatTheyHold) {
    Host host{{.siblings = ::host::Siblings::wrappers}};
    NSObject *object = [[[NSObject alloc] init] autorelease];
    for (const char *name : {"NSFontZKT", "CFObjectZKT"}) {
        SCOPED_TRACE(name);
        const ObjectHandle instance = pluginNewInstance(name);
        wrap(host, instance, object);
        EXPECT_EQ([object retainCount], 2U);
        unlockObject(instance);
        EXPECT_EQ([object retainCount], 1U);
    }
}

TEST(WrapperClasses, LeaveTheRegistryWhenTheyDie) {
    Host host{{.siblings = ::host::Siblings::wrappers}};
    auto *const registry = static_cast<CFMutableDictionaryRef>(siblings::registry());
    NSObject *object = [[[NSObject alloc] init] autorelease];
    const ObjectHandle entered = pluginNewInstance("NSFontZKT");
    const ObjectHandle other = pluginNewInstance("NSFontZKT");
    wrap(host, entered, object);
    wrap(host, other, object);
    CFDictionarySetValue(registry, object, entered);
    unlockObject(other);
    EXPECT_EQ(siblings::registered(object), entered) << "another's entry stays";
    unlockObject(entered);
    EXPECT_EQ(siblings::registered(object), nullptr);
}

TEST(WrapperClasses, MayDieEmpty) {
    Host host{{.siblings = ::host::Siblings::wrappers}};
    for (const char *name : {"NSFontZKT", "CFObjectZKT", "NSRectZKT"})
        unlockObject(pluginNewInstance(name));
    EXPECT_THAT(host.liveObjects(), IsEmpty());
}

TEST(WrapperClasses, OfCoreFoundationHaveTheirTag) {
    Host host{{.siblings = ::host::Siblings::wrappers}};
    const ObjectRef instance = ObjectRef::adopt(pluginNewInstance("CFStringZKT"));
    const auto *fields = static_cast<const std::int64_t *>(host.dataOf(instance));
    EXPECT_EQ(fields[0], 0);
    EXPECT_EQ(fields[2], 0x52424346);
}

TEST(WrapperClasses, OfStructuresHoldNumbersAndNoObject) {
    Host host{{.siblings = ::host::Siblings::wrappers}};
    const ObjectHandle rect = pluginNewInstance("NSRectZKT");
    auto *const fields = static_cast<double *>(host.dataOf(rect));
    for (int i = 0; i < 4; ++i)
        fields[i] = i + 1;
    unlockObject(rect);
    EXPECT_THAT(host.violations(), IsEmpty());
}

TEST(Containers, CanBeReadWithTheirVariantsAsTheyAre) {
    Host host;
    const ObjectRef array = makeArray(objectElements);
    const ObjectRef single = box(Value(1.5), VariantType::single);
    using Insert = void(ObjectHandle, std::int64_t, ObjectHandle);
    auto *const insert = reinterpret_cast<Insert *>(
        service<void *(ObjectHandle)>("PluginObjectArrayInsertProc")(array));
    insert(array, 0, single);
    insert(array, 1, nullptr);
    const auto elements = arrayObjects(array);
    ASSERT_EQ(elements.size(), 2U);
    EXPECT_EQ(elements[0].object().handle(), single.handle());
    EXPECT_TRUE(elements[1].isNil());

    const ObjectRef dictionary = ObjectRef::adopt(pluginNewInstance("Dictionary"));
    using SetValue = void(ObjectHandle, ObjectHandle, ObjectHandle);
    reinterpret_cast<SetValue *>(loadObjectMethod(
        dictionary, "Value(key As Variant, Assigns value As Variant)"))(dictionary, single, array);
    const auto entries = dictionaryObjects(dictionary);
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].first.object().handle(), single.handle());
    EXPECT_EQ(entries[0].second.object().handle(), array.handle());
}

} // namespace
