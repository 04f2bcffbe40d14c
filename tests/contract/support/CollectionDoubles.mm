#import "CollectionDoubles.h"

#include "TraceLines.h"

@interface TracedArrayEnumerator : NSEnumerator {
@public
    TracedArray *array;
    std::size_t next;
}
@end

@implementation TracedArrayEnumerator

- (id)nextObject {
    noteInTrace("[array nextObject]");
    return next < array->elements.size() ? array->elements[next++] : nil;
}

@end

@implementation TracedArray

- (id)init {
    return self;
}

- (NSEnumerator *)objectEnumerator {
    noteInTrace("[array objectEnumerator]");
    if (hasNoEnumerator)
        return nil;
    TracedArrayEnumerator *const enumerator = [[[TracedArrayEnumerator alloc] init] autorelease];
    enumerator->array = self;
    return enumerator;
}

- (NSUInteger)count {
    noteInTrace("[array count]");
    return elements.size();
}

- (id)objectAtIndex:(NSUInteger)index {
    noteInTrace("[array objectAtIndex:" + std::to_string(index) + ']');
    return elements.at(index);
}

@end

@implementation TracedSet

- (id)init {
    return self;
}

- (NSArray *)allObjects {
    noteInTrace("[set allObjects]");
    return objects;
}

- (NSEnumerator *)objectEnumerator {
    noteInTrace("[set objectEnumerator]");
    return [objects objectEnumerator];
}

- (NSUInteger)count {
    noteInTrace("[set count]");
    return [objects count];
}

@end

@implementation TracedDictionary

- (id)init {
    return self;
}

- (NSArray *)allKeys {
    noteInTrace("[dictionary allKeys]");
    return keys;
}

- (id)objectForKey:(id)key {
    noteInTrace("[dictionary objectForKey:" + std::string([[key description] UTF8String]) + ']');
    return valueFor(key);
}

- (NSEnumerator *)keyEnumerator {
    noteInTrace("[dictionary keyEnumerator]");
    return [keys objectEnumerator];
}

- (NSUInteger)count {
    noteInTrace("[dictionary count]");
    return [keys count];
}

@end

@implementation RefusingNumber

- (const char *)objCType {
    [NSException raise:@"Refused" format:@"objCType"];
    return "i";
}

- (NSString *)description {
    return @"refusing";
}

@end

std::vector<id> numbers(std::initializer_list<int> integers) {
    std::vector<id> result;
    for (const int integer : integers)
        result.push_back([NSNumber numberWithInt:integer]);
    return result;
}
