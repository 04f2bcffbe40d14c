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
    const std::size_t request = ++requests;
    if (request == list->nextToRaise)
        refusing("nextObject")("nextObject");
    return request <= list->elements.size() ? list->elements[request - 1] : nil;
}

@end

@implementation TracedList

static void receive(TracedList *self, std::string_view selector, const std::string &message) {
    noteInTrace("[list " + message + ']');
    if (self->onMessage)
        self->onMessage(selector);
}

- (NSUInteger)count {
    receive(self, "count", "count");
    return elements.size();
}

- (id)objectAtIndex:(NSUInteger)index {
    receive(self, "objectAtIndex:", "objectAtIndex:" + std::to_string(index));
    return index < elements.size() ? elements[index] : nil;
}

- (id)objectEnumerator {
    receive(self, "objectEnumerator", "objectEnumerator");
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
