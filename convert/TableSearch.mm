#include "convert/TableSearch.h"

#include <CoreFoundation/CoreFoundation.h>
#include <objc/runtime.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <dlfcn.h>

namespace {

bool isCoreFoundationBoolean(NSObject *object) {
    return object == (id)kCFBooleanFalse || object == (id)kCFBooleanTrue;
}

bool isKindOf(NSObject *object, const char *className) {
    Class loaded = objc_getClass(className);
    return loaded != Nil && [object isKindOfClass:loaded];
}

// The definition of classRowOf.
[[gnu::noinline]] const ClassRow *firstRowByMessages(NSObject *object) {
    for (const ClassRow &row : classRows)
        if (row.cocoaClass != nullptr ? isKindOf(object, row.cocoaClass)
                                      : isCoreFoundationBoolean(object))
            return &row;
    return nullptr;
}

// NSObject's own methods; null when they had been replaced by the first conversion. On macOS,
// isKindOfClass: begins with the answer to class, so both must be its own.
constinit bool methodsLookedUp = false;
constinit IMP isKindOfClassOfNSObject = nullptr;
constinit IMP classOfNSObject = nullptr;

// A method of a class that stands in the same library as the class, else null.
IMP ownMethod(Class cls, SEL selector) {
    IMP method = class_getMethodImplementation(cls, selector);
    Dl_info ofMethod{};
    Dl_info ofClass{};
    const bool isOwn = dladdr(reinterpret_cast<const void *>(method), &ofMethod) != 0 &&
                       dladdr((const void *)cls, &ofClass) != 0 &&
                       ofMethod.dli_fbase == ofClass.dli_fbase;
    return isOwn ? method : nullptr;
}

[[gnu::noinline, gnu::cold]] void lookUpMethods() {
    Class rootClass = [NSObject class];
    isKindOfClassOfNSObject = ownMethod(rootClass, @selector(isKindOfClass:));
    classOfNSObject = ownMethod(rootClass, @selector(class));
    methodsLookedUp = true;
}

// Whether objects of the class are a kind of it and its superclasses, and of nothing else.
bool answersAsNSObject(Class cls) {
    // No method's implementation is null.
    return class_getMethodImplementation(cls, @selector(isKindOfClass:)) ==
               isKindOfClassOfNSObject &&
           class_getMethodImplementation(cls, @selector(class)) == classOfNSObject;
}

// A class whose objects were asked, and the row that they match but for the two booleans.
struct MetClass {
    Class cls;
    const ClassRow *row;
};

// Each at the place that its address tells, until another one takes it.
constinit std::array<MetClass, 1024> metClasses{};

// Asks the object, and keeps the answer if the class comes with a library: then it stays, and its
// superclasses too. A class that a program made may be gone at any time, and another one be at its
// address.
[[gnu::noinline]] const ClassRow *meet(NSObject *object, Class cls, MetClass &place) {
    const ClassRow *row = firstRowByMessages(object);
    Dl_info library{};
    if (dladdr((const void *)cls, &library) != 0)
        place = {cls, row == booleanRow ? numberRow : row};
    return row;
}

struct LateClass {
    const char *name;
    Class loaded = Nil;
    bool lookedUp = false;

    // The class as it was, loaded or not, when first asked for.
    Class get() {
        if (!lookedUp) {
            loaded = objc_getClass(name);
            lookedUp = true;
        }
        return loaded;
    }
};

constinit LateClass NSUserNotificationClass{"NSUserNotification"};
constinit LateClass NSDraggingImageComponentClass{"NSDraggingImageComponent"};
constinit LateClass QuartzFilterClass{"QuartzFilter"};
constinit LateClass QCCompositionClass{"QCComposition"};
constinit LateClass QCCompositionRepositoryClass{"QCCompositionRepository"};

constexpr LateClass *lateClasses[] = {&NSUserNotificationClass, &NSDraggingImageComponentClass,
                                      &QuartzFilterClass, &QCCompositionClass,
                                      &QCCompositionRepositoryClass};

} // namespace

const ClassRow *classRowOf(NSObject *object) {
    if (!methodsLookedUp) [[unlikely]]
        lookUpMethods();
    Class cls = object_getClass(object);
    if (!answersAsNSObject(cls))
        return firstRowByMessages(object);
    MetClass &place = metClasses[(std::uintptr_t)cls / 16 % metClasses.size()];
    if (place.cls != cls)
        return meet(object, cls, place);
    return place.row == numberRow && isCoreFoundationBoolean(object) ? booleanRow : place.row;
}

const char *lateClassOf(NSObject *object) {
    for (LateClass *each : lateClasses)
        if (Class loaded = each->get(); loaded != Nil && [object isKindOfClass:loaded])
            return each->name;
    return nullptr;
}
