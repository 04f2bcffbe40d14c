// The methods of both classes.

#import "FaultMatrixScene.h"

#include "ActivityScene.h"

#include <algorithm>

namespace matrix {

namespace {

const Aftermath nothing = gives("nil");

Operation refused(Operation operation) {
    const Aftermath after = operation.present;
    operation.name += ", refused";
    operation.arrange = [arrange = operation.arrange](Scene &scene) {
        scene.refuse();
        return arrange(scene);
    };
    operation.present = troubled(after);
    operation.rows = inOrder(operation.rows, trapReport(after));
    return operation;
}

// Arguments

Rows arrayRows() {
    const std::string whole = "[\"abc\", \"def\"]";
    const Aftermath empty = gives("[]");
    return {{"RuntimeArrayCreateSingleDimBoundedArray", nothing, passing(nothing)},
            {"REALBuildString", gives("[nil, nil]"), mapped(gives("[nil, \"def\"]")), true},
            {"REALSetStringEncoding", gives("[\"abc\" undeclared, \"def\" undeclared]"),
             mapped(gives("[nil, \"def\"]")), true},
            {"PluginStringArrayInsertProc", empty, trapped(empty, empty)},
            {"REALUnlockString", gives(whole).holding({"String", "String"}),
             trapped(gives("[\"abc\"]").holding({"String"}), nothing.holding({"String"}))}};
}

/// The elements that were inserted before the failing message asked for the next one.
std::string argumentsSoFar(const Lines &sent) {
    const auto requests = std::ranges::count(sent, "nextObject");
    return requests <= 1 ? "[]" : requests == 2 ? "[\"abc\"]" : "[\"abc\", \"def\"]";
}

void addArguments(Operations &all) {
    all.push_back({.name = "argument",
                   .arrange = [](Scene &scene) { return calling(scene, "argument", {0}); },
                   .present = gives("\"abc\""),
                   .rows = stringBuilding(nothing, gives("\"abc\" undeclared")),
                   .handling = trapping("nil")});
    all.push_back({.name = "argument, refused",
                   .arrange =
                       [](Scene &scene) {
                           scene.refuse();
                           return calling(scene, "argument", {0});
                       },
                   .present = troubled(nothing),
                   .rows = trapReport(nothing),
                   .handling = trapping("nil")});
    all.push_back({.name = "arguments",
                   .arrange = [](Scene &scene) { return calling(scene, "arguments"); },
                   .present = gives("[\"abc\", \"def\"]"),
                   .rows = arrayRows(),
                   .handling = {.fallback = argumentsSoFar}});
    // The array is made first, and is the result however far it was filled.
    const Aftermath empty = gives("[]");
    const Rows creation = {
        {"RuntimeArrayCreateSingleDimBoundedArray", troubled(nothing), passing(nothing)}};
    Rows report = trapReport(empty);
    const Aftermath kept = troubled(empty).holding({"NSExceptionZKT"});
    report[1].thrown = passing(kept.holding({"Array"}));
    all.push_back({.name = "arguments, refused",
                   .arrange =
                       [](Scene &scene) {
                           scene.refuse();
                           return calling(scene, "arguments");
                       },
                   .present = troubled(empty),
                   .rows = inOrder(creation, report),
                   .handling = {.fallback = argumentsSoFar}});
    all.push_back({.name = "arguments, without an object",
                   .arrange =
                       [](Scene &scene) {
                           setHandle(scene.host, scene.info, nullptr);
                           return calling(scene, "arguments");
                       },
                   .present = empty,
                   .rows = {{"RuntimeArrayCreateSingleDimBoundedArray", nothing, passing(nothing)}},
                   .handling = {.fallback = argumentsSoFar}});
    all.push_back({.name = "argument, without an object",
                   .arrange =
                       [](Scene &scene) {
                           setHandle(scene.host, scene.info, nullptr);
                           return calling(scene, "argument", {0});
                       },
                   .present = nothing,
                   .handling = trapping("nil")});
}

// Activities

const Lines begin = {"[NSProcessInfo processInfo]",
                     "[shared respondsToSelector:beginActivityWithOptions:reason:]",
                     "[NSProcessInfo processInfo]",
                     "[shared beginActivityWithOptions:255 reason:\"why\"]", "[token retain]"};
Lines beginUpTo(std::ptrdiff_t count) {
    return {begin.begin(), begin.begin() + count};
}
const Lines abandoned = {"activity(no token, nil, 0, ended)"};
const Lines abandonedFilled = {R"(activity(token, "why", 255, active))"};

Act beginning(Scene &scene, const char *reason) {
    scene.substituteShared();
    return calling(scene, "beginActivity", {255, host::Value(reason)});
}

/// What follows when the reason is read; the activity was made by then and stays behind.
Rows readingTheReason(const Aftermath &read) {
    const Aftermath unread = nothing.doing(beginUpTo(2)).holding(abandoned);
    return {{"REALGetStringEncoding", read, trapped(unread, unread)},
            {"REALGetStringCFString", read, trapped(unread, unread)}};
}

/// The instance is made behind the first two messages.
Lines onceMade(const Lines &sent, bool) {
    return sent.size() > 2 ? abandoned : Lines{};
}

void addBeginning(Operations &all) {
    const Aftermath begun = gives("activity(token, \"why\", 255, active)").doing(begin);
    const Aftermath unmade = nothing.doing(beginUpTo(2));
    const Aftermath unlocked = nothing.doing(begin).holding(abandonedFilled);
    all.push_back({.name = "beginActivity",
                   .arrange = [](Scene &scene) { return beginning(scene, "why"); },
                   .present = begun.holding({"String"}), // the activity's reason
                   .rows = inOrder(Rows{{"PluginNewInstance", unmade, trapped(unmade, unmade)}},
                                   readingTheReason(begun.holding({"String"})),
                                   Rows{{"REALLockString", begun, trapped(unlocked, unlocked)}}),
                   .handling = {.fallback = always("nil"), .kept = onceMade}});

    Lines withoutReason = begin;
    withoutReason[3] = "[shared beginActivityWithOptions:255 reason:nil]";
    all.push_back({.name = "beginActivity, without a reason",
                   .arrange = [](Scene &scene) { return beginning(scene, ""); },
                   .present = gives("activity(token, nil, 255, active)").doing(withoutReason),
                   .rows = {{"PluginNewInstance", unmade, trapped(unmade, unmade)}},
                   .handling = {.fallback = always("nil"), .kept = onceMade}});

    const Aftermath unbegun = nothing.doing(beginUpTo(4)).holding(abandoned);
    all.push_back({.name = "beginActivity, refused",
                   .arrange =
                       [](Scene &scene) {
                           scene.refuse();
                           return beginning(scene, "why");
                       },
                   .present = troubled(unbegun),
                   .rows = inOrder(Rows{{"PluginNewInstance", unmade, trapped(unmade, unmade)}},
                                   readingTheReason(troubled(unbegun)), trapReport(unbegun)),
                   .handling = {.fallback = always("nil"), .kept = onceMade}});
    all.push_back({.name = "beginActivity, unknown to the system",
                   .arrange =
                       [](Scene &scene) {
                           scene.shared->unknown.insert("beginActivityWithOptions:reason:");
                           return beginning(scene, "why");
                       },
                   .present = unmade,
                   .handling = {.fallback = always("nil"), .kept = onceMade}});
}

const Lines end = {"[NSProcessInfo processInfo]", "[shared respondsToSelector:endActivity:]",
                   "[NSProcessInfo processInfo]", "[shared endActivity:token]", "[token release]"};

/// What is to be seen of an activity besides: the reference to its reason is its own.
Aftermath ended(const char *state) {
    return nothing.holding({"String"}).in(state);
}

Act ending(Scene &scene) {
    scene.substituteShared();
    const host::ObjectRef activity = scene.begunActivity();
    return {.run =
                [&scene, activity] {
                    return scene.seen(scene.host.call(scene.info, "endActivity", {activity}));
                },
            .state = [&scene, activity] { return scene.stateOf(activity); }};
}

void addEnding(Operations &all) {
    all.push_back({.name = "endActivity",
                   .arrange = ending,
                   .present = ended("no token, \"why\", 255, ended").doing(end),
                   .handling = {.fallback = always("nil"), .kept = keeping({"String"})}});
    const Aftermath unended =
        ended("token, \"why\", 255, active").doing({end.begin(), end.begin() + 4});
    all.push_back({.name = "endActivity, refused",
                   .arrange =
                       [](Scene &scene) {
                           scene.refuse();
                           return ending(scene);
                       },
                   .present = troubled(unended),
                   .rows = trapReport(unended),
                   .handling = {.fallback = always("nil"), .kept = keeping({"String"})}});
    all.push_back(
        {.name = "endActivity of nil",
         .arrange = [](Scene &scene) { return calling(scene, "endActivity", {host::Value()}); },
         .present = nothing.raising("NilObjectException: activity is nil"),
         .rows = raisingInHost("NilObjectException", "activity is nil", nothing),
         .handling = {.fallback = always("nil"), .kept = keeping({"String"})}});
}

// The activity class's own methods, on an instance that goes on living.
Act ownMethod(Scene &scene, const char *method) {
    scene.substituteShared();
    const host::ObjectRef activity = scene.begunActivity();
    auto *function =
        reinterpret_cast<void (*)(host::ObjectHandle)>(scene.host.methodOf(activityClass, method));
    return {.run =
                [activity, function] {
                    function(activity);
                    return "nil";
                },
            .state = [&scene, activity] { return scene.stateOf(activity); }};
}

Lines theReasonIfLeft(const Lines &, bool leaves) {
    return leaves ? Lines{"String"} : Lines{};
}

void addActivityMethods(Operations &all) {
    all.push_back({.name = "activity Constructor",
                   .arrange = [](Scene &scene) { return ownMethod(scene, "Constructor"); },
                   .present = ended("token, \"why\", 255, active")});

    const Lines endDirectly = {"[NSProcessInfo processInfo]", "[shared endActivity:token]",
                               "[token release]"};
    const Aftermath gone = nothing.in("no token, nil, 255, ended");
    const Aftermath unreleased = ended("no token, \"why\", 255, ended");
    all.push_back({.name = "activity Destructor",
                   .arrange = [](Scene &scene) { return ownMethod(scene, "Destructor"); },
                   .present = gone.doing(endDirectly),
                   .rows = {{"REALUnlockString", gone.doing(endDirectly).holding({"String"}),
                             passing(unreleased.doing(endDirectly))}},
                   .handling = {.fallback = always("nil"), .kept = theReasonIfLeft}});

    // The trap reports, and the destructor goes on.
    const Lines upToEnd = {endDirectly.begin(), endDirectly.begin() + 2};
    const Aftermath before =
        ended("token, \"why\", 255, active").doing(upToEnd).logging("Trouble: on the way");
    const Aftermath kept = troubled(gone.doing(upToEnd)).holding({"NSExceptionZKT"});
    const std::string trouble = "NSExceptionZKT: Trouble: on the way";
    all.push_back({.name = "activity Destructor, refused",
                   .arrange =
                       [](Scene &scene) {
                           scene.refuse();
                           return ownMethod(scene, "Destructor");
                       },
                   .present = troubled(gone.doing(upToEnd)),
                   .rows = {{"RuntimeRaiseException",
                             gone.doing(upToEnd).logging("Trouble: on the way"), passing(before)},
                            {"REALUnlockObject", kept,
                             passing(before.raising(trouble).holding({"NSExceptionZKT"}))},
                            {"REALUnlockString", troubled(gone.doing(upToEnd)).holding({"String"}),
                             passing(troubled(unreleased.doing(upToEnd)))}},
                   .handling = {.fallback = always("nil"), .kept = theReasonIfLeft}});
}

// Termination

void addTermination(Operations &all) {
    for (const char *method : {"disableSuddenTermination", "enableSuddenTermination"}) {
        const Operation operation{.name = method,
                                  .arrange =
                                      [method](Scene &scene) {
                                          scene.useOwn();
                                          return calling(scene, method);
                                      },
                                  .present = nothing.doing({"[own " + std::string(method) + ']'}),
                                  .handling = trapping("nil")};
        all.push_back(operation);
        all.push_back(refused(operation));
    }
    for (const char *method : {"disableAutomaticTermination", "enableAutomaticTermination"}) {
        const Aftermath sent = nothing.doing({"[own " + std::string(method) + ":\"why\"]"});
        const auto rows = [](const Aftermath &after) {
            return Rows{{"REALGetStringEncoding", after, trapped(nothing, nothing)},
                        {"REALGetStringCFString", after, trapped(nothing, nothing)}};
        };
        Operation operation{.name = method,
                            .arrange =
                                [method](Scene &scene) {
                                    scene.useOwn();
                                    return calling(scene, method, {host::Value("why")});
                                },
                            .present = sent,
                            .rows = rows(sent),
                            .handling = trapping("nil")};
        all.push_back(operation);
        operation.rows = rows(troubled(sent));
        all.push_back(refused(operation));
    }
}

} // namespace

const Operations &methodOperations() {
    static const Operations all = [] {
        Operations operations;
        addArguments(operations);
        addBeginning(operations);
        addEnding(operations);
        addActivityMethods(operations);
        addTermination(operations);
        operations.push_back({.name = "_exception",
                              .arrange = [](Scene &scene) { return calling(scene, "_exception"); },
                              .present = nothing});
        return operations;
    }();
    return all;
}

} // namespace matrix
