// The two boolean objects, and the type codes that value objects answer.

#import "Cocoa.h"

namespace {

using TypeCodes = CocoaTest;

TEST_F(TypeCodes, BooleansAreFoundationsOwn) {
    EXPECT_EQ((id)kCFBooleanTrue, [NSNumber numberWithBool:YES]);
    EXPECT_EQ((id)kCFBooleanFalse, [NSNumber numberWithBool:NO]);
    EXPECT_NE(kCFBooleanTrue, kCFBooleanFalse);
    EXPECT_TRUE([(NSNumber *)kCFBooleanTrue boolValue]);
    EXPECT_FALSE([(NSNumber *)kCFBooleanFalse boolValue]);
}

TEST_F(TypeCodes, BooleansAreSignedChars) {
    EXPECT_STREQ([(NSNumber *)kCFBooleanTrue objCType], "c");
    EXPECT_STREQ([[NSNumber numberWithBool:NO] objCType], "c");
}

TEST_F(TypeCodes, BooleansStillCompareWithNumbers) {
    auto *const yes = (NSNumber *)kCFBooleanTrue;
    EXPECT_TRUE([yes isEqual:[NSNumber numberWithInt:1]]);
    EXPECT_FALSE([yes isEqual:[NSNumber numberWithInt:0]]);
    EXPECT_EQ([yes compare:[NSNumber numberWithInt:2]], NSOrderedAscending);
    EXPECT_STREQ([[yes description] UTF8String], "1");
}

TEST_F(TypeCodes, OtherNumbersKeepTheirCodes) {
    EXPECT_STREQ([[NSNumber numberWithInt:5] objCType], "i");
    EXPECT_STREQ([[NSNumber numberWithDouble:5] objCType], "d");
    EXPECT_STREQ([[NSNumber numberWithFloat:5] objCType], "f");
}

TEST_F(TypeCodes, GeometryHasTheNamesOfCoreGraphics) {
    const NSRect rect = NSMakeRect(1, 2, 3, 4);
    EXPECT_STREQ([[NSValue valueWithRect:rect] objCType], "{CGRect={CGPoint=dd}{CGSize=dd}}");
    EXPECT_STREQ([[NSValue valueWithSize:rect.size] objCType], "{CGSize=dd}");
    EXPECT_STREQ([[NSValue valueWithPoint:rect.origin] objCType], "{CGPoint=dd}");
    EXPECT_STREQ([[NSValue valueWithRange:NSMakeRange(1, 2)] objCType], "{_NSRange=QQ}");
}

TEST_F(TypeCodes, GeometryIsStillReadAndCompared) {
    const NSRect rect = NSMakeRect(1, 2, 3, 4);
    NSValue *const value = [NSValue valueWithRect:rect];
    EXPECT_TRUE(NSEqualRects([value rectValue], rect));
    EXPECT_TRUE([value isEqual:[NSValue valueWithRect:rect]]);
    NSValue *const byCode = [NSValue valueWithBytes:&rect
                                           objCType:"{CGRect={CGPoint=dd}{CGSize=dd}}"];
    EXPECT_TRUE(NSEqualRects([byCode rectValue], rect));
    EXPECT_STREQ([byCode objCType], "{CGRect={CGPoint=dd}{CGSize=dd}}");
}

} // namespace
