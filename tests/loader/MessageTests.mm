#import "tests/loader/HostClasses.h"

#include "tests/loader/TestImages.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <thread>

#include <objc/runtime.h>

namespace {

class Messages : public testing::TestWithParam<const char *> {
protected:
    Messages() : pool_([NSAutoreleasePool new]), image_(GetParam(), "Messages") {}
    ~Messages() override { [pool_ release]; }

    template <class Function>
    Function *function(const char *name) const {
        return image_.function<Function>(name);
    }

    [[nodiscard]] TestAnswerer *answerer() const {
        return [[[TestAnswerer alloc] init] autorelease];
    }

private:
    NSAutoreleasePool *pool_;
    LoadedImage image_;
};
INSTANTIATE_TEST_SUITE_P(, Messages, testing::ValuesIn(allVariants), variantName);

TEST_P(Messages, reachClassesAndInitialiseThemFirst) {
    EXPECT_EQ(function<int()>("sendsToClass")(), 4711);
    EXPECT_EQ(answererInitialisations(), 1);
}

TEST_P(Messages, passArgumentsOfEveryKind) {
    EXPECT_EQ(function<int(id)>("sendsIntegers")(answerer()), 204);
    EXPECT_EQ(function<double(id)>("sendsDoubles")(answerer()),
              1.5 * 2 * 3 * 0.5 * 4 * 5 * 0.25 * 8 * 2 + 1.5);
    EXPECT_EQ(function<double(id)>("sendsMixture")(answerer()), 1 + 25 + 25 - 4000 + 50000 + 1 + 6);
}

// On arm64 methods with variable arguments look for them in registers, where images put none.
#ifdef __x86_64__
TEST_P(Messages, passVariableArguments) {
    NSString *const text = function<id(id)>("sendsVariableArguments")(answerer());
    EXPECT_STREQ([text UTF8String], "3 4.25 five 6.5");
}
#endif

TEST_P(Messages, bringAnswersOfEveryKind) {
    id target = answerer();
    EXPECT_EQ(function<int(id)>("sendsForSmall")(target), -5);
    EXPECT_EQ(function<float(id)>("sendsForFloat")(target), 1.25f);
    const auto large = function<Large(id, double)>("sendsForLarge")(target, 1.5);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(large.values[i], 1.5 * (i + 1));
    const auto pair = function<Pair(id)>("sendsForPair")(target);
    EXPECT_EQ(pair.first, 0.5);
    EXPECT_EQ(pair.second, -0.25);
    const auto vector = function<Vector(id)>("sendsForVector")(target);
    EXPECT_EQ(vector.x + 10 * vector.y + 100 * vector.z + 1000 * vector.w, 4321.0);
    const auto words = function<Words(id)>("sendsForWords")(target);
    EXPECT_EQ(words.first, std::numeric_limits<long>::min());
    EXPECT_EQ(words.second, 42);
}

/// Leaves values in the registers that answers come in.
__attribute__((noinline)) void spoilAnswerRegisters() {
#ifdef __aarch64__
    asm volatile("mov x0, #-1\n mov x1, #-1\n"
                 "fmov d0, #1.0\n fmov d1, #1.0\n fmov d2, #1.0\n fmov d3, #1.0\n"
                 :
                 :
                 : "x0", "x1", "d0", "d1", "d2", "d3");
#else
    asm volatile("movq $-1, %%rax\n movq $-1, %%rdx\n"
                 "pcmpeqd %%xmm0, %%xmm0\n pcmpeqd %%xmm1, %%xmm1\n"
                 :
                 :
                 : "rax", "rdx", "xmm0", "xmm1");
#endif
}

TEST_P(Messages, toNilAnswerZero) {
    spoilAnswerRegisters();
    EXPECT_EQ(function<int(id)>("sendsIntegers")(nil), 0);
    spoilAnswerRegisters();
    EXPECT_EQ(function<double(id)>("sendsDoubles")(nil), 0.0);
    spoilAnswerRegisters();
    EXPECT_EQ(function<float(id)>("sendsForFloat")(nil), 0.0f);
    spoilAnswerRegisters();
    EXPECT_EQ(function<id(id)>("sendsVariableArguments")(nil), nil);
    spoilAnswerRegisters();
    const auto vector = function<Vector(id)>("sendsForVector")(nil);
    for (const double value : {vector.x, vector.y, vector.z, vector.w})
        EXPECT_EQ(value, 0.0);
    spoilAnswerRegisters();
    const auto pair = function<Pair(id)>("sendsForPair")(nil);
    EXPECT_EQ(pair.first, 0.0);
    EXPECT_EQ(pair.second, 0.0);
    spoilAnswerRegisters();
    const auto words = function<Words(id)>("sendsForWords")(nil);
    EXPECT_EQ(words.first, 0);
    EXPECT_EQ(words.second, 0);
}

// On arm64 an image's long double is a double: none comes from this system's code, or goes to it.
#ifdef __x86_64__
TEST_P(Messages, bringAnswersOfTheFloatingPointUnit) {
    id target = answerer();
    EXPECT_EQ(function<long double(id)>("sendsForLongDouble")(target), 3.5L);
    const auto complex = function<ComplexLongDouble(id)>("sendsForComplex")(target);
    EXPECT_EQ(__real__ complex, 1.5L);
    EXPECT_EQ(__imag__ complex, -2.5L);
}

TEST_P(Messages, toNilAnswerZeroInTheFloatingPointUnit) {
    // More often than its stack has registers, and each answer is taken off again.
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(function<long double(id)>("sendsForLongDouble")(nil), 0.0L);
        const auto complex = function<ComplexLongDouble(id)>("sendsForComplex")(nil);
        EXPECT_EQ(__real__ complex, 0.0L);
        EXPECT_EQ(__imag__ complex, 0.0L);
    }
    EXPECT_EQ(std::sqrt(static_cast<long double>(std::strlen("sixteen letters!"))), 4.0L);
}
#endif

TEST_P(Messages, toNilForStructuresReturnTheirAddress) {
    const auto large = function<Large(id, double)>("sendsForLarge")(nil, 1.5);
    for (const double value : large.values)
        EXPECT_EQ(value, 0.0);
}

TEST_P(Messages, thatNobodyUnderstandsRaise) {
    @try {
        function<id(id)>("sendsUnknown")(answerer());
        ADD_FAILURE() << "understood";
    } @catch (NSException *exception) {
        EXPECT_STREQ([[exception name] UTF8String], "NSInvalidArgumentException");
        EXPECT_NE([[exception reason] rangeOfString:@"unknownToEveryone"].length, 0U);
    }
}

TEST_P(Messages, selectorsAreTheRuntimes) {
    EXPECT_TRUE(sel_isEqual(function<SEL()>("selectorOfLength")(), @selector(length)));
    EXPECT_TRUE(function<bool(id)>("answersLength")(@"text"));
    EXPECT_FALSE(function<bool(id)>("answersLength")(answerer()));
    EXPECT_STREQ(sel_getName(function<SEL(const char *)>("selectorNamed")("some:thing:")),
                 "some:thing:");
}

TEST_P(Messages, classesAreTheRuntimes) {
    id target = answerer();
    EXPECT_STREQ(function<const char *(id)>("classNameOf")(target), "TestAnswerer");
    EXPECT_EQ(function<Class(id)>("classOf")(target), [TestAnswerer class]);
    EXPECT_EQ(function<Class(id)>("classOf")(nil), Nil);
    EXPECT_EQ(function<Class(Class)>("superclassOf")([TestAnswerer class]), [NSObject class]);
    EXPECT_EQ(function<Class(Class)>("superclassOf")([NSObject class]), Nil);
    EXPECT_EQ(function<Class(const char *)>("classNamed")("NSString"), [NSString class]);
    EXPECT_EQ(function<Class(const char *)>("classNamed")("NobodysClass"), Nil);
}

TEST_P(Messages, pooledObjectsLiveAsLongAsTheirPool) {
    static int livingWithin;
    function<void(void (*)())>("drainsPool")([] {
        [[[TestAnswerer alloc] init] autorelease];
        livingWithin = livingAnswerers();
    });
    EXPECT_EQ(livingWithin, 1);
    EXPECT_EQ(livingAnswerers(), 0);
    EXPECT_EQ([function<id(int)>("boxes")(77) intValue], 77);
}

TEST_P(Messages, passBetweenThreads) {
    std::thread([&] {
        NSAutoreleasePool *const pool = [NSAutoreleasePool new];
        EXPECT_EQ(function<int(id)>("sendsIntegers")(answerer()), 204);
        [pool release];
    }).join();
}

TEST_P(Messages, literalsAreStrings) {
    NSString *const text = function<id()>("shortLiteral")();
    EXPECT_TRUE([text isKindOfClass:[NSString class]]);
    EXPECT_EQ([text length], 7U);
    EXPECT_STREQ([text UTF8String], "literal");
    EXPECT_EQ([text characterAtIndex:6], 'l');
    EXPECT_EQ(function<long(id)>("lengthOf")(text), 7);
    EXPECT_EQ([function<id()>("emptyLiteral")() length], 0U);
    EXPECT_STREQ([function<id()>("emptyLiteral")() UTF8String], "");
}

TEST_P(Messages, literalsOfAnyCharacters) {
    NSString *const text = function<id()>("wideLiteral")();
    EXPECT_EQ([text length], 8U);
    EXPECT_STREQ([text UTF8String], "Grüße 😀");
    EXPECT_EQ([text characterAtIndex:2], 0xfc);
    EXPECT_TRUE([text isEqualToString:@"Grüße 😀"]);
    EXPECT_STREQ([[text substringWithRange:NSMakeRange(2, 2)] UTF8String], "üß");
}

TEST_P(Messages, literalsEqualOtherStrings) {
    NSString *const text = function<id()>("shortLiteral")();
    NSString *const other = [NSMutableString stringWithString:@"literal"];
    EXPECT_TRUE([text isEqual:other]);
    EXPECT_TRUE([other isEqual:text]);
    EXPECT_TRUE([text isEqual:@"literal"]);
    EXPECT_FALSE([text isEqual:@"another"]);
    EXPECT_EQ([text hash], [other hash]);
    EXPECT_EQ([text hash], [@"literal" hash]);
    NSDictionary *const dictionary = @{@"literal" : @1, @"Grüße 😀" : @2};
    EXPECT_EQ([[dictionary objectForKey:text] intValue], 1);
    EXPECT_EQ([[dictionary objectForKey:function<id()>("wideLiteral")()] intValue], 2);
}

TEST_P(Messages, literalsAreNeitherCountedNorFreedNorCopied) {
    NSString *const text = function<id()>("shortLiteral")();
    for (int i = 0; i < 10; ++i) {
        [text release];
        [text autorelease];
    }
    EXPECT_EQ([text retain], text);
    EXPECT_EQ([text copy], text);
    EXPECT_EQ([text retainCount], NSUIntegerMax);
    EXPECT_STREQ([[[text mutableCopy] autorelease] UTF8String], "literal");
    EXPECT_STREQ([text UTF8String], "literal");
}

TEST_P(Messages, literalsAnswerInBulkAsOneByOne) {
    for (const char *name : {"shortLiteral", "wideLiteral"}) {
        NSString *const text = function<id()>(name)();
        unichar bulk[16] = {};
        [text getCharacters:bulk range:NSMakeRange(1, [text length] - 1)];
        for (NSUInteger i = 1; i < [text length]; ++i)
            EXPECT_EQ(bulk[i - 1], [text characterAtIndex:i]);
    }
}

TEST_P(Messages, literalsRaiseBeyondTheirEnd) {
    NSString *const text = function<id()>("shortLiteral")();
    unichar buffer[16];
    EXPECT_EQ(7U, [text length]);
    @try {
        [text characterAtIndex:7];
        ADD_FAILURE() << "no exception";
    } @catch (NSException *exception) {
        EXPECT_STREQ([[exception name] UTF8String], "NSRangeException");
    } @
    try {
        [text getCharacters:buffer range:NSMakeRange(7, 1)];
        ADD_FAILURE() << "no exception";
    } @catch (NSException *exception) {
        EXPECT_STREQ([[exception name] UTF8String], "NSRangeException");
    } @
    try {
        [text getCharacters:buffer range:NSMakeRange(1, NSUIntegerMax)];
        ADD_FAILURE() << "no exception";
    } @catch (NSException *exception) {
        EXPECT_STREQ([[exception name] UTF8String], "NSRangeException");
    }
}

const char *const countingVariants[] = {"chainedPlain", "chainedOptimised"};

class ReferenceCounting : public testing::TestWithParam<const char *> {
protected:
    ReferenceCounting() : pool_([NSAutoreleasePool new]), image_(GetParam(), "Arc") {}
    ~ReferenceCounting() override { [pool_ release]; }

    NSAutoreleasePool *pool_;
    LoadedImage image_;
};
INSTANTIATE_TEST_SUITE_P(, ReferenceCounting, testing::ValuesIn(countingVariants), variantName);

TEST_P(ReferenceCounting, makesObjectsThatItsCallerOwns) {
    for (const char *name : {"makesObject", "makesNew"}) {
        id made = image_.function<id()>(name)();
        EXPECT_EQ([made class], [TestAnswerer class]);
        EXPECT_EQ([made retainCount], 1U);
        EXPECT_EQ(livingAnswerers(), 1);
        [made release];
        EXPECT_EQ(livingAnswerers(), 0);
    }
}

TEST_P(ReferenceCounting, keepsWhatItStores) {
    const auto keeps = image_.function<void(id)>("keeps");
    TestAnswerer *const object = [[TestAnswerer alloc] init];
    keeps(object);
    EXPECT_EQ([object retainCount], 2U);
    EXPECT_EQ(image_.function<id()>("returnsKept")(), object);
    keeps(nil);
    [pool_ release];
    pool_ = [NSAutoreleasePool new];
    EXPECT_EQ([object retainCount], 1U);
    [object release];
    EXPECT_EQ(livingAnswerers(), 0);
}

TEST_P(ReferenceCounting, handsOnWhatItIsAnswered) {
    TestAnswerer *const object = [[[TestAnswerer alloc] init] autorelease];
    id answer = image_.function<id(id)>("answers")(object);
    EXPECT_EQ([answer class], [NSObject class]);
    EXPECT_EQ(image_.function<id(id)>("answers")(nil), nil);
}

TEST_P(ReferenceCounting, asksObjectsAboutThemselves) {
    TestAnswerer *const object = [[[TestAnswerer alloc] init] autorelease];
    const auto compares = image_.function<bool(id, Class)>("compares");
    EXPECT_TRUE(compares(object, [TestAnswerer class]));
    EXPECT_FALSE(compares(object, [NSString class]));
    EXPECT_FALSE(compares(nil, [NSString class]));
}

} // namespace
