#pragma once

#import <Foundation/Foundation.h>

#include <functional>
#include <vector>

// Collections whose messages are lines of the host's trace: [array nextObject], [set allObjects],
// [dictionary objectForKey:key].

/// Enumerators of it trace themselves as the array too.
@interface TracedArray : NSArray {
@public
    std::vector<id> elements; // not retained; nil among them ends an enumeration
    bool hasNoEnumerator;
}
@end

@interface TracedSet : NSSet {
@public
    NSArray *objects; // what allObjects answers; not retained
}
@end

@interface TracedDictionary : NSDictionary {
@public
    NSArray *keys;                  // what allKeys answers; not retained
    std::function<id(id)> valueFor; // gets the key, behind its line; may throw
}
@end

/// A number that cannot be converted: it raises "Refused" when it is asked for its type.
@interface RefusingNumber : NSNumber
@end

/// The integers as numbers.
std::vector<id> numbers(std::initializer_list<int> integers);
