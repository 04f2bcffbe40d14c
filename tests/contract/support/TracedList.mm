#import "TracedList.h"

@interface TracedEnumerator : NSObject {
@public
    TracedList *list;
    std::size_t requests;
}
@end

@implementation TracedEnumerator

- (id)nextObject {
    noteInTrace("[enumerator nextObject]");
    return requests < list->elements.size() ? list->elements[requests++] : nil;
}

@end

@implementation TracedList

- (NSUInteger)count {
    noteInTrace("[list count]");
    return elements.size();
}

- (id)objectAtIndex:(NSUInteger)index {
    noteInTrace("[list objectAtIndex:" + std::to_string(index) + ']');
    return index < elements.size() ? elements[index] : nil;
}

- (id)objectEnumerator {
    noteInTrace("[list objectEnumerator]");
    TracedEnumerator *enumerator = [[[TracedEnumerator alloc] init] autorelease];
    enumerator->list = self;
    return enumerator;
}

@end

@implementation RefusingElement

- (NSUInteger)length {
    refusing("length")("length");
    return 0;
}

@end
