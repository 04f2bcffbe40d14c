// Structure values as geometry wrappers, or as what a sibling's hook makes of them.

#import "OwnObject.h"
#import "TracedValue.h"
#import "ValueScene.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

#include <bit>
#include <cstring>
#include <limits>
#include <span>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr auto greatestWord = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t untouched = 0xA5A5'A5A5'A5A5'A5A5;

struct GeometryRow {
    const char *code;
    const char *message;
    const char *hostClass;
    std::vector<std::uint64_t> (*words)(NSRect, NSRange); ///< what the wrapper's data begins with
};

std::uint64_t bits(double number) {
    return std::bit_cast<std::uint64_t>(number);
}

constexpr GeometryRow geometryRows[] = {
    {"{CGRect={CGPoint=dd}{CGSize=dd}}", "rectValue", "NSRectZKT",
     [](NSRect rect, NSRange) {
         return std::vector{bits(rect.origin.x), bits(rect.origin.y), bits(rect.size.width),
                            bits(rect.size.height)};
     }},
    {"{CGSize=dd}", "sizeValue", "NSSizeZKT",
     [](NSRect rect, NSRange) {
         return std::vector{bits(rect.size.width), bits(rect.size.height)};
     }},
    {"{_NSRange=QQ}", "rangeValue", "NSRangeZKT",
     [](NSRect, NSRange range) {
         return std::vector<std::uint64_t>{range.location, range.length};
     }},
    {"{CGPoint=dd}", "pointValue", "NSPointZKT",
     [](NSRect rect, NSRange) { return std::vector{bits(rect.origin.x), bits(rect.origin.y)}; }},
};

struct HookRow {
    const char *code;
    const char *hook;
};

constexpr HookRow hookRows[] = {
    {"{?=qqq}", "QTTimeValueZKT"},
    {"{?={?=qqq}{?=qqq}}", "QTTimeRangeValueZKT"},
    {"{?=qiIq}", "CMTimeValueZKT"},
    {"{?={?=qiIq}{?=qiIq}}", "CMTimeRangeValueZKT"},
    {"{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}", "CMTimeMappingValueZKT"},
};

constexpr const char *unknownCodes[] = {
    "",
    "@",
    "^v",
    "{?=}",
    "{?=qq}",
    "{?=qqqq}",
    "{?=qiIq}x",
    "{CGPoint=ff}",
    "{CGPoint=dd}{CGSize=dd}",
    "{CGRect=dddd}",
    "{_NSRect={_NSPoint=dd}{_NSSize=dd}}",
    "{_NSRange=II}",
    "{_NSRange=QQ",
    "{CGAffineTransform=dddddd}",
};

struct Extreme {
    NSRect rect;
    NSRange range;
};

const Extreme extremes[] = {
    {{{1, 2}, {3, 4}}, {5, 6}},
    {{{0.0, -0.0}, {0.0, -0.0}}, {0, 0}},
    {{{-1.5, 1e308}, {infinity, -infinity}}, {greatestWord, 0}},
    {{{std::bit_cast<double>(0x7FF8'0000'DEAD'BEEF), 5e-324}, {-5e-324, 0.1}},
     {std::uint64_t{1} << 63, greatestWord}},
    {{{1e-300, 2}, {std::bit_cast<double>(0xFFF8'0000'0000'0001), 7}}, {1, 2}},
};

/// The first six words of an instance's data.
std::vector<std::uint64_t> wordsOf(const host::Host &host, const host::ObjectRef &object) {
    std::vector<std::uint64_t> words(6);
    std::memcpy(words.data(), host.dataOf(object), words.size() * sizeof(std::uint64_t));
    return words;
}

/// A host that knows the geometry wrappers, with data to be seen unless it is written.
struct StructureScene : ValueScene {
    StructureScene() {
        for (const GeometryRow &row : geometryRows)
            host.addClass({.name = row.hostClass,
                           .dataSize = 48,
                           .initialData = std::vector(48, std::byte{0xA5})});
    }

    /// The value with these contents, converted.
    host::ObjectRef convertValue(const char *code, const Extreme &contents = extremes[0]) {
        value->code = code;
        value->rect = contents.rect;
        value->range = contents.range;
        return convert(value);
    }

    OwnObject<TracedValue> value;
};

/// A Time object that a hook answers with; the test owns it.
struct HookScene : StructureScene {
    HookScene() {
        host.addClass({.name = "TimeZKT"});
        time = host.newInstance("TimeZKT");
        value->knowsHooks = true;
        value->hookAnswer = time;
        host.clearTrace();
    }

    host::ObjectRef time;
};

} // namespace

TEST(StructureValue, FillsItsWrapperAndNothingBehind) {
    StructureScene scene;
    for (const GeometryRow &row : geometryRows) {
        for (const Extreme &contents : extremes) {
            SCOPED_TRACE(row.code);
            const host::ObjectRef converted = scene.convertValue(row.code, contents);
            ASSERT_EQ(scene.host.className(converted), row.hostClass);
            std::vector<std::uint64_t> expected = row.words(contents.rect, contents.range);
            expected.resize(6, untouched);
            EXPECT_EQ(wordsOf(scene.host, converted), expected);
        }
    }
}

TEST(StructureValue, IsReadByOneMessageAndMadeByOneCall) {
    StructureScene scene;
    for (const GeometryRow &row : geometryRows) {
        SCOPED_TRACE(row.code);
        scene.host.clearTrace();
        const host::ObjectRef converted = scene.convertValue(row.code);
        EXPECT_THAT(scene.host.calls(),
                    UnorderedElementsAre("[value " + std::string(row.message) + ']',
                                         "PluginNewInstance(\"" + std::string(row.hostClass) +
                                             "\") = " + scene.host.name(converted)));
    }
}

TEST(StructureValue, ComesFromFoundationsOwnValues) {
    StructureScene scene;
    const auto &[rect, range] = extremes[0];
    NSValue *const values[] = {[NSValue valueWithRect:rect], [NSValue valueWithSize:rect.size],
                               [NSValue valueWithRange:range],
                               [NSValue valueWithPoint:rect.origin]};
    for (std::size_t i = 0; i < std::size(values); ++i) {
        SCOPED_TRACE(geometryRows[i].code);
        const host::ObjectRef converted = scene.convert(values[i]);
        ASSERT_EQ(scene.host.className(converted), geometryRows[i].hostClass);
        std::vector<std::uint64_t> expected = geometryRows[i].words(rect, range);
        expected.resize(6, untouched);
        EXPECT_EQ(wordsOf(scene.host, converted), expected);
    }
}

TEST(StructureValue, IsNilWhenTheHostDoesNotKnowTheWrapper) {
    StructureScene scene;
    for (const GeometryRow &row : geometryRows) {
        SCOPED_TRACE(row.code);
        scene.host.hideClass(row.hostClass);
        EXPECT_EQ(scene.convertValue(row.code).handle(), nullptr);
        scene.host.showClass(row.hostClass);
    }
    EXPECT_EQ(scene.host.services().calls("PluginNewInstance"), std::size(geometryRows));
}

TEST(StructureValue, IsNeitherRegisteredNorRetained) {
    StructureScene scene;
    const auto info = scene.host.callShared(processInfoClass, "processInfo").object();
    ASSERT_NE(host::siblings::registryRequests(), 0u);
    const std::size_t registered = host::siblings::registryCount();
    for (const GeometryRow &row : geometryRows) {
        SCOPED_TRACE(row.code);
        const NSUInteger references = [scene.value retainCount];
        const host::ObjectRef first = scene.convertValue(row.code);
        const host::ObjectRef second = scene.convertValue(row.code);
        EXPECT_NE(first.handle(), second.handle());
        EXPECT_EQ(host::siblings::registered(scene.value), nullptr);
        EXPECT_EQ([scene.value retainCount], references);
    }
    EXPECT_EQ(host::siblings::registryCount(), registered);
}

TEST(StructureValue, HandsOverOneReference) {
    StructureScene scene;
    for (const GeometryRow &row : geometryRows) {
        SCOPED_TRACE(row.code);
        scene.value->code = row.code;
        const host::ObjectHandle converted = scene.convertObject(scene.value);
        EXPECT_EQ(scene.host.references(converted), 1);
        const host::ObjectRef owner = host::ObjectRef::adopt(converted);
    }
}

TEST(StructureValue, OfAnotherTypeIsNilThoughItsClassHasAWrapper) {
    StructureScene scene;
    for (const char *name : {"NSValueZKT", "TracedValueZKT", "NSObjectZKT"})
        scene.host.addClass({.name = name});
    scene.value->knowsHooks = true;
    for (const char *code : unknownCodes) {
        SCOPED_TRACE(code);
        EXPECT_EQ(scene.convertValue(code).handle(), nullptr);
    }
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(StructureValue, OfATimeIsNilUnlessSomebodySuppliesTheHook) {
    ValueScene scene;
    const std::byte time[96] = {};
    for (const HookRow &row : hookRows) {
        SCOPED_TRACE(row.code);
        EXPECT_EQ(scene.convertObject([NSValue valueWithBytes:time objCType:row.code]), nullptr);
    }
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(StructureHook, IsAskedForAndThenSentAndItsAnswerIsTheResult) {
    HookScene scene;
    for (const HookRow &row : hookRows) {
        SCOPED_TRACE(row.code);
        scene.host.clearTrace();
        scene.value->code = row.code;
        EXPECT_EQ(scene.convertObject(scene.value), scene.time.handle());
        EXPECT_THAT(scene.host.trace(),
                    ElementsAre("[value respondsToSelector:" + std::string(row.hook) + ']',
                                '[' + std::string("value ") + row.hook + ']'));
    }
    EXPECT_EQ(scene.host.references(scene.time), 1);
}

TEST(StructureHook, IsNotSentToAValueThatDoesNotKnowIt) {
    HookScene scene;
    scene.value->knowsHooks = false;
    for (const HookRow &row : hookRows) {
        SCOPED_TRACE(row.code);
        scene.host.clearTrace();
        EXPECT_EQ(scene.convertValue(row.code).handle(), nullptr);
        EXPECT_THAT(scene.host.trace(),
                    ElementsAre("[value respondsToSelector:" + std::string(row.hook) + ']'));
    }
}

TEST(StructureHook, MayAnswerNil) {
    HookScene scene;
    scene.value->hookAnswer = nullptr;
    for (const HookRow &row : hookRows) {
        SCOPED_TRACE(row.code);
        scene.host.clearTrace();
        EXPECT_EQ(scene.convertValue(row.code).handle(), nullptr);
        EXPECT_THAT(scene.host.trace(),
                    ElementsAre("[value respondsToSelector:" + std::string(row.hook) + ']',
                                '[' + std::string("value ") + row.hook + ']'));
    }
}

TEST(StructureHook, IsAskedForEachTime) {
    HookScene scene;
    for (const HookRow &row : hookRows) {
        SCOPED_TRACE(row.code);
        scene.value->code = row.code;
        scene.value->knowsHooks = false;
        EXPECT_EQ(scene.convertObject(scene.value), nullptr);
        scene.value->knowsHooks = true;
        EXPECT_EQ(scene.convertObject(scene.value), scene.time.handle());
    }
}
