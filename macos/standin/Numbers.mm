// NSNumber's type codes as macOS has them. It keeps an integer in the type that it was made from,
// an unsigned one in the next wider signed type; GNUstep in the narrowest that holds the value.

#import <Foundation/Foundation.h>

#include "Methods.h"

#include <cstdint>
#include <limits>

namespace {

// Integers of GNUstep's classes, by the type of their one variable.
template <typename Value>
NSNumber *newNumber(Class cls, Value value) {
    NSNumber *const number = NSAllocateObject(cls, 0, nullptr);
    const Ivar variable = class_getInstanceVariable(cls, "value");
    auto *const place = reinterpret_cast<char *>(number) + ivar_getOffset(variable);
    *reinterpret_cast<Value *>(place) = value;
    return [number autorelease];
}

// GNUstep's int under another code.
template <typename Value>
Class narrowClass() {
    static Class cls = [] {
        const char *const name = sizeof(Value) == 1 ? "StandInCharNumber" : "StandInShortNumber";
        Class made = objc_allocateClassPair(objc_getClass("NSIntNumber"), name, 0);
        objc_registerClassPair(made);
        const auto code = +[](id, SEL) { return @encode(Value); };
        standin::replaceMethod(made, "objCType", code, "r*16@0:8");
        const auto getValue = +[](id number, SEL, void *buffer) {
            *static_cast<Value *>(buffer) = static_cast<Value>([number intValue]);
        };
        standin::replaceMethod(made, "getValue:", getValue, "v24@0:8^v16");
        return made;
    }();
    return cls;
}

template <typename Value>
NSNumber *narrow(std::int64_t value) {
    return newNumber(narrowClass<Value>(), static_cast<int>(value));
}

NSNumber *intNumber(std::int64_t value) {
    return newNumber(objc_getClass("NSIntNumber"), static_cast<int>(value));
}

NSNumber *longLong(std::int64_t value) {
    return newNumber(objc_getClass("NSLongLongNumber"), static_cast<long long>(value));
}

NSNumber *unsignedLongLong(std::uint64_t value) {
    if (value <= std::numeric_limits<std::int64_t>::max()) {
        return longLong(static_cast<std::int64_t>(value));
    }
    return newNumber(objc_getClass("NSUnsignedLongLongNumber"),
                     static_cast<unsigned long long>(value));
}

// A factory method for numbers of a C type. Subclasses make their own.
template <typename Given, auto make>
id numberWith(id cls, SEL, Given value) {
    if (cls != [NSNumber class]) {
        return [[[cls alloc] initWithBytes:&value objCType:@encode(Given)] autorelease];
    }
    return make(value);
}

template <typename Given, auto make>
void installFactory(const char *selector) {
    Class const factory = object_getClass([NSNumber class]);
    const Method method = class_getInstanceMethod(factory, sel_registerName(selector));
    standin::replaceMethod(factory, selector, numberWith<Given, make>,
                           method_getTypeEncoding(method));
}

} // namespace

@interface StandInNumbers : NSObject
@end

@implementation StandInNumbers

+ (void)load {
    installFactory<signed char, narrow<signed char>>("numberWithChar:");
    installFactory<unsigned char, narrow<short>>("numberWithUnsignedChar:");
    installFactory<short, narrow<short>>("numberWithShort:");
    installFactory<unsigned short, intNumber>("numberWithUnsignedShort:");
    installFactory<unsigned int, longLong>("numberWithUnsignedInt:");
    installFactory<long, longLong>("numberWithLong:");
    installFactory<unsigned long, unsignedLongLong>("numberWithUnsignedLong:");
    installFactory<long long, longLong>("numberWithLongLong:");
    installFactory<unsigned long long, unsignedLongLong>("numberWithUnsignedLongLong:");
    installFactory<NSInteger, longLong>("numberWithInteger:");
    installFactory<NSUInteger, unsignedLongLong>("numberWithUnsignedInteger:");
}

@end
