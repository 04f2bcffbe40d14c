// Questions to the Objective-C runtime about classes and objects. All answers are borrowed.

#pragma once
#pragma clang system_header

#include <objc/objc.h>

#pragma clang assume_nonnull begin

/// The class of that name, or null when the process has none.
OBJC_EXPORT Class _Nullable objc_getClass(const char *name);

/// The class of an object; null for a null object.
OBJC_EXPORT Class _Nullable object_getClass(id _Nullable object);

/// The name of a class; "nil" for a null class.
OBJC_EXPORT const char *class_getName(Class _Nullable cls);

/// The superclass; null for a root class and for a null class.
OBJC_EXPORT Class _Nullable class_getSuperclass(Class _Nullable cls);

/// What runs when an instance of the class is sent the message; for a message that it does not
/// understand, the runtime's forwarding. Null for a null class or selector.
OBJC_EXPORT IMP _Nullable class_getMethodImplementation(Class _Nullable cls, SEL name);

#pragma clang assume_nonnull end
