// Questions to the Objective-C runtime about classes and objects. All answers are borrowed.

#pragma once
#pragma clang system_header

#include <objc/objc.h>
#include <stddef.h>

#pragma clang assume_nonnull begin

/// The class of that name, or null when the process has none.
OBJC_EXPORT Class _Nullable objc_getClass(const char *name);

/// The class of an object; null for a null object.
OBJC_EXPORT Class _Nullable object_getClass(id _Nullable object);

/// The name of a class; "nil" for a null class.
OBJC_EXPORT const char *class_getName(Class _Nullable cls);

/// The class of that name, or null; asks no handler to make one.
OBJC_EXPORT Class _Nullable objc_lookUpClass(const char *name);

/// A method of a class; owned by the runtime.
typedef struct objc_method *Method;

/// The method that instances (or the class itself) run, from the class or a superclass; null when
/// there is none.
OBJC_EXPORT Method _Nullable class_getInstanceMethod(Class _Nullable cls, SEL name);
OBJC_EXPORT Method _Nullable class_getClassMethod(Class _Nullable cls, SEL name);
OBJC_EXPORT IMP method_getImplementation(Method method);
OBJC_EXPORT const char *_Nullable method_getTypeEncoding(Method method);
/// Gives the one that it replaces.
OBJC_EXPORT IMP method_setImplementation(Method method, IMP implementation);

/// Adds a method to the class itself; NO when it has one of that name.
OBJC_EXPORT BOOL class_addMethod(Class _Nullable cls, SEL name, IMP implementation,
                                 const char *_Nullable types);
OBJC_EXPORT BOOL class_respondsToSelector(Class _Nullable cls, SEL name);

/// A class that is known by its name once it is registered; null when the name is taken.
OBJC_EXPORT Class _Nullable objc_allocateClassPair(Class _Nullable superclass, const char *name,
                                                   size_t extraBytes);
OBJC_EXPORT void objc_registerClassPair(Class cls);

/// Makes the object one of another class; gives its former class.
OBJC_EXPORT Class _Nullable object_setClass(id _Nullable object, Class cls);

OBJC_EXPORT const char *sel_getName(SEL selector);
OBJC_EXPORT BOOL sel_isEqual(SEL one, SEL other);

/// The superclass; null for a root class and for a null class.
OBJC_EXPORT Class _Nullable class_getSuperclass(Class _Nullable cls);

/// What runs when an instance of the class is sent the message; for a message that it does not
/// understand, the runtime's forwarding. Null for a null class or selector.
OBJC_EXPORT IMP _Nullable class_getMethodImplementation(Class _Nullable cls, SEL name);

#pragma clang assume_nonnull end
