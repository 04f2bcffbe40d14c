// Foundation's objects across the border between programs and plug-in.

#include "host/core/Cocoa.h"
#include "tests/host/FakePlugin.h"

#import <Foundation/Foundation.h>

namespace {

int deallocated = 0;

} // namespace

/// Counts its end.
@interface Mortal : NSException
@end

@implementation Mortal
- (void)dealloc {
    ++deallocated;
    [super dealloc];
}
@end

namespace {

using namespace host;

Mortal *autoreleasedMortal() {
    return [[[Mortal alloc] initWithName:@"Mortal" reason:@"R" userInfo:nil] autorelease];
}

void leaveOneBehind() {
    autoreleasedMortal();
}
void raiseOne() {
    [autoreleasedMortal() raise];
}
void leaveOneIn(ObjectHandle) {
    autoreleasedMortal();
}

struct CocoaCalls : testing::Test {
    CocoaCalls() {
        deallocated = 0;
        type.sharedMethods = {method("leave", pointer(leaveOneBehind)),
                              method("raise", pointer(raiseOne))};
        type.record.constructor = leaveOneIn;
        type.registerClass();
    }
    FakeClass type{"CocoaZKT"};
    Host host;
};

TEST_F(CocoaCalls, EndWithoutTheirAutoreleasedObjects) {
    host.callShared("CocoaZKT", "leave");
    EXPECT_EQ(deallocated, 1);
    host.newInstance("CocoaZKT");
    EXPECT_EQ(deallocated, 2);
    host.newObject("CocoaZKT");
    EXPECT_EQ(deallocated, 3);
}

TEST_F(CocoaCalls, LetNSExceptionsThroughAlive) {
    NSString *name = nil;
    @try {
        host.callShared("CocoaZKT", "raise");
    } @catch (Mortal *exception) {
        EXPECT_EQ(deallocated, 0);
        name = [exception name];
    }
    EXPECT_TRUE([name isEqualToString:@"Mortal"]);
    host.callShared("CocoaZKT", "leave");
}

TEST(CocoaPools, BelongToTheirScope) {
    deallocated = 0;
    {
        const AutoreleasePool pool;
        autoreleasedMortal();
        EXPECT_EQ(deallocated, 0);
    }
    EXPECT_EQ(deallocated, 1);
}

} // namespace
