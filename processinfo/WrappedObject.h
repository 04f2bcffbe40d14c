#pragma once

#include "frame/HostTypes.h"

#include <Foundation/Foundation.h>

/// The process-information object that an NSProcessInfoZKT instance holds, retained; nil until the
/// instance is bound. Programs can replace it through "Handle", so it may be any object.
inline NSProcessInfo *&wrappedObject(REALobjectStruct *instance) {
    return instanceData<NSProcessInfo *>(instance);
}
