// Numbers as host values: which message reads which type code, and which of the host's services
// makes the Variant.

#import "OwnObject.h"
#import "TracedNumber.h"
#import "ValueScene.h"

#include "host/classes/Inspect.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <objc/runtime.h>

#include <bit>
#include <cmath>
#include <dlfcn.h>
#include <limits>
#include <string>

using testing::ElementsAre;

namespace {

template <class Number>
constexpr std::int64_t least = std::numeric_limits<Number>::min();
template <class Number>
constexpr std::int64_t greatest = std::numeric_limits<Number>::max();

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr float smallestSingle = std::numeric_limits<float>::denorm_min();
constexpr float greatestSingle = std::numeric_limits<float>::max();

struct IntegerRow {
    const char *code;
    std::int64_t number;
    const char *read; ///< the message
    const char *made; ///< the host's call
};

constexpr IntegerRow integerRows[] = {
    {"c", 0, "boolValue", "BooleanToVariant(false)"},
    {"c", 1, "boolValue", "BooleanToVariant(true)"},
    {"c", 5, "boolValue", "BooleanToVariant(true)"},
    {"c", 127, "boolValue", "BooleanToVariant(true)"},
    {"c", -128, "boolValue", "BooleanToVariant(true)"},
    {"c", -1, "boolValue", "BooleanToVariant(true)"},
    {"C", 0, "unsignedCharValue", "IntegerToVariant(0)"},
    {"C", 127, "unsignedCharValue", "IntegerToVariant(127)"},
    {"C", 128, "unsignedCharValue", "IntegerToVariant(128)"},
    {"C", greatest<unsigned char>, "unsignedCharValue", "IntegerToVariant(255)"},
    {"s", 0, "shortValue", "IntegerToVariant(0)"},
    {"s", -1, "shortValue", "IntegerToVariant(-1)"},
    {"s", least<short>, "shortValue", "IntegerToVariant(-32768)"},
    {"s", greatest<short>, "shortValue", "IntegerToVariant(32767)"},
    {"S", 0, "unsignedShortValue", "IntegerToVariant(0)"},
    {"S", 32768, "unsignedShortValue", "IntegerToVariant(32768)"},
    {"S", greatest<unsigned short>, "unsignedShortValue", "IntegerToVariant(65535)"},
    {"i", 0, "intValue", "IntegerToVariant(0)"},
    {"i", -1, "intValue", "IntegerToVariant(-1)"},
    {"i", least<int>, "intValue", "IntegerToVariant(-2147483648)"},
    {"i", greatest<int>, "intValue", "IntegerToVariant(2147483647)"},
    {"I", 0, "unsignedIntValue", "UInt32ToVariant(0)"},
    {"I", 2147483648, "unsignedIntValue", "UInt32ToVariant(2147483648)"},
    {"I", greatest<unsigned int>, "unsignedIntValue", "UInt32ToVariant(4294967295)"},
    {"q", 0, "longValue", "IntegerToVariant(0)"},
    {"q", -1, "longValue", "IntegerToVariant(-1)"},
    {"q", 4294967296, "longValue", "IntegerToVariant(4294967296)"},
    {"q", least<long>, "longValue", "IntegerToVariant(-9223372036854775808)"},
    {"q", greatest<long>, "longValue", "IntegerToVariant(9223372036854775807)"},
    {"Q", 0, "unsignedLongValue", "UInt32ToVariant(0)"},
    {"Q", 4294967295, "unsignedLongValue", "UInt32ToVariant(4294967295)"},
    {"Q", 4294967296, "unsignedLongValue", "UInt32ToVariant(0)"},
    {"Q", 4294967297, "unsignedLongValue", "UInt32ToVariant(1)"},
    {"Q", least<long>, "unsignedLongValue", "UInt32ToVariant(0)"},
    {"Q", -1, "unsignedLongValue", "UInt32ToVariant(4294967295)"},
};

// Every letter of the runtime's that no row above names, more than one letter, and none.
constexpr const char *unnamedCodes[] = {"d",  "l",  "L",  "B",  "",   "cc", "Cc", "ss",   "ii",
                                        "II", "qq", "QQ", "ff", "rc", "ci", "fd", "cQ",   "D",
                                        "b",  "t",  "T",  "*",  "@",  "v",  "?",  "{?=i}"};

struct ServiceRow {
    const char *code;
    const char *service;
};

constexpr ServiceRow serviceRows[] = {
    {"c", "BooleanToVariant"}, {"C", "IntegerToVariant"}, {"s", "IntegerToVariant"},
    {"S", "IntegerToVariant"}, {"i", "IntegerToVariant"}, {"I", "UInt32ToVariant"},
    {"q", "IntegerToVariant"}, {"Q", "UInt32ToVariant"},  {"f", "SingleToVariant"},
    {"d", "DoubleToVariant"},  {"l", "DoubleToVariant"},
};

/// The number that a single or double Variant holds.
double numberOf(const host::ObjectRef &converted, host::VariantType type) {
    const host::VariantContent content = host::variant(converted);
    EXPECT_EQ(content.type, type);
    return content.value.number();
}

std::uint64_t bits(double number) {
    return std::bit_cast<std::uint64_t>(number);
}

/// Makes one of the platform's boolean constants another object for a while.
class Exchanged {
public:
    // By name, since the compiler takes what the headers declare constant for constant.
    Exchanged(const char *constant, id other)
        : constant_(static_cast<id *>(dlsym(RTLD_DEFAULT, constant))), before_(*constant_) {
        *constant_ = other;
    }
    ~Exchanged() { *constant_ = before_; }
    Exchanged(const Exchanged &) = delete;
    Exchanged &operator=(const Exchanged &) = delete;

private:
    id *constant_;
    id before_;
};

} // namespace

TEST(Booleans, OfCoreFoundationAreBooleans) {
    ValueScene scene;
    const host::ObjectRef no = scene.convert((id)kCFBooleanFalse);
    const host::ObjectRef yes = scene.convert((id)kCFBooleanTrue);
    EXPECT_EQ(host::variant(no).type, host::VariantType::boolean);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("find BooleanToVariant", "BooleanToVariant(false) = Variant#1",
                            "BooleanToVariant(true) = Variant#2"));
}

TEST(Booleans, AreKnownByIdentityAndNotByTheirTypeCode) {
    ValueScene scene;
    TracedNumber *const four = tracedNumber("i", 4);
    TracedNumber *const five = tracedNumber("i", 5);
    const Exchanged no("kCFBooleanFalse", five);
    const Exchanged yes("kCFBooleanTrue", four);
    const host::ObjectRef converted[] = {scene.convert(five), scene.convert(four)};
    EXPECT_THAT(scene.host.calls(), ElementsAre("BooleanToVariant(false) = Variant#1",
                                                "BooleanToVariant(true) = Variant#2"))
        << "and nothing is read";
}

TEST(Booleans, NeedNotBeNumbers) {
    ValueScene scene;
    const OwnObject<NSObject> no;
    const OwnObject<NSObject> yes;
    const Exchanged first("kCFBooleanFalse", no);
    const Exchanged second("kCFBooleanTrue", yes);
    const host::ObjectRef converted[] = {scene.convert(no), scene.convert(yes)};
    EXPECT_THAT(scene.host.calls(), ElementsAre("BooleanToVariant(false) = Variant#1",
                                                "BooleanToVariant(true) = Variant#2"));
}

TEST(Booleans, MadeAsNumbersAreBooleans) {
    ValueScene scene;
    const host::ObjectRef no = scene.convert([NSNumber numberWithBool:NO]);
    const host::ObjectRef yes = scene.convert([NSNumber numberWithBool:YES]);
    EXPECT_THAT(scene.host.calls(), ElementsAre("BooleanToVariant(false) = Variant#1",
                                                "BooleanToVariant(true) = Variant#2"));
}

TEST(IntegerVariant, IsReadByItsTypeCode) {
    ValueScene scene;
    for (const IntegerRow &row : integerRows) {
        SCOPED_TRACE(std::string(row.code) + ' ' + std::to_string(row.number));
        scene.host.clearTrace();
        const host::ObjectRef converted = scene.convert(tracedNumber(row.code, row.number, -1.5));
        EXPECT_THAT(scene.host.calls(),
                    ElementsAre("[number " + std::string(row.read) + ']',
                                row.made + std::string(" = ") + scene.host.name(converted)));
    }
}

// The runtime's calling convention leaves the upper half of a register open for narrow answers.
TEST(IntegerVariant, LooksAtNoMoreThanTheAnswersWidth) {
    static const char *code;
    static std::int64_t low;
    constexpr std::uint64_t junk = 0xDEAD'BEEF'0000'0000;
    Class const untidy = objc_allocateClassPair([NSNumber class], "UntidyNumber", 0);
    const auto add = [untidy](const char *selector, auto *function) {
        class_addMethod(untidy, sel_registerName(selector),
                        reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(function)), "Q@:");
    };
    add("objCType", +[](id, SEL) { return code; });
    for (const char *selector : {"boolValue", "unsignedCharValue", "shortValue",
                                 "unsignedShortValue", "intValue", "unsignedIntValue"})
        add(selector, +[](id, SEL) { return junk | static_cast<std::uint32_t>(low); });
    objc_registerClassPair(untidy);

    ValueScene scene;
    id const number = [[[untidy alloc] init] autorelease];
    for (const IntegerRow &row : integerRows) {
        if (std::string_view("qQ").find(row.code) != std::string_view::npos)
            continue;
        SCOPED_TRACE(std::string(row.code) + ' ' + std::to_string(row.number));
        scene.host.clearTrace();
        code = row.code;
        low = row.number;
        const host::ObjectRef converted = scene.convert(number);
        EXPECT_THAT(scene.host.calls(),
                    ElementsAre(row.made + std::string(" = ") + scene.host.name(converted)));
    }
}

TEST(SingleVariant, HasTheAnswerBitForBit) {
    ValueScene scene;
    for (const double number :
         {0.0, -0.0, 1.5, -1.5, 0.1, infinity, -infinity, double{greatestSingle},
          -double{greatestSingle}, double{smallestSingle}, -double{smallestSingle}}) {
        SCOPED_TRACE(number);
        scene.host.clearTrace();
        const host::ObjectRef converted = scene.convert(tracedNumber("f", 77, number));
        EXPECT_EQ(bits(numberOf(converted, host::VariantType::single)),
                  bits(double{static_cast<float>(number)}));
        ASSERT_EQ(scene.host.calls().size(), 2u);
        EXPECT_EQ(scene.host.calls()[0], "[number floatValue]");
        EXPECT_THAT(scene.host.calls()[1], testing::StartsWith("SingleToVariant("));
    }
}

TEST(SingleVariant, MayBeNoNumber) {
    ValueScene scene;
    const host::ObjectRef converted = scene.convert(tracedNumber("f", 77, std::nan("")));
    EXPECT_TRUE(std::isnan(numberOf(converted, host::VariantType::single)));
}

TEST(DoubleVariant, HasTheAnswerBitForBit) {
    ValueScene scene;
    for (const double number :
         {0.0, -0.0, 0.1, 1.5, -12345.678901234567, infinity, -infinity,
          std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
          std::numeric_limits<double>::denorm_min(), std::bit_cast<double>(0x7FF8'0000'DEAD'BEEF),
          std::bit_cast<double>(0xFFF8'0000'0000'0001)}) {
        SCOPED_TRACE(number);
        const host::ObjectRef converted = scene.convert(tracedNumber("d", 77, number));
        EXPECT_EQ(bits(numberOf(converted, host::VariantType::real)), bits(number));
    }
}

TEST(DoubleVariant, IsWhatEveryCodeWithoutARowGives) {
    ValueScene scene;
    for (const char *code : unnamedCodes) {
        SCOPED_TRACE(code);
        scene.host.clearTrace();
        const host::ObjectRef converted = scene.convert(tracedNumber(code, 77, 2.25));
        EXPECT_THAT(scene.host.calls(),
                    ElementsAre("[number doubleValue]",
                                "DoubleToVariant(2.25) = " + scene.host.name(converted)));
    }
}

TEST(NumberVariant, HandsOverOneReference) {
    ValueScene scene;
    for (const ServiceRow &row : serviceRows) {
        SCOPED_TRACE(row.code);
        const host::ObjectHandle converted = scene.convertObject(tracedNumber(row.code, 1, 1));
        EXPECT_EQ(scene.host.references(converted), 1);
        const host::ObjectRef owner = host::ObjectRef::adopt(converted);
    }
}

// The codes "C", "S" and "I", and any low number of "Q", only a subclass has: see above.
TEST(NumberVariant, ComesFromFoundationsOwnNumbers) {
    struct Row {
        NSNumber *number;
        const char *made;
    };
    const Row rows[] = {
        {[NSNumber numberWithChar:5], "BooleanToVariant(true)"}, // its code is a boolean's
        {[NSNumber numberWithChar:0], "BooleanToVariant(false)"},
        {[NSNumber numberWithUnsignedChar:200], "IntegerToVariant(200)"},
        {[NSNumber numberWithShort:-7], "IntegerToVariant(-7)"},
        {[NSNumber numberWithUnsignedShort:65535], "IntegerToVariant(65535)"},
        {[NSNumber numberWithInt:-7], "IntegerToVariant(-7)"},
        {[NSNumber numberWithUnsignedInt:5], "IntegerToVariant(5)"}, // never a UInt32
        {[NSNumber numberWithUnsignedInt:~0U], "IntegerToVariant(4294967295)"},
        {[NSNumber numberWithInteger:5], "IntegerToVariant(5)"},
        {[NSNumber numberWithUnsignedInteger:5], "IntegerToVariant(5)"},
        {[NSNumber numberWithUnsignedLongLong:~0ULL >> 1], "IntegerToVariant(9223372036854775807)"},
        {[NSNumber numberWithLongLong:least<long long>], "IntegerToVariant(-9223372036854775808)"},
        {[NSNumber numberWithUnsignedLongLong:(1ULL << 63) + 1], "UInt32ToVariant(1)"},
        {[NSNumber numberWithUnsignedLongLong:~0ULL], "UInt32ToVariant(4294967295)"},
        {[NSNumber numberWithDouble:1.5], "DoubleToVariant(1.5)"},
        {[NSNumber numberWithFloat:1.5f], "SingleToVariant(1.5)"},
        {[NSDecimalNumber decimalNumberWithString:@"1.25"], "DoubleToVariant(1.25)"},
    };
    ValueScene scene;
    for (const Row &row : rows) {
        SCOPED_TRACE(row.made);
        scene.host.clearTrace();
        const host::ObjectRef converted = scene.convert(row.number);
        EXPECT_THAT(scene.host.calls(),
                    ElementsAre(row.made + std::string(" = ") + scene.host.name(converted)));
    }
}
