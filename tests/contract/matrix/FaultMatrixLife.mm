// The life of an instance: constructors, the destructor, the shared methods.

#import "FaultMatrixScene.h"

#include "host/family/Siblings.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstring>

namespace matrix {

namespace {

const Aftermath nothing = gives("nil");

/// What the instance holds, and what the registry has for that.
std::string bindingOf(const Scene &scene, host::ObjectHandle instance) {
    void *held = nullptr;
    std::memcpy(static_cast<void *>(&held), scene.host.dataOf(instance), sizeof held);
    const void *entry = host::siblings::registered(scene.shared);
    return std::string(held == nullptr                      ? "empty"
                       : held == (const void *)scene.shared ? "bound"
                                                            : "bound to another") +
           (entry == nullptr            ? ", unregistered"
            : entry == (void *)instance ? ", registered"
                                        : ", another registered");
}

void enterInRegistry(const Scene &scene, host::ObjectHandle instance) {
    CFDictionarySetValue(static_cast<CFMutableDictionaryRef>(host::siblings::registry()),
                         scene.shared, instance);
}

constexpr const char *tooOften = "Constructor called too often. Object is already initialized.";

void addConstruction(Operations &all) {
    const auto constructing = [](Scene &scene) {
        scene.substituteShared();
        setHandle(scene.host, scene.info, nullptr);
        Act act = calling(scene, "Constructor");
        act.state = [&scene] { return bindingOf(scene, scene.info); };
        return act;
    };
    const Lines binding = {"[NSProcessInfo processInfo]", "[shared retain]"};
    all.push_back({.name = "Constructor",
                   .arrange = constructing,
                   .present = nothing.doing(binding).in("bound, registered"),
                   .handling = trapping("nil")});

    const Aftermath unbound = nothing.doing(binding).in("empty, unregistered");
    all.push_back({.name = "Constructor, refused",
                   .arrange =
                       [constructing](Scene &scene) {
                           scene.shared->onMessage = [](std::string_view selector) {
                               if (selector == "retain")
                                   [[NSException exceptionWithName:@"Trouble"
                                                            reason:@"on the way"
                                                          userInfo:nil] raise];
                           };
                           return constructing(scene);
                       },
                   .present = troubled(unbound),
                   .rows = trapReport(unbound),
                   .handling = trapping("nil")});

    const Aftermath still = nothing.in("bound to another, unregistered");
    all.push_back(
        {.name = "Constructor a second time",
         .arrange =
             [](Scene &scene) {
                 Act act = calling(scene, "Constructor");
                 act.state = [&scene] { return bindingOf(scene, scene.info); };
                 return act;
             },
         .present = still.raising("UnsupportedOperationException: " + std::string(tooOften)),
         .rows = raisingInHost("UnsupportedOperationException", tooOften, still),
         .handling = trapping("nil")});

    const auto making = [](Scene &scene) {
        return Act{
            [&scene] { return scene.taken(scene.host.newInstance(processInfoClass).release()); }};
    };
    all.push_back(
        {.name = "class constructor", .arrange = making, .present = gives("NSProcessInfoZKT")});
    all.push_back({.name = "class constructor, first of all",
                   .arrange = making,
                   .present = gives("NSProcessInfoZKT"),
                   .withInstance = false});
}

void addDestruction(Operations &all) {
    const auto destructing = [](Scene &scene) {
        setHandle(scene.host, scene.info, scene.shared);
        [[scene.shared retain] autorelease];
        enterInRegistry(scene, scene.info);
        scene.host.clearTrace();
        return Act{.run =
                       [&scene] {
                           scene.host.registeredRecords().front()->destructor(scene.info);
                           return "nil";
                       },
                   .state = [&scene] { return bindingOf(scene, scene.info); }};
    };
    all.push_back({.name = "class destructor",
                   .arrange = destructing,
                   .present = nothing.doing({"[shared release]"}).in("empty, unregistered"),
                   .handling = trapping("nil")});
    const Aftermath kept = nothing.doing({"[shared release]"}).in("bound, unregistered");
    all.push_back({.name = "class destructor, refused",
                   .arrange =
                       [destructing](Scene &scene) {
                           Act act = destructing(scene);
                           scene.shared->onMessage = [](std::string_view selector) {
                               if (selector == "release")
                                   [[NSException exceptionWithName:@"Trouble"
                                                            reason:@"on the way"
                                                          userInfo:nil] raise];
                           };
                           return act;
                       },
                   .present = troubled(kept),
                   .rows = trapReport(kept),
                   .handling = trapping("nil")});
    all.push_back({.name = "class destructor of an empty instance",
                   .arrange =
                       [](Scene &scene) {
                           setHandle(scene.host, scene.info, nullptr);
                           return Act{[&scene] {
                               scene.host.registeredRecords().front()->destructor(scene.info);
                               return "nil";
                           }};
                       },
                   .present = nothing,
                   .handling = trapping("nil")});
}

const char *registrationOf(const Scene &scene) {
    return host::siblings::registered(scene.shared) == nullptr ? "unregistered" : "registered";
}

// The method as it stands in the class's record: what it gives comes with a reference, or should.
Act sharedInstance(Scene &scene) {
    scene.substituteShared();
    auto *function = reinterpret_cast<host::ObjectHandle (*)()>(
        scene.host.sharedMethodOf(processInfoClass, "processInfo"));
    return {[&scene, function] { return scene.taken(function(), scene.shared); },
            [&scene] { return registrationOf(scene); }};
}

void addSharedMethods(Operations &all) {
    const Aftermath unmade = nothing.doing({"[NSProcessInfo processInfo]"}).in("unregistered");
    all.push_back({.name = "processInfo",
                   .arrange = sharedInstance,
                   .present = gives("NSProcessInfoZKT(the object)")
                                  .doing({"[NSProcessInfo processInfo]", "[shared retain]"})
                                  .in("registered"),
                   .rows = {{"PluginNewInstance", unmade, trapped(unmade, unmade)}},
                   .handling = trapping("nil")});
    all.push_back({.name = "processInfo, first of all",
                   .arrange = sharedInstance,
                   .present = all.back().present,
                   .rows = all.back().rows,
                   .withInstance = false,
                   .handling = {.fallback = always("nil"), .untrapped = 4}});
    const Aftermath known = gives("NSProcessInfoZKT(the object)")
                                .doing({"[NSProcessInfo processInfo]"})
                                .in("registered");
    const Aftermath unlocked = unmade.in("registered");
    all.push_back({.name = "processInfo again",
                   .arrange =
                       [](Scene &scene) {
                           setHandle(scene.host, scene.info, scene.shared);
                           enterInRegistry(scene, scene.info);
                           return sharedInstance(scene);
                       },
                   .present = known,
                   .rows = {{"REALLockObject", known.giving(known.value + " without a reference"),
                             trapped(unlocked, unlocked)}},
                   .handling = trapping("nil")});
    all.push_back(
        {.name = "NSProcessInfoThermalStateDidChangeNotification",
         .arrange =
             [](Scene &scene) {
                 return Act{[&scene] {
                     return scene.seen(scene.host.callShared(
                         processInfoClass, "NSProcessInfoThermalStateDidChangeNotification"));
                 }};
             },
         .present = gives("\"NSProcessInfoThermalStateDidChangeNotification\""),
         .rows = stringBuilding(
             nothing, gives("\"NSProcessInfoThermalStateDidChangeNotification\" undeclared"))});
}

} // namespace

const Operations &lifeOperations() {
    static const Operations all = [] {
        Operations operations;
        addConstruction(operations);
        addDestruction(operations);
        addSharedMethods(operations);
        return operations;
    }();
    return all;
}

} // namespace matrix
