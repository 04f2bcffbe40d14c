#include "processinfo/Handlers.h"

#include "bridge/CFString2RBString.h"
#include "frame/CocoaTrap.h"
#include "frame/HeldUntilReset.h"
#include "processinfo/WrappedObject.h"

namespace processinfo {

std::int64_t argumentsCount(REALobjectStruct *instance, std::intptr_t) {
    NSProcessInfo *wrapped = wrappedObject(instance);
    if (wrapped == nil)
        return 0;
    return trapCocoaExceptions<std::int64_t>(
        0, [&] { return static_cast<std::int64_t>([[wrapped arguments] count]); });
}

REALstringStruct *argument(REALobjectStruct *instance, std::int64_t index) {
    NSProcessInfo *wrapped = wrappedObject(instance);
    if (wrapped == nil)
        return nullptr;
    // Foundation tests the bounds: a negative index arrives as one far too large.
    return trapCocoaExceptions<REALstringStruct *>(nullptr, [&] {
        return CFString2RBString(
            (CFStringRef)[[wrapped arguments] objectAtIndex:static_cast<NSUInteger>(index)]);
    });
}

namespace {

// Fills the array from the list; an element that cannot be inserted leaves its index unused.
void insertStrings(REALobjectStruct *array, NSArray *list) {
    NSEnumerator *elements = [list objectEnumerator];
    std::int64_t index = 0;
    for (id element = [elements nextObject]; element != nil; element = [elements nextObject]) {
        StringReference string{CFString2RBString((CFStringRef)element)};
        // Fetched for each element: the host sees it, and may give another.
        if (StringInsertProcedure *insert = REALInsertArrayValueString(array))
            insert(array, index, string.get());
        string.reset();
        ++index;
    }
}

} // namespace

REALobjectStruct *arguments(REALobjectStruct *instance) {
    ObjectReference result{REALCreateArray(stringElements, emptyArray)};
    NSProcessInfo *wrapped = wrappedObject(instance);
    if (wrapped != nil)
        trapCocoaExceptions([&] {
            NSArray *list = [wrapped arguments];
            if (result && list != nil)
                insertStrings(result.get(), list);
        });
    return result.handOver();
}

} // namespace processinfo
