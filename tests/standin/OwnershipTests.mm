// CFRetain and CFRelease.

#import "Cocoa.h"

namespace {
bool wasDeallocated;
}

@interface Watched : NSObject
@end

@implementation Watched

- (void)dealloc {
    wasDeallocated = true;
    [super dealloc];
}

@end

namespace {

using Ownership = CocoaTest;

TEST_F(Ownership, RetainAndReleaseCountTheObjectsReferences) {
    wasDeallocated = false;
    const id object = [[Watched alloc] init];
    EXPECT_EQ(CFRetain(object), object);
    EXPECT_EQ([object retainCount], 2U);
    CFRelease(object);
    EXPECT_FALSE(wasDeallocated);
    CFRelease(object);
    EXPECT_TRUE(wasDeallocated);
}

TEST_F(Ownership, NullEndsTheProcess) {
    EXPECT_DEATH(CFRetain(none<CFTypeRef>()), "CFRetain: the object is null");
    EXPECT_DEATH(CFRelease(none<CFTypeRef>()), "CFRelease: the object is null");
}

TEST_F(Ownership, TheDefaultAllocatorIsNull) {
    EXPECT_EQ(kCFAllocatorDefault, nullptr);
}

} // namespace
