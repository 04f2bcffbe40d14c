#include "RowMessages.h"

#include <cstring>
#include <dlfcn.h>

struct objc_class;
struct objc_selector;

using Implementation = void();
using Lookup = Implementation *(objc_class *, objc_selector *);

// The runtime's, declared here because its own headers have other types for them.
extern "C" const char *sel_getName(objc_selector *selector);
extern "C" Lookup class_getMethodImplementation;

namespace {

bool everyRow = false;

Lookup *runtimesLookup() {
    static constinit Lookup *found = nullptr;
    if (found == nullptr)
        found = reinterpret_cast<Lookup *>(dlsym(RTLD_NEXT, "class_getMethodImplementation"));
    return found;
}

/// Given out instead of methods; nobody calls it.
void standsInNoLibraryOfTheSystem() {}

bool isWithheld(objc_selector *selector) {
    return selector != nullptr && std::strcmp(sel_getName(selector), "isKindOfClass:") == 0;
}

} // namespace

void askEveryRow(bool on) {
    everyRow = on;
}

bool asksEveryRow() {
    return everyRow;
}

// Stands before the runtime's function for the program and for the images that it loads.
Implementation *class_getMethodImplementation(objc_class *cls, objc_selector *selector) {
    if (everyRow && isWithheld(selector)) [[unlikely]]
        return standsInNoLibraryOfTheSystem;
    return runtimesLookup()(cls, selector);
}
