#pragma once

#include "MethodSubstitute.h"

#include <CoreFoundation/CoreFoundation.h>

/// On macOS every object below NSObject has a Core Foundation type, the root type at least, so that
/// none which the rows leave over is ever wrapped by the name of its class. While this lives, those
/// that have no other answer say that they have no type, as an object may.
class UntypedObjects {
    static CFTypeID noType(id, SEL) { return 0; }
    const MethodSubstitute ofObjects_{[NSObject class], sel_registerName("_cfTypeID"), noType};
    const MethodSubstitute ofClasses_{object_getClass([NSObject class]),
                                      sel_registerName("_cfTypeID"), noType};
};
