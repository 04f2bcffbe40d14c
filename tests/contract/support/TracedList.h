#pragma once

#import "TracedObject.h"

#include <vector>

/// Stands for Foundation's list of arguments; its messages and those of its enumerators are lines
/// of the host's trace: [list objectEnumerator], [enumerator nextObject].
@interface TracedList : NSObject {
@public
    std::vector<id> elements; // not retained; nil among them ends an enumeration
}
- (NSUInteger)count;
- (id)objectAtIndex:(NSUInteger)index; // nil beyond the end, which no real list would answer
- (id)objectEnumerator;
@end

/// An element that cannot be converted: it raises "Refused" when it is asked for its length.
@interface RefusingElement : NSObject
- (NSUInteger)length;
@end
