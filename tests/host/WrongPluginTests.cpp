// Plug-ins that are wrong in one thing, used as a program uses any plug-in: each is caught, by what
// it did.

#include "tests/host/WrongPlugins.h"

#include "host/GoogleTest.h"
#include "host/Host.h"

#include <gmock/gmock.h>

#include <exception>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace host;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::SizeIs;
using testing::ThrowsMessage;

constexpr const char *wrongClass = "WrongZKT";

/// A fault and all that the host says about it.
struct Fault {
    const char *name;
    std::vector<std::string> violations;
    const char *argument = nullptr; ///< of the method, if it takes one
};

void PrintTo(const Fault &fault, std::ostream *stream) {
    *stream << fault.name;
}

using Parameter = std::tuple<Fault, const char *>;

std::string parameterName(const testing::TestParamInfo<Parameter> &info) {
    return std::string(std::get<0>(info.param).name) + '_' + std::get<1>(info.param);
}

class WrongPlugin : public testing::TestWithParam<Parameter> {
protected:
    void load() { host_.loadPlugin(wrongPlugin(std::get<1>(GetParam()), fault().name)); }
    static const Fault &fault() { return std::get<0>(GetParam()); }

    /// Makes an instance, uses each of its members and drops it.
    void useInstance() {
        const ObjectRef object = host_.newObject(wrongClass).object();
        if (object.handle() == nullptr)
            return;
        host_.get(object, "size");
        host_.set(object, "size", 16);
        host_.set(object, "Handle", 7);
        host_.get(object, "Handle");
        host_.call(object, "act",
                   fault().argument == nullptr ? Values{} : Values{fault().argument});
    }

    Host host_;
};

class WrongPluginInUse : public WrongPlugin {};
class WrongPluginAtRegistration : public WrongPlugin {};

TEST_P(WrongPluginInUse, IsCaught) {
    load();
    EXPECT_THAT(host_.violations(), IsEmpty()) << "its records are right";
    useInstance();
    host_.shutDown();
    EXPECT_THAT(host_.violations(), ElementsAreArray(fault().violations));
}

TEST_P(WrongPluginAtRegistration, IsCaught) {
    load();
    EXPECT_THAT(host_.violations(), ElementsAreArray(fault().violations));
    EXPECT_THAT(host_.registeredRecords(), IsEmpty());
}

const Fault control[] = {{.name = "none", .violations = {}, .argument = "text"}};

const Fault references[] = {
    {"leakedObject", {"Date#2 leaked, 1 reference never released (made by PluginNewInstance)"}},
    {"leakedString", {"String#1 leaked, 1 reference never released (made by REALBuildString)"}},
    {"resultLockedTwice",
     {"Date#2 leaked, 1 reference never released (made by PluginNewInstance, locked by "
      "REALLockObject, handed to the host by act)"}},
    {"lentObjectReleased",
     {"REALUnlockObject: releases WrongZKT#1, of which the plug-in holds no reference (made by the "
      "host, handed to the host by the host)"}},
    {"lentStringReleased",
     {"REALUnlockString: releases String#1, of which the plug-in holds no reference (made by the "
      "host, handed to the host by the host)"},
     "text"},
    {"objectReleasedTwice",
     {"REALUnlockObject: got Date#2 after it was freed (made by PluginNewInstance, released by "
      "REALUnlockObject, freed by REALUnlockObject)"}},
    {"stringReleasedTwice",
     {"REALUnlockString: got String#1 after it was freed (made by REALBuildString, released by "
      "REALUnlockString, freed by REALUnlockString)"}},
    {"objectUsedAfterRelease",
     {"REALGetPropValueInteger: got Date#2 after it was freed (made by PluginNewInstance, "
      "released by REALUnlockObject, freed by REALUnlockObject)"}},
    {"stringUsedAfterRelease",
     {"StringGetCString: got String#1 after it was freed (made by REALBuildString, released by "
      "REALUnlockString, freed by REALUnlockString)"}},
    {"stringForAnObject",
     {"REALLockObject: got String#1 where an object is needed (made by the host, handed to the "
      "host by the host)"},
     "text"},
    {"dataForAnObject",
     {"REALLockObject: got a pointer that is no host object where a live object is needed"}},
    {"nilReleased", {"REALUnlockObject: got nil where a live object is needed"}},
    {"keptInDestructor",
     {"the host: WrongZKT#1 was locked in its destructor and kept (made by the host, handed to "
      "the host by the host, released by the host, locked by REALLockObject)"}},
    {"releasedInConstructor", {"the host: the constructor of WrongZKT released its own object"}},
    {"dateRaised",
     {"RuntimeRaiseException: got Date#2, which is no exception (made by PluginNewInstance)"}},
};

const Fault memory[] = {
    {"writtenBehindData",
     {"the host: WrongZKT#1 was overwritten behind its 16 bytes of instance data (made by the "
      "host, handed to the host by the host, released by the host)"}},
    {"writtenBeforeData",
     {"the host: WrongZKT#1 was overwritten before its instance data (made by the host, handed to "
      "the host by the host, released by the host)"}},
    {"writtenOverHeader",
     {"the host: WrongZKT#1 was overwritten before its instance data (made by the host)"}},
    {"writtenAfterDestruction",
     {"the host: WrongZKT#2 was written to after it was freed (made by PluginNewInstance, "
      "released by REALUnlockObject, freed by REALUnlockObject)"}},
};

const Fault declarations[] = {
    {"resultOfOtherClass", {"act: returned MemoryBlock#2 where the declaration says Date"}},
    {"numberForAString",
     {"act: got a pointer that is no host string where a live string is needed"}},
    {"numberForAnObject",
     {"act: got a pointer that is no host object where a live object is needed"}},
    {"stringForAnObjectResult",
     {"act: got String#1 where an object is needed (made by REALBuildString)",
      "String#1 leaked, 1 reference never released (made by REALBuildString)"}},
    {"objectForAnArray", {"act: returned Date#2 where the declaration says String()"}},
    {"resultWithoutReference",
     {"act: returned WrongZKT#1 without a reference to hand over (made by the host, handed to the "
      "host by the host)"}},
    {"resultReleased",
     {"act: got Date#2 after it was freed (made by PluginNewInstance, released by "
      "REALUnlockObject, freed by REALUnlockObject)"}},
    {"undeclaredResult", {"Date#2 leaked, 1 reference never released (made by PluginNewInstance)"}},
    {"undeclaredParameter",
     {"REALLockObject: got what the host had left in a register where a live object is needed"}},
    {"undeclaredParameterReturned",
     {"act: returned what the host had left in a register where the declaration says Integer"}},
    {"integerForADouble",
     {"act: returned what the host had left in a register where the declaration says Double"}},
    {"integerForASingle",
     {"act: returned what the host had left in a register where the declaration says Single"}},
    {"doubleForAnIntegerParameter",
     {"act: returned what the host had left in a register where the declaration says Double"}},
    {"getterForADouble",
     {"size: returned what the host had left in a register where the declaration says Double"}},
};

const Fault services[] = {
    {"negativeLength", {"REALBuildString: got the length -1"}},
    {"unknownEncoding",
     {"REALSetStringEncoding: got 0x00012345, which is no text encoding"},
     "text"},
    {"unreadableLookup", {"REALLoadObjectMethod: \"act(\": column 5: expected a parameter"}},
};

const Fault records[] = {
    {"unreadableDeclaration",
     {"PluginRegisterClass: WrongZKT: method 1 (act(text as): \"act(text as\": column 12: expected "
      "a type"}},
    {"unknownType", {"PluginRegisterClass: WrongZKT: method 1 (act as Strin): unknown type Strin"}},
    {"methodWithoutFunction", {"PluginRegisterClass: WrongZKT: method 1 (act): no function"}},
    {"unknownClassFlags", {"PluginRegisterClass: WrongZKT: the flags 5 are not supported"}},
    {"unknownPropertyFlags",
     {"PluginRegisterClass: WrongZKT: property 2 (Handle): the flags 0 are not supported"}},
    {"unknownMethodFlags",
     {"PluginRegisterClass: WrongZKT: method 1 (act): the flags 260 are not supported"}},
    {"oddDataSize", {"PluginRegisterClass: WrongZKT: the data size 24 is no multiple of 16"}},
    {"fieldPastData",
     {"PluginRegisterClass: WrongZKT: property 2 (Handle): its field at 9 passes the 16 bytes of "
      "instance data"}},
    {"tableWithoutCount",
     {"PluginRegisterClass: WrongZKT: a table of properties with the count 0"}},
    {"otherVersion",
     {"PluginRegisterClass: WrongZKT: interface version 12, but the plug-in told the host 13"}},
    {"nameOfAHostClass", {"PluginRegisterClass: Date: the class is registered already"}},
};

INSTANTIATE_TEST_SUITE_P(Nothing, WrongPluginInUse,
                         testing::Combine(testing::ValuesIn(control),
                                          testing::ValuesIn(wrongPluginSystems)),
                         parameterName);
INSTANTIATE_TEST_SUITE_P(References, WrongPluginInUse,
                         testing::Combine(testing::ValuesIn(references),
                                          testing::ValuesIn(wrongPluginSystems)),
                         parameterName);
INSTANTIATE_TEST_SUITE_P(Memory, WrongPluginInUse,
                         testing::Combine(testing::ValuesIn(memory),
                                          testing::ValuesIn(wrongPluginSystems)),
                         parameterName);
INSTANTIATE_TEST_SUITE_P(Declarations, WrongPluginInUse,
                         testing::Combine(testing::ValuesIn(declarations),
                                          testing::ValuesIn(wrongPluginSystems)),
                         parameterName);
INSTANTIATE_TEST_SUITE_P(Services, WrongPluginInUse,
                         testing::Combine(testing::ValuesIn(services),
                                          testing::ValuesIn(wrongPluginSystems)),
                         parameterName);
INSTANTIATE_TEST_SUITE_P(Records, WrongPluginAtRegistration,
                         testing::Combine(testing::ValuesIn(records),
                                          testing::ValuesIn(wrongPluginSystems)),
                         parameterName);

class WrongPluginAtStart : public testing::TestWithParam<const char *> {
protected:
    void load(const char *fault) { host_.loadPlugin(wrongPlugin(GetParam(), fault)); }
    Host host_;
};

class WrongPluginExceptions : public WrongPluginAtStart {};

TEST_P(WrongPluginAtStart, ClassRegisteredTwice) {
    load("registeredTwice");
    EXPECT_THAT(host_.violations(),
                ElementsAre("PluginRegisterClass: WrongZKT: the class is registered already"));
    EXPECT_THAT(host_.registeredRecords(), SizeIs(1));
}

TEST_P(WrongPluginAtStart, InterfaceVersionOfNoHost) {
    load("versionOfNoHost");
    EXPECT_THAT(host_.violations(),
                ElementsAre("RegisterPluginVersion: interface version 14 is none of 9 to 13"));
}

TEST_P(WrongPluginAtStart, ServiceWithoutAName) {
    load("namelessService");
    EXPECT_THAT(host_.violations(),
                ElementsAre("the host: the resolver was asked for a service without a name"));
}

TEST_P(WrongPluginAtStart, WithoutAnEntryPoint) {
    EXPECT_THAT([&] { load("noEntryPoint"); },
                ThrowsMessage<ImageError>(wrongPlugin(GetParam(), "noEntryPoint").string() +
                                          ": no plug-in: it does not export REALPluginMain"));
}

const auto leavesUnchanged = ThrowsMessage<std::exception>("not caught at home");

TEST_P(WrongPluginExceptions, FromTheEntryPoint) {
    EXPECT_THAT([&] { load("thrownByEntryPoint"); }, leavesUnchanged);
    EXPECT_THAT(host_.registeredRecords(), IsEmpty());
}

TEST_P(WrongPluginExceptions, FromAConstructorMakeNoObject) {
    load("thrownByConstructor");
    EXPECT_THAT([&] { host_.newObject(wrongClass); }, leavesUnchanged);
    EXPECT_THAT(host_.liveObjects(), IsEmpty());
}

TEST_P(WrongPluginExceptions, FromAMethod) {
    load("thrownByMethod");
    const ObjectRef object = host_.newInstance(wrongClass);
    EXPECT_THAT([&] { host_.call(object, "act"); }, leavesUnchanged);
}

TEST_P(WrongPluginExceptions, FromADestructorShowWhereTheObjectIsReleased) {
    load("thrownByDestructor");
    EXPECT_THAT([&] { host_.release(host_.newInstance(wrongClass)); }, leavesUnchanged);
    EXPECT_THAT(host_.liveObjects(), IsEmpty());
}

TEST_P(WrongPluginExceptions, FromADestructorThatNobodyWatchesAreViolations) {
    load("thrownByDestructor");
    {
        const ObjectRef object = host_.newInstance(wrongClass);
    }
    EXPECT_THAT(host_.violations(),
                ElementsAre("the host: a foreign exception left the destructor of WrongZKT#1"));
    EXPECT_THAT(host_.liveObjects(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, WrongPluginAtStart, testing::ValuesIn(wrongPluginSystems),
                         [](const auto &info) { return std::string(info.param); });
INSTANTIATE_TEST_SUITE_P(, WrongPluginExceptions, testing::ValuesIn(wrongPluginSystems),
                         [](const auto &info) { return std::string(info.param); });

} // namespace
