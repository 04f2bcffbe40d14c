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

TEST_F(TypeCodes, NumbersKeepTheTypeThatTheyWereMadeFromOrTheNextWiderSignedOne) {
    const struct {
        NSNumber *number;
        const char *code;
        const char *text;
    } rows[] = {
        {.number = [NSNumber numberWithChar:5], .code = "c", .text = "5"},
        {.number = [NSNumber numberWithChar:-128], .code = "c", .text = "-128"},
        {.number = [NSNumber numberWithUnsignedChar:255], .code = "s", .text = "255"},
        {.number = [NSNumber numberWithShort:5], .code = "s", .text = "5"},
        {.number = [NSNumber numberWithShort:-32768], .code = "s", .text = "-32768"},
        {.number = [NSNumber numberWithUnsignedShort:65535], .code = "i", .text = "65535"},
        {.number = [NSNumber numberWithInt:5], .code = "i", .text = "5"},
        {.number = [NSNumber numberWithUnsignedInt:5], .code = "q", .text = "5"},
        {.number = [NSNumber numberWithUnsignedInt:~0U], .code = "q", .text = "4294967295"},
        {.number = [NSNumber numberWithLong:5], .code = "q", .text = "5"},
        {.number = [NSNumber numberWithLongLong:-5], .code = "q", .text = "-5"},
        {.number = [NSNumber numberWithInteger:5], .code = "q", .text = "5"},
        {.number = [NSNumber numberWithUnsignedLong:5], .code = "q", .text = "5"},
        {.number = [NSNumber numberWithUnsignedLongLong:5], .code = "q", .text = "5"},
        {.number = [NSNumber numberWithUnsignedInteger:~0UL >> 1],
         .code = "q",
         .text = "9223372036854775807"},
        {.number = [NSNumber numberWithUnsignedLong:(~0UL >> 1) + 1],
         .code = "Q",
         .text = "9223372036854775808"},
        {.number = [NSNumber numberWithUnsignedLongLong:~0ULL],
         .code = "Q",
         .text = "18446744073709551615"},
        {.number = [NSNumber numberWithUnsignedInteger:~0UL],
         .code = "Q",
         .text = "18446744073709551615"},
        {.number = [NSNumber numberWithBool:YES], .code = "c", .text = "1"},
        {.number = [NSNumber numberWithFloat:1.5], .code = "f", .text = "1.5"},
        {.number = [NSNumber numberWithDouble:1.5], .code = "d", .text = "1.5"},
        {.number = [NSDecimalNumber decimalNumberWithString:@"5"], .code = "d", .text = "5"},
        {.number = [NSDecimalNumber numberWithUnsignedChar:5], .code = "d", .text = "5"},
    };
    for (const auto &row : rows) {
        EXPECT_STREQ([row.number objCType], row.code) << row.text;
        EXPECT_STREQ([[row.number stringValue] UTF8String], row.text) << row.code;
    }
}

TEST_F(TypeCodes, NumbersThatAreInitializedHaveTheSame) {
    const struct {
        NSNumber *number;
        const char *code;
    } rows[] = {
        {.number = [[NSNumber alloc] initWithChar:5], .code = "c"},
        {.number = [[NSNumber alloc] initWithUnsignedChar:5], .code = "s"},
        {.number = [[NSNumber alloc] initWithShort:5], .code = "s"},
        {.number = [[NSNumber alloc] initWithUnsignedShort:5], .code = "i"},
        {.number = [[NSNumber alloc] initWithInt:5], .code = "i"},
        {.number = [[NSNumber alloc] initWithUnsignedInt:5], .code = "q"},
        {.number = [[NSNumber alloc] initWithLong:5], .code = "q"},
        {.number = [[NSNumber alloc] initWithInteger:5], .code = "q"},
        {.number = [[NSNumber alloc] initWithUnsignedLong:~0UL], .code = "Q"},
        {.number = [[NSNumber alloc] initWithUnsignedInteger:5], .code = "q"},
        {.number = [[NSNumber alloc] initWithUnsignedLongLong:5], .code = "q"},
        {.number = [[NSNumber alloc] initWithBool:YES], .code = "c"},
    };
    for (const auto &row : rows) {
        EXPECT_STREQ([row.number objCType], row.code);
        [row.number release];
    }
}

TEST_F(TypeCodes, NumbersOfAnyCodeCompareByValue) {
    NSNumber *const numbers[] = {[NSNumber numberWithChar:5], [NSNumber numberWithShort:5],
                                 [NSNumber numberWithInt:5], [NSNumber numberWithLong:5],
                                 [NSNumber numberWithDouble:5]};
    NSNumber *const greater[] = {[NSNumber numberWithChar:6], [NSNumber numberWithUnsignedChar:200],
                                 [NSNumber numberWithUnsignedInt:~0U],
                                 [NSNumber numberWithUnsignedLong:~0UL]};
    for (NSNumber *const number : numbers) {
        for (NSNumber *const other : numbers) {
            EXPECT_TRUE([number isEqual:other]) << [number objCType] << [other objCType];
            EXPECT_EQ([number hash], [other hash]) << [number objCType] << [other objCType];
        }
        for (NSNumber *const other : greater) {
            EXPECT_EQ([number compare:other], NSOrderedAscending) << [number objCType];
            EXPECT_EQ([other compare:number], NSOrderedDescending) << [number objCType];
        }
    }
}

TEST_F(TypeCodes, NumbersAreReadInEveryType) {
    NSNumber *const narrow = [NSNumber numberWithChar:-5];
    EXPECT_EQ([narrow charValue], -5);
    EXPECT_EQ([narrow unsignedCharValue], 251);
    EXPECT_EQ([narrow shortValue], -5);
    EXPECT_EQ([narrow longLongValue], -5);
    EXPECT_EQ([narrow doubleValue], -5.0);
    EXPECT_TRUE([narrow boolValue]);
    NSNumber *const wide = [NSNumber numberWithUnsignedInt:~0U];
    EXPECT_EQ([wide unsignedIntValue], ~0U);
    EXPECT_EQ([wide intValue], -1);
    EXPECT_EQ([wide floatValue], 4294967296.0F);
}

TEST_F(TypeCodes, NumbersAreReadInTheWidthOfTheirCode) {
    struct {
        signed char number;
        signed char behind;
    } one = {.number = 0, .behind = 77};
    [[NSNumber numberWithChar:-5] getValue:&one.number];
    EXPECT_EQ(one.number, -5);
    EXPECT_EQ(one.behind, 77);
    struct {
        short number;
        short behind;
    } two = {.number = 0, .behind = 77};
    [[NSNumber numberWithUnsignedChar:200] getValue:&two.number];
    EXPECT_EQ(two.number, 200);
    EXPECT_EQ(two.behind, 77);
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
