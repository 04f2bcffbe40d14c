#pragma once

#include "frame/HostTypes.h"

#include <CoreFoundation/CoreFoundation.h>

/// Makes a host FolderItem, owned by the caller, from a file URL (borrowed; an NSURL is one) whose
/// item, or at least its parent folder, exists. Null for every other URL and for nil.
REALobjectStruct *NSURLRBFile(CFURLRef url);
