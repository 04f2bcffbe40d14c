#pragma once

#include "frame/HostTypes.h"

#include <CoreFoundation/CoreFoundation.h>
#include <Foundation/Foundation.h>

// Methods that sibling plug-ins of the family add to Cocoa classes when they are loaded. Host
// objects that they give belong to the caller.

@interface NSException (FamilyHooks)
/// A new host object of class NSExceptionZKT for the exception, or null.
+ (REALobjectStruct *)NewNSExceptionZKT:(NSException *)exception;
+ (void)PrepareNSExceptionZKT;
/// The family's registry, borrowed for the life of the process.
+ (CFMutableDictionaryRef)GetInstancesDictionaryZKT;
@end

@interface NSValue (FamilyHooks)
/// A host object for a view, or null to have it wrapped like any other.
+ (REALobjectStruct *)NewQTKitNSViewZKT:(NSObject *)view;
/// Host objects for values that hold the times of Core Media and QuickTime.
- (REALobjectStruct *)QTTimeValueZKT;
- (REALobjectStruct *)QTTimeRangeValueZKT;
- (REALobjectStruct *)CMTimeValueZKT;
- (REALobjectStruct *)CMTimeRangeValueZKT;
- (REALobjectStruct *)CMTimeMappingValueZKT;
@end

@interface NSObject (FamilyHooks)
/// What a ZKTREALobjectWrapper holds: a host object that travelled through Cocoa.
- (REALobjectStruct *)unwrap;
@end
