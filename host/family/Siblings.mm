#include "host/family/Siblings.h"

#include "host/classes/ClassTable.h"
#include "host/classes/Instances.h"
#include "host/classes/NativeData.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include <cstring>

namespace host::siblings {

namespace {

ExceptionMaking making = ExceptionMaking::wrap;
std::size_t prepared = 0;
std::size_t made = 0;
std::size_t requested = 0;

std::string utf8(NSString *text) {
    const char *characters = [text UTF8String];
    return characters == nullptr ? "" : characters;
}

NSException *heldBy(ObjectHandle handle) {
    NSException *exception = nil;
    std::memcpy(&exception, Core::current().heap.find(handle)->data(), sizeof exception);
    return exception;
}

void releaseHeld(ObjectHandle handle) {
    [heldBy(handle) release];
}

ObjectHandle wrap(NSException *exception) {
    Core &core = Core::current();
    const Heap::Acting acting(core.heap, "NewNSExceptionZKT:");
    const HostClass *type = core.classes.find(exceptionClassName);
    if (type == nullptr)
        return nullptr;
    Object &object = *instantiate(core, *type);
    [exception retain];
    std::memcpy(object.data(), &exception, sizeof exception);
    const std::string reason = utf8([exception reason]);
    if ([exception reason] != nil)
        std::any_cast<ExceptionData &>(object.payload).message = makeString(reason);
    return object.handle();
}

// Bodies of the class methods.

void *newException(id /*self*/, SEL /*command*/, NSException *exception) {
    ++made;
    switch (making) {
    case ExceptionMaking::wrap:
        return wrap(exception);
    case ExceptionMaking::answerNil:
        return nullptr;
    case ExceptionMaking::raise:
        [NSException raise:@"SiblingFailure" format:@"no host object can be made"];
    }
    return nullptr;
}

void prepare(id /*self*/, SEL /*command*/) {
    ++prepared;
}

void *instancesDictionary(id /*self*/, SEL /*command*/) {
    ++requested;
    return registry();
}

template <typename Body>
void addClassMethod(const char *selector, Body *body, const char *types) {
    class_addMethod(object_getClass([NSException class]), sel_registerName(selector),
                    reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(body)), types);
}

} // namespace

void installExceptions(Core &core) {
    if (core.classes.findAny(exceptionClassName) == nullptr)
        core.classes.add(HostClass{.name = std::string(exceptionClassName),
                                   .superclass = core.classes.findAny("RuntimeException"),
                                   .dataSize = 16,
                                   .destructor = releaseHeld});
    addClassMethod("NewNSExceptionZKT:", newException, "^v@:@");
    addClassMethod("PrepareNSExceptionZKT", prepare, "v@:");
}

void installRegistry() {
    addClassMethod("GetInstancesDictionaryZKT", instancesDictionary, "^v@:");
}

void setExceptionMaking(ExceptionMaking wanted) {
    making = wanted;
}

std::size_t prepareCount() {
    return prepared;
}

std::size_t makeCount() {
    return made;
}

std::size_t registryRequests() {
    return requested;
}

void resetCounts() {
    prepared = made = requested = 0;
}

void *registry() {
    static void *const dictionary = CFDictionaryCreateMutable(nullptr, 0, nullptr, nullptr);
    return dictionary;
}

std::size_t registryCount() {
    return static_cast<std::size_t>(CFDictionaryGetCount(static_cast<CFDictionaryRef>(registry())));
}

void *registered(const void *cocoaObject) {
    return const_cast<void *>(
        CFDictionaryGetValue(static_cast<CFDictionaryRef>(registry()), cocoaObject));
}

std::string cocoaName(const void *nsException) {
    return utf8([(NSException *)nsException name]);
}

std::string cocoaReason(const void *nsException) {
    return utf8([(NSException *)nsException reason]);
}

} // namespace host::siblings
