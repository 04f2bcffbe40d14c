#pragma once

#include "frame/HostTypes.h"

#include <CoreFoundation/CoreFoundation.h>
#include <Foundation/Foundation.h>

// Class methods that sibling plug-ins of the family add to NSException when they are loaded.
@interface NSException (FamilyHooks)
// A new host object of class NSExceptionZKT for the exception, owned by the caller; or null.
+ (REALobjectStruct *)NewNSExceptionZKT:(NSException *)exception;
+ (void)PrepareNSExceptionZKT;
// The family's registry, borrowed for the life of the process.
+ (CFMutableDictionaryRef)GetInstancesDictionaryZKT;
@end
