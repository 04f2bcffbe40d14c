// The conversion of objects to instances of the family's wrapper classes.

#import "FaultMatrixObjects.h"
#import "FaultMatrixScene.h"
#import "MethodFunctions.h"

#include "host/classes/Inspect.h"
#include "host/family/Siblings.h"

#include <objc/runtime.h>

#include <cstring>

namespace matrix {

namespace {

const Aftermath nothing = gives("nil");

/// A host class for wrappers of Cocoa objects.
void know(Scene &scene, const char *hostClass) {
    scene.host.addClass({.name = hostClass});
}

Row making() {
    return {"PluginNewInstance", nothing, passing(nothing)};
}

/// The conversion of a new object of a class that other rows than this one could not match.
Act convertingNew(Scene &scene, const char *cocoaClass) {
    know(scene, "NSObjectZKT"); // the last resort, which must not be taken
    return converting(scene, [[[matrixClass(cocoaClass) alloc] init] autorelease]);
}

void addRows(Operations &all) {
    all.push_back({.name = "registered row",
                   .arrange =
                       [](Scene &scene) {
                           know(scene, "NSColorSpaceZKT");
                           return convertingNew(scene, "NSColorSpace");
                       },
                   .present = gives("NSColorSpaceZKT(the object), retained 1"),
                   .rows = {making()}});
    all.push_back({.name = "late row",
                   .arrange =
                       [](Scene &scene) {
                           know(scene, "QuartzFilterZKT");
                           return convertingNew(scene, "QuartzFilter");
                       },
                   .present = gives("QuartzFilterZKT(the object), retained 1"),
                   .rows = {making()}});
    all.push_back({.name = "registered row, unknown to the host",
                   .arrange = [](Scene &scene) { return convertingNew(scene, "NSColorSpace"); },
                   .present = nothing,
                   .rows = {making()}});
    const Aftermath known = gives("NSColorSpaceZKT(the object)");
    all.push_back(
        {.name = "object with a wrapper",
         .arrange =
             [](Scene &scene) {
                 know(scene, "NSColorSpaceZKT");
                 const host::ObjectRef wrapper = scene.host.newInstance("NSColorSpaceZKT");
                 const id object = [[[matrixClass("NSColorSpace") alloc] init] autorelease];
                 std::memcpy(scene.host.dataOf(wrapper), &object, sizeof object);
                 CFDictionarySetValue(
                     static_cast<CFMutableDictionaryRef>(host::siblings::registry()), object,
                     wrapper.handle());
                 return Act{[wrapper, act = converting(scene, object)] { return act.run(); }};
             },
         .present = known,
         .rows = {{"REALLockObject", known.giving(known.value + " without a reference"),
                   passing(nothing)}}});
    all.push_back({.name = "walking row",
                   .arrange =
                       [](Scene &scene) {
                           know(scene, "NSWindowZKT");
                           return convertingNew(scene, "NSWindow");
                       },
                   .present = gives("NSWindowZKT(the object), retained 1"),
                   .rows = {making()}});
    all.push_back({.name = "object of no row",
                   .arrange = [](Scene &scene) { return convertingNew(scene, "MatrixThing"); },
                   .present = gives("NSObjectZKT(the object), retained 1"),
                   .rows = {making()}});
    all.push_back({.name = "object of no row, unknown to the host",
                   .arrange =
                       [](Scene &scene) {
                           return converting(scene, [[[MatrixThing alloc] init] autorelease]);
                       },
                   .present = nothing,
                   .rows = {making()}});
}

// A view is offered to a sibling first, which may make the host object itself.

void *hookAnswer;

void *answerHook(id, SEL, id) {
    return hookAnswer;
}

Act convertingHookedView(Scene &scene) {
    hookAnswer = nullptr;
    class_addMethod(object_getClass([NSValue class]), sel_registerName("NewQTKitNSViewZKT:"),
                    implementationOf(answerHook), "^v@:@");
    know(scene, "NSViewZKT");
    return convertingNew(scene, "NSView");
}

void addViews(Operations &all) {
    all.push_back({.name = "view that a sibling takes",
                   .arrange =
                       [](Scene &scene) {
                           return handingOver(convertingHookedView(scene), host::box("hooked"),
                                              &hookAnswer);
                       },
                   .present = gives("String(\"hooked\")"),
                   .handling = {.kept = keeping({"Variant"})}});
    all.push_back({.name = "view that a sibling leaves",
                   .arrange = convertingHookedView,
                   .present = gives("NSViewZKT(the object), retained 1"),
                   .rows = {making()}});
    all.push_back({.name = "view, without a sibling",
                   .arrange =
                       [](Scene &scene) {
                           know(scene, "NSViewZKT");
                           return convertingNew(scene, "NSView");
                       },
                   .present = gives("NSViewZKT(the object), retained 1"),
                   .rows = {making()}});
}

// A boxed host object comes back as it is.
void addBox(Operations &all) {
    all.push_back({.name = "boxed host object",
                   .arrange =
                       [](Scene &scene) {
                           class_addMethod(matrixClass("ZKTREALobjectWrapper"),
                                           sel_registerName("unwrap"), implementationOf(answerHook),
                                           "^v@:");
                           return handingOver(convertingNew(scene, "ZKTREALobjectWrapper"),
                                              host::box("boxed"), &hookAnswer);
                       },
                   .present = gives("String(\"boxed\")"),
                   .handling = {.kept = keeping({"Variant"})}});
}

// Core Foundation's objects. Cocoa's exceptions are dropped on this way, and the object is wrapped
// by its class instead.

/// A host class for wrappers of Core Foundation objects.
void knowTyped(Scene &scene, const char *hostClass, std::int64_t tag) {
    const std::int64_t data[] = {0, 0, tag};
    const auto *bytes = reinterpret_cast<const std::byte *>(data);
    scene.host.addClass(
        {.name = hostClass, .dataSize = sizeof data, .initialData = {bytes, bytes + sizeof data}});
}

Act convertingTyped(Scene &scene, const char *hostClass, std::int64_t tag) {
    knowTyped(scene, hostClass, tag);
    know(scene, "NSObjectZKT");
    MatrixTyped *object = [[[MatrixTyped alloc] init] autorelease];
    object->type = CFUUIDGetTypeID();
    return converting(scene, object);
}

constexpr std::int64_t wrapperTag = 0x52424346;

Row makingTyped() {
    const Aftermath byClass = gives("NSObjectZKT(the object), retained 1");
    return {"PluginNewInstance", nothing,
            [byClass](Fault fault) {
                return fault == Fault::cocoa ? byClass : nothing.leftBy(exceptionOf(fault));
            },
            true};
}

const Handling wrappedByClass = {.dropped = "_cfTypeID",
                                 .instead = "NSObjectZKT(the object), retained 1"};

void addCoreFoundation(Operations &all) {
    all.push_back(
        {.name = "Core Foundation object",
         .arrange = [](Scene &scene) { return convertingTyped(scene, "CFUUIDZKT", wrapperTag); },
         .present = gives("CFUUIDZKT(the object), retained 1"),
         .rows = {makingTyped()},
         .handling = wrappedByClass});
    all.push_back(
        {.name = "Core Foundation object of a type that the host does not know",
         .arrange = [](Scene &scene) { return convertingTyped(scene, "CFObjectZKT", wrapperTag); },
         .present = gives("CFObjectZKT(the object), retained 1"),
         .rows = {makingTyped()},
         .handling = wrappedByClass});
    all.push_back({.name = "Core Foundation object like any object",
                   .arrange =
                       [](Scene &scene) {
                           knowTyped(scene, "CFObjectZKT", wrapperTag);
                           return convertingNew(scene, "MatrixPlain");
                       },
                   .present = gives("CFObjectZKT(the object), retained 1"),
                   .rows = {makingTyped()},
                   .handling = wrappedByClass});
    all.push_back({.name = "Core Foundation object like any object, unknown to the host",
                   .arrange = [](Scene &scene) { return convertingNew(scene, "MatrixPlain"); },
                   .present = nothing,
                   .rows = {makingTyped()},
                   .handling = wrappedByClass});
    all.push_back({.name = "Core Foundation object and a class without the tag",
                   .arrange = [](Scene &scene) { return convertingTyped(scene, "CFUUIDZKT", 7); },
                   .present = nothing.holding({"CFUUIDZKT"}),
                   .rows = {makingTyped()},
                   .handling = wrappedByClass});
}

} // namespace

const Operations &wrapperOperations() {
    static const Operations all = [] {
        Operations operations;
        addRows(operations);
        addViews(operations);
        addBox(operations);
        addCoreFoundation(operations);
        return operations;
    }();
    return all;
}

} // namespace matrix
