#import "RootObject.h"

@implementation RootObject

- (BOOL)respondsToSelector:(SEL)selector {
    static_cast<void>(selector);
    return NO;
}

- (id)retain {
    ++references;
    return (id)self;
}

- (void)release {
    --references;
}

@end

RootObject *makeRootObject(void *memory, Class cls) {
    *static_cast<Class *>(memory) = cls;
    return static_cast<RootObject *>(memory);
}
