// What the compiler calls on its own when it counts references.
#import <Foundation/Foundation.h>

static NSObject *kept;

@interface TestAnswerer : NSObject
- (id)autoreleasedAnswer;
@end

extern "C" {

void *makesObject(void) {
    TestAnswerer *const made = [[TestAnswerer alloc] init];
    return (__bridge_retained void *)made;
}

void *makesNew(void) {
    return (__bridge_retained void *)[TestAnswerer new];
}

void keeps(NSObject *object) {
    kept = object;
}

id answers(TestAnswerer *target) {
    return [target autoreleasedAnswer];
}

bool compares(id object, Class cls) {
    return [object class] == cls && [object isKindOfClass:cls] && [object self] == object &&
           [object respondsToSelector:@selector(autoreleasedAnswer)];
}

id returnsKept(void) {
    return kept;
}
}
