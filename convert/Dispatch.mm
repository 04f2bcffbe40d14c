#include "convert/Dispatch.h"

#include "convert/CoreFoundationWrapper.h"
#include "convert/TableSearch.h"
#include "convert/Values.h"
#include "convert/WrapperFactory.h"
#include "frame/FamilyHooks.h"
#include "frame/Registry.h"

#include <objc/runtime.h>

// Foundation's, asked for once.
static constinit NSNull *singleNull = nil;

// The first test that the object passes decides.
REALobjectStruct *NewVariantFromNSObject(NSObject *object) {
    if (singleNull == nil) [[unlikely]]
        singleNull = [NSNull null];
    if (object == nil || object == singleNull)
        return nullptr;
    if (REALobjectStruct *known = registry::wrapperOf(object))
        return known;
    if (const ClassRow *row = classRowOf(object))
        return row->convert(object, row->cocoaClass);
    if (const char *lateClass = lateClassOf(object))
        return newRegisteredWrapper(object, lateClass);

    // Asked for every time: the sibling that brings the class may be loaded at any time.
    Class boxClass = objc_getClass("ZKTREALobjectWrapper");
    if (boxClass != Nil && [object isKindOfClass:boxClass])
        return [object unwrap];
    if ([object isKindOfClass:[NSValue class]])
        return newStructure((NSValue *)object);
    if (const auto wrapper = newCoreFoundationWrapper(object))
        return *wrapper;
    return newNearestWrapper(object);
}
