#include "macos/loader/ObjcRuntime.h"

#include "macos/loader/BridgeSymbols.h"

#import <Foundation/Foundation.h>

#include <array>
#include <exception>
#include <string>

#include <objc/runtime.h>

extern "C" void machoMessageSend(); // of the processor

namespace macho {
namespace objc {

Object classNamed(std::string_view name) {
    return objc_lookUpClass(std::string(name).c_str());
}

Object metaclassNamed(std::string_view name) {
    const Class found = objc_lookUpClass(std::string(name).c_str());
    return found == Nil ? Nil : object_getClass(found);
}

bool isInstance(Object object, Object cls) {
    for (Class each = object_getClass(static_cast<id>(object)); each != Nil;
         each = class_getSuperclass(each))
        if (each == cls)
            return true;
    return false;
}

void *selector(const char *name) {
    return const_cast<void *>(static_cast<const void *>(sel_registerName(name)));
}

Object retain(Object object) {
    return [static_cast<id>(object) retain];
}

void release(Object object) {
    [static_cast<id>(object) release];
}

} // namespace objc

namespace {

// What compilers call instead of sending the message; the image cannot tell the difference.

id retain(id object) {
    return [object retain];
}

void release(id object) {
    [object release];
}

id autorelease(id object) {
    return [object autorelease];
}

id retainAutorelease(id object) {
    return [[object retain] autorelease];
}

id same(id object) {
    return object;
}

void storeStrong(id *place, id object) {
    const id before = *place;
    *place = [object retain];
    [before release];
}

id alloc(Class cls) {
    return [cls alloc];
}

id allocWithZone(Class cls) {
    return [cls allocWithZone:nullptr];
}

id allocInit(Class cls) {
    return [[cls alloc] init];
}

id makeNew(Class cls) {
    return [cls new];
}

Class classOf(id object) {
    return [object class];
}

id selfOf(id object) {
    return [object self];
}

// An image takes it for granted that answers smaller than an int are widened to one.

int isKindOfClass(id object, Class cls) {
    return [object isKindOfClass:cls];
}

int respondsToSelector(id object, SEL selector) {
    return [object respondsToSelector:selector];
}

void *pushPool() {
    return [NSAutoreleasePool new];
}

/// Ends the pools that were begun within this one, too.
void popPool(void *pool) {
    [static_cast<NSAutoreleasePool *>(pool) release];
}

Class getClass(id object) {
    return object_getClass(object);
}

const char *getClassName(id object) {
    return object_getClassName(object);
}

const char *getName(Class cls) {
    return class_getName(cls);
}

Class getSuperclass(Class cls) {
    return class_getSuperclass(cls);
}

IMP getMethodImplementation(Class cls, SEL selector) {
    return class_getMethodImplementation(cls, selector);
}

template <class Function>
void *address(Function *function) {
    return reinterpret_cast<void *>(function);
}

} // namespace

std::span<const BridgeSymbol> runtimeSymbols() {
    static const auto symbols = std::to_array<BridgeSymbol>({
        {"objc_msgSend", address(machoMessageSend)},
        {"objc_retain", address(retain)},
        {"objc_release", address(release)},
        {"objc_autorelease", address(autorelease)},
        {"objc_retainAutorelease", address(retainAutorelease)},
        {"objc_autoreleaseReturnValue", address(autorelease)},
        {"objc_retainAutoreleaseReturnValue", address(retainAutorelease)},
        {"objc_retainAutoreleasedReturnValue", address(retain)},
        {"objc_unsafeClaimAutoreleasedReturnValue", address(same)},
        {"objc_storeStrong", address(storeStrong)},
        {"objc_alloc", address(alloc)},
        {"objc_allocWithZone", address(allocWithZone)},
        {"objc_alloc_init", address(allocInit)},
        {"objc_opt_new", address(makeNew)},
        {"objc_opt_class", address(classOf)},
        {"objc_opt_self", address(selfOf)},
        {"objc_opt_isKindOfClass", address(isKindOfClass)},
        {"objc_opt_respondsToSelector", address(respondsToSelector)},
        {"objc_autoreleasePoolPush", address(pushPool)},
        {"objc_autoreleasePoolPop", address(popPool)},
        {"object_getClass", address(getClass)},
        {"object_getClassName", address(getClassName)},
        {"class_getMethodImplementation", address(getMethodImplementation)},
        {"class_getName", address(getName)},
        {"class_getSuperclass", address(getSuperclass)},
        {"objc_terminate", address(std::terminate)},
        {"__CFConstantStringClassReference", objc::constantStringClass()},
    });
    return symbols;
}

} // namespace macho
