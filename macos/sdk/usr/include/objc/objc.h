// Objective-C's basic types: objects, classes, selectors and BOOL.

#pragma once
#pragma clang system_header

#define OBJC_VISIBLE __attribute__((visibility("default")))

#ifdef __cplusplus
#define OBJC_EXPORT extern "C" OBJC_VISIBLE
#else
#define OBJC_EXPORT extern OBJC_VISIBLE
#endif

typedef struct objc_class *Class;

struct objc_object {
    Class isa;
};

typedef struct objc_object *id;
typedef struct objc_selector *SEL;
typedef void (*IMP)(void);

// One byte: a number with a sign on 64-bit x86, the language's own on arm64.
#ifdef __arm64__
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif

#ifdef __OBJC__
#define YES __objc_yes
#define NO __objc_no
#else
#define YES ((BOOL)1)
#define NO ((BOOL)0)
#endif

#ifdef __cplusplus
#define nil nullptr
#define Nil nullptr
#else
#define nil ((void *)0)
#define Nil ((void *)0)
#endif

#pragma clang assume_nonnull begin

/// The selector of that name, registered on first use. Never null.
OBJC_EXPORT SEL sel_registerName(const char *name);

/// The name of the object's class; "nil" for a null object. Owned by the runtime.
OBJC_EXPORT const char *object_getClassName(id _Nullable object);

#pragma clang assume_nonnull end
