// One element after the other.

#pragma once
#pragma clang system_header

#include <Foundation/NSObject.h>

/// What a for loop knows of where it is.
typedef struct {
    unsigned long state;
    id __unsafe_unretained _Nullable *_Nullable itemsPtr;
    unsigned long *_Nullable mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(nonnull NSFastEnumerationState *)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)count;
@end

OBJC_VISIBLE
@interface NSEnumerator<ObjectType> : NSObject
- (nullable ObjectType)nextObject; // null: no more
@end
