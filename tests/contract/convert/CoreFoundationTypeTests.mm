// Core Foundation objects: which are taken for one, and the host class that each type has.

#include "Caught.h"
#include "DispatchScene.h"
#import "ShapedObject.h"
#include "TypeIdentifierSpy.h"

#include <CoreText/CoreText.h>
#include <gmock/gmock.h>

#include <limits>

using testing::ElementsAre;
using testing::IsEmpty;

@interface RarerException : NSException
@end
@implementation RarerException
@end

namespace {

struct TypeRow {
    CFTypeID (*identifier)();
    const char *hostClass;
};

const TypeRow typeRows[] = {
    {CFURLGetTypeID, "CFURLZKT"},
    {CFDictionaryGetTypeID, "CFDictionaryZKT"},
    {CFStringGetTypeID, "CFStringZKT"},
    {CFNumberGetTypeID, "CFNumberZKT"},
    {CFArrayGetTypeID, "CFArrayZKT"},
    {CFBooleanGetTypeID, "CFBooleanZKT"},
    {CFDataGetTypeID, "CFBinaryDataZKT"},
    {CFCharacterSetGetTypeID, "CFCharacterSetZKT"},
    {CFBundleGetTypeID, "CFBundleZKT"},
    {CFSetGetTypeID, "CFSetZKT"},
    {CFBagGetTypeID, "CFBagZKT"},
    {CFUUIDGetTypeID, "CFUUIDZKT"},
    {CFTimeZoneGetTypeID, "CFTimeZoneZKT"},
    {CFDateGetTypeID, "CFDateZKT"},
    {CFAttributedStringGetTypeID, "CFAttributedStringZKT"},
    {CFErrorGetTypeID, "CFErrorZKT"},
    {CTFontGetTypeID, "CTFontZKT"},
    {CTFontCollectionGetTypeID, "CTFontCollectionZKT"},
    {CTFrameGetTypeID, "CTFrameZKT"},
    {CTFramesetterGetTypeID, "CTFramesetterZKT"},
    {CTGlyphInfoGetTypeID, "CTGlyphInfoZKT"},
    {CTLineGetTypeID, "CTLineZKT"},
    {CTParagraphStyleGetTypeID, "CTParagraphStyleZKT"},
    {CTRunGetTypeID, "CTRunZKT"},
    {CTTypesetterGetTypeID, "CTTypesetterZKT"},
    {CTRunDelegateGetTypeID, "CTRunDelegateZKT"},
};

// No type of the table's.
constexpr CFTypeID unlisted = 0x7FFFFFFF;

struct CoreFoundationTypes : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;

    void knowAll() {
        for (const TypeRow &row : typeRows)
            scene.knowCoreFoundation(row.hostClass);
        scene.knowCoreFoundation("CFObjectZKT");
        scene.know("ShapedObjectZKT");
    }
    std::string classOf(id object) { return host.className(scene.convert(object)); }
    std::string classOfTyped(std::vector<CFTypeID> types) {
        const Typed object(std::move(types));
        return classOf(object);
    }

    // For each two neighbours from the first one on, a type that both have.
    void expectFirstOfTwoWins(std::size_t first) {
        knowAll();
        TypeIdentifierSpy spy;
        for (std::size_t row = first; row + 1 < std::size(typeRows); row += 2)
            spy.answer(typeRows[row + 1].identifier, typeRows[row].identifier());
        for (std::size_t row = first; row + 1 < std::size(typeRows); row += 2)
            EXPECT_EQ(classOfTyped({typeRows[row].identifier()}), typeRows[row].hostClass);
    }
};

} // namespace

TEST_F(CoreFoundationTypes, HaveTheirHostClass) {
    knowAll();
    for (const TypeRow &row : typeRows) {
        SCOPED_TRACE(row.hostClass);
        const Typed object({row.identifier()});
        const host::ObjectRef made = scene.convert(object);
        EXPECT_EQ(host.className(made), row.hostClass);
        EXPECT_EQ(scene.wrapped(made), (const void *)object);
    }
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST_F(CoreFoundationTypes, TheFirstOfTwoEqualOnesWins) {
    expectFirstOfTwoWins(0);
}

TEST_F(CoreFoundationTypes, TheFirstOfTwoEqualOnesWinsForTheOtherNeighboursToo) {
    expectFirstOfTwoWins(1);
}

TEST_F(CoreFoundationTypes, AnyOtherIsAnObject) {
    knowAll();
    EXPECT_EQ(classOfTyped({unlisted}), "CFObjectZKT");
    EXPECT_EQ(classOfTyped({1}), "CFObjectZKT");
}

TEST_F(CoreFoundationTypes, AnyOtherIsAskedForTwiceWhenTheHostDoesNotKnowIt) {
    scene.know("ShapedObjectZKT");
    const Typed object({unlisted});
    EXPECT_EQ(scene.convertRaw(object), nullptr);
    EXPECT_THAT(scene.requests(), ElementsAre(asks("CFObjectZKT"), asks("CFObjectZKT")));
}

TEST_F(CoreFoundationTypes, ARunWithoutItsHostClassIsAnObject) {
    scene.knowCoreFoundation("CFObjectZKT");
    const Typed object({CTRunGetTypeID()});
    const host::ObjectRef made = scene.convert(object);
    EXPECT_EQ(host.className(made), "CFObjectZKT");
    EXPECT_EQ(scene.wrapped(made), (const void *)object);
}

TEST_F(CoreFoundationTypes, AreComparedByWhatCoreFoundationSaysNotByTheFirstAnswer) {
    knowAll();
    EXPECT_EQ(classOfTyped({CFBagGetTypeID(), CTRunGetTypeID()}), "CTRunZKT");
}

// Core Foundation asks the object in its turn, and not whether it knows the question.
TEST_F(CoreFoundationTypes, AreAskedForBeforeCoreFoundationAsks) {
    knowAll();
    const Typed object({CTRunGetTypeID()});
    const host::ObjectRef made = scene.convert(object);
    const std::vector<std::string> calls = host.calls();
    ASSERT_GE(calls.size(), 5u);
    EXPECT_THAT(std::vector(calls.end() - 5, calls.end()),
                ElementsAre("[respondsToSelector:_cfTypeID]", "[_cfTypeID]", "[_cfTypeID]",
                            asks("CTRunZKT", 1), "[retain]"));
}

TEST_F(CoreFoundationTypes, MatterOnlyWhenTheObjectTellsOneAboveZeroIn32Bits) {
    knowAll();
    const struct {
        CFTypeID type;
        const char *hostClass;
    } rows[] = {
        {0, "ShapedObjectZKT"},
        {1, "CFObjectZKT"},
        {0x7FFFFFFF, "CFObjectZKT"},
        {0x80000000, "ShapedObjectZKT"},
        {0xFFFFFFFF, "ShapedObjectZKT"},
        {0x100000000, "ShapedObjectZKT"},
        {0x100000001, "CFObjectZKT"},
        {0x17FFFFFFF, "CFObjectZKT"},
        {0x180000000, "ShapedObjectZKT"},
        {0xFFFFFFFF00000000, "ShapedObjectZKT"},
        {0xFFFFFFFF00000001, "CFObjectZKT"},
        {0x8000000000000000, "ShapedObjectZKT"},
        {std::numeric_limits<CFTypeID>::max(), "ShapedObjectZKT"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(classOfTyped({row.type}), row.hostClass);
    }
}

// What passes as a type in 32 bits is compared in full.
TEST_F(CoreFoundationTypes, AreComparedInFull) {
    knowAll();
    EXPECT_EQ(classOfTyped({CTRunGetTypeID() + 0x100000000}), "CFObjectZKT");
    EXPECT_EQ(classOfTyped({1, 0}), "CFObjectZKT");
}

TEST_F(CoreFoundationTypes, AreNotAskedOfAnObjectThatDeniesTheMessage) {
    knowAll();
    const Shaped object;
    EXPECT_EQ(classOf(object), "ShapedObjectZKT");
    EXPECT_EQ(object->typesAsked, 0u);
}

TEST_F(CoreFoundationTypes, AreAskedOnceOfAnObjectThatHasNone) {
    knowAll();
    const Typed object({0});
    EXPECT_EQ(classOf(object), "ShapedObjectZKT");
    EXPECT_EQ(object->typesAsked, 1u);
}

TEST_F(CoreFoundationTypes, ANSExceptionFromTheAnswerLeadsToTheClassNameWalk) {
    knowAll();
    const Typed object({CTRunGetTypeID()});
    object->onMessage = refusingTo("_cfTypeID");
    const host::ObjectRef made = scene.convert(object);
    EXPECT_EQ(host.className(made), "ShapedObjectZKT");
    EXPECT_EQ(scene.wrapped(made), (const void *)object);
    EXPECT_FALSE(host.hasPendingException());
}

TEST_F(CoreFoundationTypes, ANSExceptionIsDroppedWithoutAWord) {
    knowAll();
    const Typed object({CTRunGetTypeID()});
    object->onMessage = refusingTo("_cfTypeID");
    testing::internal::CaptureStderr();
    {
        EXPECT_EQ(classOf(object), "ShapedObjectZKT");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(host::siblings::makeCount(), 0u);
    EXPECT_THAT(host.strayExceptions(), IsEmpty());
}

TEST_F(CoreFoundationTypes, AnExceptionOfASubclassIsDroppedToo) {
    knowAll();
    const Typed object({CTRunGetTypeID()});
    object->onMessage = [](std::string_view message) {
        if (message == "_cfTypeID")
            [[RarerException exceptionWithName:@"Refused" reason:@"no" userInfo:nil] raise];
    };
    EXPECT_EQ(classOf(object), "ShapedObjectZKT");
}

TEST_F(CoreFoundationTypes, AThrownObjectOfAnotherKindPasses) {
    knowAll();
    const Typed object({CTRunGetTypeID()});
    NSObject *const thrown = [[[NSObject alloc] init] autorelease];
    object->onMessage = [&](std::string_view message) {
        if (message == "_cfTypeID")
            @throw thrown;
    };
    id caught = nil;
    @try {
        scene.convertRaw(object);
    } @catch (id any) {
        caught = any;
    }
    EXPECT_EQ(caught, thrown);
    EXPECT_THAT(host.calls(), testing::Not(testing::Contains("[class]")));
}

TEST_F(CoreFoundationTypes, ANSExceptionFromCoreFoundationLeadsToTheClassNameWalk) {
    knowAll();
    const Typed object({CTRunGetTypeID()});
    object->onMessage = [&](std::string_view message) {
        if (message == "_cfTypeID" && object->typesAsked == 1)
            [NSException raise:@"Refused" format:@"the second time"];
    };
    EXPECT_EQ(classOf(object), "ShapedObjectZKT");
}

TEST_F(CoreFoundationTypes, AnExceptionFromTheQuestionItselfPassesOut) {
    knowAll();
    const Typed object({CTRunGetTypeID()});
    object->onMessage = refusingTo("respondsToSelector:_cfTypeID");
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(object); }),
              "Refused: respondsToSelector:_cfTypeID");
}

TEST_F(CoreFoundationTypes, ANSExceptionInTheWalkAfterwardsPassesOut) {
    knowAll();
    const Typed object({CTRunGetTypeID()});
    object->onMessage = [](std::string_view message) {
        if (message == "_cfTypeID" || message == "class")
            [NSException raise:@"Refused" format:@"%s", std::string(message).c_str()];
    };
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(object); }), "Refused: class");
}
