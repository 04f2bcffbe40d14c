#import "CountedProcessInfo.h"

@implementation CountedProcessInfo

- (id)retain {
    ++retains;
    if (onRetain)
        onRetain();
    return [super retain];
}

- (oneway void)release {
    ++releases;
    if (onRelease)
        onRelease();
    [super release];
}

@end

@implementation AnotherWhenRetained

- (id)retain {
    return another;
}

@end
