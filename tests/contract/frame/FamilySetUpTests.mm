// How the plug-in finds its family: the registry of wrappers and the exception support, each asked
// for until it is there.

#include "ActingScene.h"
#include "Caught.h"
#include "FamilyDouble.h"
#include "LoadedPlugin.h"

#include "host/core/Core.h"
#include "host/family/Siblings.h"

#import <Foundation/Foundation.h>

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace siblings = host::siblings;
using testing::ElementsAre;

static host::ObjectRef sharedInstance(host::Host &host) {
    return host.callShared(processInfoClass, "processInfo").object();
}

namespace {

// The operations that look for the family, each seen alone.
struct Operation {
    const char *name;
    void (*prepare)(host::Host &, host::ObjectRef &); // before the family is there
    void (*run)(host::Host &, host::ObjectRef &);
};
void PrintTo(const Operation &operation, std::ostream *stream) {
    *stream << operation.name;
}

void nothing(host::Host &, host::ObjectRef &) {}

void makeEmpty(host::Host &host, host::ObjectRef &instance) {
    instance = host.newInstance(processInfoClass);
}

void makeBound(host::Host &host, host::ObjectRef &instance) {
    instance = host.newObject(processInfoClass).object();
}

void dropInstance(host::Host &, host::ObjectRef &instance) {
    instance = {};
}

class FamilySetUp : public testing::TestWithParam<Operation> {};

} // namespace

TEST_P(FamilySetUp, AsksForTheRegistryAndThenForThePreparation) {
    LoadedPlugin loaded({.siblings = host::Siblings::none});
    host::ObjectRef instance;
    GetParam().prepare(loaded.host, instance);

    std::vector<std::string> asked;
    familyDouble::addRegistry([&] {
        asked.emplace_back("GetInstancesDictionaryZKT");
        return siblings::registry();
    });
    familyDouble::addPreparation([&] { asked.emplace_back("PrepareNSExceptionZKT"); });
    GetParam().run(loaded.host, instance);
    EXPECT_THAT(asked, ElementsAre("GetInstancesDictionaryZKT", "PrepareNSExceptionZKT"));
}

TEST_P(FamilySetUp, WorksWithoutAFamily) {
    LoadedPlugin loaded({.siblings = host::Siblings::none});
    host::ObjectRef instance;
    GetParam().prepare(loaded.host, instance);
    GetParam().run(loaded.host, instance);
    EXPECT_FALSE(loaded.host.hasPendingException());
    EXPECT_EQ(siblings::registryCount(), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    , FamilySetUp,
    testing::Values(Operation{"ByTheClassConstructor", nothing, makeEmpty},
                    Operation{"ByTheDestructor", makeBound, dropInstance},
                    Operation{"ByTheDestructorOfAnEmptyInstance", makeEmpty, dropInstance},
                    Operation{"ByProcessInfo", nothing,
                              [](host::Host &host, host::ObjectRef &instance) {
                                  // Without an instance, which would bring its constructor.
                                  host.services().answerNull("PluginNewInstance");
                                  instance = sharedInstance(host);
                              }}),
    [](const auto &parameter) { return parameter.param.name; });

TEST(Family, IsNotLookedForByTheOtherOperations) {
    LoadedPlugin loaded({.siblings = host::Siblings::none});
    const auto instance = loaded.host.newInstance(processInfoClass);
    siblings::installExceptions(host::Core::current());
    siblings::installRegistry();
    loaded.host.call(instance, "Constructor");
    loaded.host.call(instance, "Constructor");
    loaded.host.call(instance, "_exception");
    for (const char *property : {"thermalState", "hostName", "processIdentifier", "argumentsCount"})
        loaded.host.get(instance, property);
    loaded.host.callShared(processInfoClass, "NSProcessInfoThermalStateDidChangeNotification");
    EXPECT_EQ(siblings::prepareCount(), 0u);
    EXPECT_EQ(siblings::registryRequests(), 0u);
}

TEST(Family, IsAskedForTheRegistryOnce) {
    LoadedPlugin loaded;
    for (int i = 0; i < 3; ++i) {
        const auto made = loaded.host.newObject(processInfoClass).object();
        const auto shared = sharedInstance(loaded.host);
    }
    EXPECT_EQ(siblings::registryRequests(), 1u);
}

TEST(Family, IsAskedToPrepareExceptionsOnce) {
    LoadedPlugin loaded;
    for (int i = 0; i < 3; ++i) {
        const auto made = loaded.host.newObject(processInfoClass).object();
        const auto shared = sharedInstance(loaded.host);
    }
    EXPECT_EQ(siblings::prepareCount(), 1u);
}

TEST(Family, IsNotAskedWhileTheClassesAreRegistered) {
    LoadedPlugin loaded;
    EXPECT_EQ(siblings::registryRequests(), 0u);
    EXPECT_EQ(siblings::prepareCount(), 0u);
}

TEST(Family, MayOfferTheRegistryAlone) {
    LoadedPlugin loaded({.siblings = host::Siblings::registry});
    const auto first = sharedInstance(loaded.host);
    EXPECT_EQ(sharedInstance(loaded.host).handle(), first.handle());
    EXPECT_EQ(siblings::registryRequests(), 1u);
}

TEST(Family, MayOfferExceptionSupportAlone) {
    LoadedPlugin loaded({.siblings = host::Siblings::exceptions});
    const auto instance = sharedInstance(loaded.host);
    EXPECT_EQ(siblings::prepareCount(), 1u);
}

TEST(Family, MayBringTheRegistryLater) {
    LoadedPlugin loaded({.siblings = host::Siblings::exceptions});
    const auto before = sharedInstance(loaded.host);
    siblings::installRegistry();
    const auto after = sharedInstance(loaded.host);
    EXPECT_NE(after.handle(), before.handle());
    EXPECT_EQ(siblings::registered([NSProcessInfo processInfo]), after.handle());
    EXPECT_EQ(sharedInstance(loaded.host).handle(), after.handle());
}

TEST(Family, MayBringExceptionSupportLater) {
    LoadedPlugin loaded({.siblings = host::Siblings::registry});
    const auto before = sharedInstance(loaded.host);
    siblings::installExceptions(host::Core::current());
    const auto after = sharedInstance(loaded.host);
    EXPECT_EQ(siblings::prepareCount(), 1u);
}

TEST(Family, IsAskedForTheRegistryAgainWhileItAnswersNone) {
    LoadedPlugin loaded({.siblings = host::Siblings::exceptions});
    int requests = 0;
    familyDouble::addRegistry(
        [&]() -> void * { return ++requests < 3 ? nullptr : siblings::registry(); });
    const auto first = loaded.host.newObject(processInfoClass).object();
    const auto second = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(siblings::registryCount(), 0u);
    const auto third = loaded.host.newObject(processInfoClass).object();
    const auto fourth = loaded.host.newObject(processInfoClass).object();
    EXPECT_EQ(requests, 3);
    EXPECT_EQ(siblings::registered([NSProcessInfo processInfo]), fourth.handle());
}

TEST(Family, FailingToGiveTheRegistryIsNotTrapped) {
    LoadedPlugin loaded({.siblings = host::Siblings::exceptions});
    familyDouble::addRegistry([]() -> void * { raiseNSException("Family", "no registry"); });
    EXPECT_EQ(cocoaExceptionFrom([&] { sharedInstance(loaded.host); }), "Family: no registry");
    EXPECT_EQ(siblings::makeCount(), 0u);
    EXPECT_EQ(siblings::prepareCount(), 0u);
}

TEST(Family, FailingToPrepareIsNotTrappedAndIsAskedAgain) {
    LoadedPlugin loaded({.siblings = host::Siblings::registry});
    int requests = 0;
    familyDouble::addPreparation([&] {
        if (++requests == 1)
            raiseNSException("Family", "not prepared");
    });
    EXPECT_EQ(cocoaExceptionFrom([&] { sharedInstance(loaded.host); }), "Family: not prepared");
    const auto second = sharedInstance(loaded.host);
    const auto third = sharedInstance(loaded.host);
    EXPECT_EQ(requests, 2);
}

TEST(Family, FailingInAnotherWayPassesThrough) {
    LoadedPlugin loaded({.siblings = host::Siblings::registry});
    familyDouble::addPreparation([] { throw std::runtime_error("not Cocoa's"); });
    EXPECT_EQ(standardExceptionFrom([&] { sharedInstance(loaded.host); }), "not Cocoa's");
}
