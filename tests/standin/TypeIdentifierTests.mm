// Type identifiers and CFGetTypeID.

#import "Cocoa.h"

#include <iterator>
#include <set>

/// Tells its type itself, as Core Foundation's own objects do.
@interface TypedObject : NSObject {
@public
    CFTypeID type;
}
- (CFTypeID)_cfTypeID;
@end

@implementation TypedObject

- (CFTypeID)_cfTypeID {
    return type;
}

@end

namespace {

using TypeIdentifiers = CocoaTest;

TEST_F(TypeIdentifiers, AreDistinct) {
    const std::vector<CFTypeID> all = {
        CFArrayGetTypeID(),
        CFAttributedStringGetTypeID(),
        CFBagGetTypeID(),
        CFBooleanGetTypeID(),
        CFBundleGetTypeID(),
        CFCharacterSetGetTypeID(),
        CFDataGetTypeID(),
        CFDateGetTypeID(),
        CFDictionaryGetTypeID(),
        CFErrorGetTypeID(),
        CFNumberGetTypeID(),
        CFSetGetTypeID(),
        CFStringGetTypeID(),
        CFTimeZoneGetTypeID(),
        CFURLGetTypeID(),
        CFUUIDGetTypeID(),
        CTFontGetTypeID(),
        CTFontCollectionGetTypeID(),
        CTFrameGetTypeID(),
        CTFramesetterGetTypeID(),
        CTGlyphInfoGetTypeID(),
        CTLineGetTypeID(),
        CTParagraphStyleGetTypeID(),
        CTRunGetTypeID(),
        CTRunDelegateGetTypeID(),
        CTTypesetterGetTypeID(),
    };
    EXPECT_EQ(std::set<CFTypeID>(all.begin(), all.end()).size(), all.size());
    EXPECT_THAT(all, testing::Each(testing::Gt(1U)));
    EXPECT_THAT(all, testing::Each(testing::Lt(0x80000000U)));
}

TEST_F(TypeIdentifiers, OfFoundationsObjects) {
    const struct {
        id object;
        CFTypeID type;
    } rows[] = {
        {.object = @"text", .type = CFStringGetTypeID()},
        {.object = [NSMutableString string], .type = CFStringGetTypeID()},
        {.object = [NSNumber numberWithInt:1], .type = CFNumberGetTypeID()},
        {.object = [NSNumber numberWithBool:YES], .type = CFBooleanGetTypeID()},
        {.object = (id)kCFBooleanFalse, .type = CFBooleanGetTypeID()},
        {.object = [NSDictionary dictionary], .type = CFDictionaryGetTypeID()},
        {.object = [NSArray array], .type = CFArrayGetTypeID()},
        {.object = [NSData data], .type = CFDataGetTypeID()},
        {.object = [NSURL URLWithString:@"http://example.com/"], .type = CFURLGetTypeID()},
        {.object = [NSDate date], .type = CFDateGetTypeID()},
        {.object = [NSSet set], .type = CFSetGetTypeID()},
        {.object = [NSCharacterSet letterCharacterSet], .type = CFCharacterSetGetTypeID()},
        {.object = [NSTimeZone timeZoneForSecondsFromGMT:0], .type = CFTimeZoneGetTypeID()},
        {.object = [[[NSAttributedString alloc] initWithString:@"a"] autorelease],
         .type = CFAttributedStringGetTypeID()},
        {.object = [NSError errorWithDomain:@"d" code:1 userInfo:nil], .type = CFErrorGetTypeID()},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(CFGetTypeID(row.object), row.type) << class_getName([row.object class]);
    }
}

TEST_F(TypeIdentifiers, OfTheOtherBridgedClassesAreTheirOwn) {
    const id objects[] = {
        [NSNull null],
        [NSLocale currentLocale],
        [NSCalendar currentCalendar],
        [NSTimer timerWithTimeInterval:1
                                target:@"target"
                              selector:@selector(length)
                              userInfo:nil
                               repeats:NO],
        [NSInputStream inputStreamWithData:[NSData data]],
        [NSOutputStream outputStreamToMemory],
    };
    std::set<CFTypeID> types;
    for (const id object : objects) {
        types.insert(CFGetTypeID(object));
    }
    EXPECT_EQ(types.size(), std::size(objects));
    EXPECT_THAT(types, testing::Each(testing::Gt(1U)));
}

TEST_F(TypeIdentifiers, AreWhatTheObjectsTellThemselves) {
    const id objects[] = {
        @"text",       [NSNumber numberWithInt:1],  (id)kCFBooleanTrue, [NSSet set],
        [NSNull null], [NSProcessInfo processInfo], [NSError class]};
    for (const id object : objects) {
        EXPECT_TRUE([object respondsToSelector:@selector(_cfTypeID)])
            << object_getClassName(object);
        EXPECT_EQ([(TypedObject *)object _cfTypeID], CFGetTypeID(object))
            << object_getClassName(object);
    }
}

TEST_F(TypeIdentifiers, AnObjectThatTellsItsTypeIsBelieved) {
    TypedObject *const object = [[[TypedObject alloc] init] autorelease];
    object->type = CTRunGetTypeID();
    EXPECT_EQ(CFGetTypeID(object), CTRunGetTypeID());
}

TEST_F(TypeIdentifiers, OtherObjectsHaveTheRootType) {
    const id objects[] = {
        [[[NSObject alloc] init] autorelease],
        [[[NSLock alloc] init] autorelease],
        [NSProcessInfo processInfo],
        [NSFileManager defaultManager],
        [NSValue valueWithRange:NSMakeRange(0, 1)],
        [NSString class], // class objects are objects of NSObject's too
    };
    for (const id object : objects) {
        EXPECT_EQ(CFGetTypeID(object), 1U) << object_getClassName(object);
    }
}

TEST_F(TypeIdentifiers, OfASubclassAreTheBridgedClasss) {
    EXPECT_EQ(CFGetTypeID(nsString(u"made by Core Foundation")), CFStringGetTypeID());
    EXPECT_EQ(CFGetTypeID([NSCountedSet set]), CFSetGetTypeID());
    EXPECT_EQ(CFGetTypeID([NSDecimalNumber one]), CFNumberGetTypeID());
    EXPECT_EQ(CFGetTypeID([NSCalendarDate calendarDate]), CFDateGetTypeID());
}

} // namespace
