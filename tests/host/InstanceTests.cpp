#include "tests/host/FakePlugin.h"

#include <stdexcept>

namespace {

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> events;
std::int64_t valueAtEnd = 0;

std::int64_t &dataOf(ObjectHandle object) {
    return *static_cast<std::int64_t *>(Host::current().dataOf(object));
}

void construct(ObjectHandle object) {
    events.emplace_back("constructor");
    dataOf(object) = 1;
}
void constructorMethod(ObjectHandle object) {
    events.emplace_back("Constructor");
    dataOf(object) += 10;
}
void constructorWithValue(ObjectHandle object, std::int64_t value) {
    events.emplace_back("Constructor(Integer)");
    dataOf(object) += value;
}
void destructorMethod(ObjectHandle object) {
    events.emplace_back("Destructor");
    dataOf(object) += 100;
}
void destruct(ObjectHandle object) {
    events.emplace_back("destructor");
    valueAtEnd = dataOf(object);
}
void raiseIn(ObjectHandle) {
    const ObjectHandle exception = pluginNewInstance("UnsupportedOperationException");
    raiseException(exception);
    unlockObject(exception);
}
void throwIn(ObjectHandle) {
    throw std::runtime_error("from the destructor");
}
void keepIn(ObjectHandle object) {
    lockObject(object);
}
void lockAndUnlockIn(ObjectHandle object) {
    lockObject(object);
    unlockObject(object);
}
void releaseIn(ObjectHandle object) {
    unlockObject(object);
}

struct Instances : testing::Test {
    Instances() {
        events.clear();
        valueAtEnd = 0;
        type.record.constructor = construct;
        type.record.destructor = destruct;
        type.methods = {method("Constructor", pointer(constructorMethod)),
                        method("Constructor(value as Integer)", pointer(constructorWithValue)),
                        method("Destructor", pointer(destructorMethod))};
    }
    FakeClass type{"LivingZKT"};
    Host host;
};

TEST_F(Instances, OfProgramsRunTheConstructorMethodToo) {
    type.registerClass();
    const ObjectRef object = host.newObject("LivingZKT").object();
    EXPECT_THAT(events, ElementsAre("constructor", "Constructor"));
    EXPECT_EQ(dataOf(object), 11);
    EXPECT_EQ(host.references(object), 1);
}

TEST_F(Instances, ConstructorMethodIsChosenByItsArguments) {
    type.registerClass();
    const ObjectRef object = host.newObject("LivingZKT", {5}).object();
    EXPECT_THAT(events, ElementsAre("constructor", "Constructor(Integer)"));
    EXPECT_THROW(host.newObject("LivingZKT", {5, 6}), UsageError);
}

TEST_F(Instances, OfPluginsRunTheClassConstructorOnly) {
    type.registerClass();
    const ObjectHandle object = pluginNewInstance("LivingZKT");
    EXPECT_THAT(events, ElementsAre("constructor"));
    EXPECT_EQ(host.references(object), 1);
    unlockObject(object);
}

TEST_F(Instances, EndWithTheMethodThenTheClassDestructorWhileTheDataIsIntact) {
    type.registerClass();
    ObjectRef object = host.newObject("LivingZKT").object();
    events.clear();
    object = {};
    EXPECT_THAT(events, ElementsAre("Destructor", "destructor"));
    EXPECT_EQ(valueAtEnd, 111);
    EXPECT_THAT(host.liveObjects(), IsEmpty());
}

TEST_F(Instances, EndWhenThePluginReleasesTheLastReference) {
    type.registerClass();
    unlockObject(pluginNewInstance("LivingZKT"));
    EXPECT_THAT(events, ElementsAre("constructor", "Destructor", "destructor"));
}

TEST_F(Instances, WithoutConstructorsAndDestructors) {
    type.record.constructor = nullptr;
    type.record.destructor = nullptr;
    type.methods.clear();
    type.registerClass();
    EXPECT_EQ(dataOf(host.newObject("LivingZKT").object()), 0);
    EXPECT_THROW(host.newObject("LivingZKT", {1}), UsageError);
}

TEST_F(Instances, OfSubclassesAreBuiltFromTheTop) {
    type.record.dataSize = 0;
    type.record.constructor = [](ObjectHandle) { events.emplace_back("base constructor"); };
    type.record.destructor = [](ObjectHandle) { events.emplace_back("base destructor"); };
    type.methods.clear();
    type.registerClass();
    FakeClass derived("DerivedZKT");
    derived.record.superclass = "LivingZKT";
    derived.record.constructor = construct;
    derived.record.destructor = destruct;
    derived.registerClass();
    unlockObject(pluginNewInstance("DerivedZKT"));
    EXPECT_THAT(events,
                ElementsAre("base constructor", "constructor", "destructor", "base destructor"));
    // The host keeps the derived class's record until it dies.
    host.shutDown();
}

TEST_F(Instances, ExceptionRaisedByTheConstructorMethodEndsTheObject) {
    type.methods[0].function = pointer(raiseIn);
    type.registerClass();
    {
        const Outcome outcome = host.newObject("LivingZKT");
        ASSERT_TRUE(outcome.raised());
        EXPECT_EQ(outcome.exception->className, "UnsupportedOperationException");
        EXPECT_TRUE(outcome.value.isNil());
    }
    EXPECT_THAT(events, ElementsAre("constructor", "Destructor", "destructor"));
    EXPECT_THAT(host.liveObjects(), IsEmpty());
}

TEST_F(Instances, ExceptionRaisedByTheClassConstructorSkipsTheMethod) {
    type.record.constructor = raiseIn;
    type.registerClass();
    EXPECT_TRUE(host.newObject("LivingZKT").raised());
    EXPECT_THAT(events, ElementsAre("Destructor", "destructor"));
}

TEST_F(Instances, ForeignExceptionFromTheClassConstructorLeavesNoObject) {
    type.record.constructor = throwIn;
    type.registerClass();
    EXPECT_THROW(pluginNewInstance("LivingZKT"), std::runtime_error);
    EXPECT_THROW(host.newObject("LivingZKT"), std::runtime_error);
    EXPECT_THAT(host.liveObjects(), IsEmpty());
    EXPECT_THAT(events, IsEmpty()) << "no destructors for what was never constructed";
}

TEST_F(Instances, ReleaseShowsWhatTheDestructorRaised) {
    type.methods[2].function = pointer(raiseIn);
    type.registerClass();
    const Outcome outcome = host.release(host.newObject("LivingZKT").object());
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "UnsupportedOperationException");
}

TEST_F(Instances, ReleaseLetsForeignExceptionsPassAndStillEndsTheObject) {
    type.methods[2].function = pointer(throwIn);
    type.registerClass();
    EXPECT_THROW(host.release(host.newObject("LivingZKT").object()), std::runtime_error);
    EXPECT_THAT(host.liveObjects(), IsEmpty());
    EXPECT_THAT(host.violations(), IsEmpty());
    const ObjectHandle object = pluginNewInstance("LivingZKT");
    EXPECT_THROW(unlockObject(object), std::runtime_error);
    EXPECT_FALSE(host.isLive(object));
}

TEST_F(Instances, ForeignExceptionInAnOwnersDestructorIsAViolation) {
    type.methods[2].function = pointer(throwIn);
    type.registerClass();
    {
        const ObjectRef object = host.newInstance("LivingZKT");
    }
    EXPECT_THAT(host.violations(),
                ElementsAre("the host: a foreign exception left the destructor of LivingZKT#1"));
}

TEST_F(Instances, DestructorsMayLockAndUnlockTheirObject) {
    type.methods[2].function = pointer(lockAndUnlockIn);
    type.registerClass();
    unlockObject(pluginNewInstance("LivingZKT"));
    EXPECT_THAT(host.violations(), IsEmpty());
    EXPECT_THAT(host.liveObjects(), IsEmpty());
}

TEST_F(Instances, KeepingAnObjectInItsDestructorIsAViolation) {
    type.methods[2].function = pointer(keepIn);
    type.registerClass();
    const ObjectHandle object = pluginNewInstance("LivingZKT");
    unlockObject(object);
    EXPECT_FALSE(host.isLive(object));
    EXPECT_THAT(host.violations(), ElementsAre(HasSubstr("LivingZKT#1 was locked in its "
                                                         "destructor and kept")));
}

TEST_F(Instances, ReleasingAnObjectInItsConstructorIsAViolation) {
    type.record.constructor = releaseIn;
    type.registerClass();
    EXPECT_EQ(pluginNewInstance("LivingZKT"), nullptr);
    EXPECT_THAT(host.violations(), ElementsAre(HasSubstr("the constructor of LivingZKT released "
                                                         "its own object")));
}

TEST_F(Instances, ReleasingAnObjectInItsDestructorIsAViolation) {
    type.methods[2].function = pointer(releaseIn);
    type.registerClass();
    unlockObject(pluginNewInstance("LivingZKT"));
    EXPECT_THAT(host.violations(), ElementsAre(HasSubstr("releases LivingZKT#1, of which the "
                                                         "plug-in holds no reference")));
    EXPECT_THAT(host.liveObjects(), IsEmpty());
}

TEST_F(Instances, UnknownClasses) {
    EXPECT_FALSE(host.newInstance("NoSuchClass"));
    EXPECT_THROW(host.newObject("NoSuchClass"), UsageError);
}

} // namespace
