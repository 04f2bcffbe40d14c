// Arrays when the host lacks a service, or something throws on the way.

#include "Caught.h"
#import "CollectionDoubles.h"
#import "OwnObject.h"
#import "ValueScene.h"

#include "host/classes/Inspect.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr const char *create = "RuntimeArrayCreateSingleDimBoundedArray(4, -1) = Array#1";

NSArray *oneAndTwo() {
    return [NSArray arrayWithObjects:[NSNumber numberWithInt:1], [NSNumber numberWithInt:2], nil];
}

// Two insert procedures; each insertion is noted.
std::vector<std::string> insertions;
int requests;

template <char Name>
void insertWith(host::ObjectHandle array, std::int64_t index, host::ObjectHandle value) {
    const host::Host &host = host::Host::current();
    insertions.push_back(std::string{Name} + ' ' + host.name(array) + ' ' + std::to_string(index) +
                         ' ' + host.name(value));
}

void *anotherProcedureEachTime(host::ObjectHandle) {
    return reinterpret_cast<void *>(requests++ % 2 == 0 ? &insertWith<'a'> : &insertWith<'b'>);
}

void *procedureForTheSecondElement(host::ObjectHandle) {
    return requests++ == 1 ? reinterpret_cast<void *>(&insertWith<'b'>) : nullptr;
}

void throwingInsertion(host::ObjectHandle, std::int64_t, host::ObjectHandle) {
    throw std::runtime_error("inserting");
}
void *throwingProcedure(host::ObjectHandle) {
    return reinterpret_cast<void *>(&throwingInsertion);
}

} // namespace

TEST(ArrayWithout, TheServiceThatCreatesItIsNilAndAsksForNothing) {
    ValueScene scene;
    scene.host.services().hide("RuntimeArrayCreateSingleDimBoundedArray");
    const OwnObject<TracedArray> source;
    source->elements = numbers({1});
    EXPECT_EQ(scene.convertObject(source), nullptr);
    EXPECT_THAT(scene.host.trace(), ElementsAre("miss RuntimeArrayCreateSingleDimBoundedArray"));
}

TEST(ArrayWithout, AHostArrayIsNilAndAsksForNothing) {
    ValueScene scene;
    scene.host.services().answerNull("RuntimeArrayCreateSingleDimBoundedArray");
    const OwnObject<TracedArray> source;
    source->elements = numbers({1});
    EXPECT_EQ(scene.convertObject(source), nullptr);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(4, -1) = nil"));
}

TEST(ArrayWithout, TheServiceForInsertionConvertsAndReleasesAllTheSame) {
    ValueScene scene;
    scene.host.services().hide("PluginObjectArrayInsertProc");
    const host::ObjectRef array = scene.convert(oneAndTwo());
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("find RuntimeArrayCreateSingleDimBoundedArray", create,
                            "find IntegerToVariant", "IntegerToVariant(1) = Variant#2",
                            "miss PluginObjectArrayInsertProc", "find REALUnlockObject",
                            "REALUnlockObject(Variant#2)", "IntegerToVariant(2) = Variant#3",
                            "miss PluginObjectArrayInsertProc", "REALUnlockObject(Variant#3)"));
    EXPECT_EQ(host::arrayCount(array), 0u);
    EXPECT_EQ(scene.host.account().liveObjects, 1u);
}

TEST(ArrayWithout, AnInsertProcedureConvertsAndReleasesAllTheSame) {
    ValueScene scene;
    scene.host.services().answerNull("PluginObjectArrayInsertProc");
    const host::ObjectRef array = scene.convert(oneAndTwo());
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(create, "IntegerToVariant(1) = Variant#2",
                            "PluginObjectArrayInsertProc(Array#1) = nil",
                            "REALUnlockObject(Variant#2)", "IntegerToVariant(2) = Variant#3",
                            "PluginObjectArrayInsertProc(Array#1) = nil",
                            "REALUnlockObject(Variant#3)"));
    EXPECT_EQ(host::arrayCount(array), 0u);
}

TEST(ArrayWithout, AProcedureForTheFirstElementKeepsTheIndexOfTheSecond) {
    ValueScene scene;
    insertions.clear();
    requests = 0;
    scene.host.services().replace("PluginObjectArrayInsertProc", procedureForTheSecondElement);
    const host::ObjectRef array = scene.convert(oneAndTwo());
    EXPECT_THAT(insertions, ElementsAre("b Array#1 1 Variant#3"));
}

TEST(ArrayWithout, TheServiceThatReleasesKeepsTheElementsReferences) {
    ValueScene scene;
    scene.host.services().hide("REALUnlockObject");
    {
        const host::ObjectRef array = scene.convert(oneAndTwo());
        EXPECT_EQ(host::arrayCount(array), 2u);
    }
    scene.host.shutDown();
    EXPECT_THAT(scene.host.violations(),
                ElementsAre(StartsWith("Variant#2 leaked, 1 reference never released"),
                            StartsWith("Variant#3 leaked, 1 reference never released")));
}

TEST(ArrayWithout, TheServiceForOneKindOfElementHasNilInItsPlace) {
    ValueScene scene;
    scene.host.services().hide("IntegerToVariant");
    const host::ObjectRef array = scene.convert([NSArray
        arrayWithObjects:[NSNumber numberWithInt:1], [NSNumber numberWithDouble:2.5], nil]);
    const auto elements = host::arrayElements(array);
    ASSERT_EQ(elements.size(), 2u);
    EXPECT_TRUE(elements[0].isNil());
    EXPECT_EQ(elements[1].number(), 2.5);
}

TEST(ArrayInsertion, UsesTheProcedureThatTheHostNamesForEachElement) {
    ValueScene scene;
    insertions.clear();
    requests = 0;
    scene.host.services().replace("PluginObjectArrayInsertProc", anotherProcedureEachTime);
    const host::ObjectRef array =
        scene.convert([NSArray arrayWithObjects:[NSNumber numberWithInt:1], [NSNull null],
                                                [NSNumber numberWithInt:2], nil]);
    EXPECT_THAT(insertions,
                ElementsAre("a Array#1 0 Variant#2", "b Array#1 1 nil", "a Array#1 2 Variant#3"));
}

TEST(ArrayLeft, ByAnEnumerationThatRaisesLeavesNothingBehind) {
    ValueScene scene;
    const OwnObject<TracedArray> source;
    source->elements = numbers({1, 2});
    source->onNext = [](std::size_t position) {
        if (position == 1)
            [NSException raise:@"Refused" format:@"nextObject"];
    };
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertObject(source); }), "Refused: nextObject");
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}

TEST(ArrayLeft, ByAnElementThatRaisesLeavesNothingBehind) {
    ValueScene scene;
    RefusingNumber *const refusing = [[[RefusingNumber alloc] init] autorelease];
    NSArray *const inner = [NSArray arrayWithObjects:@"b", refusing, nil];
    EXPECT_EQ(cocoaExceptionFrom(
                  [&] { scene.convertObject([NSArray arrayWithObjects:@"a", inner, @"c", nil]); }),
              "Refused: objCType");
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
    EXPECT_THAT(scene.host.liveStrings(), IsEmpty());
    EXPECT_EQ(scene.host.services().calls("StringToVariant"), 2u) << "c is not reached";
}

TEST(ArrayLeft, ByAnInsertionThatThrowsLeavesNothingBehind) {
    ValueScene scene;
    scene.host.services().replace("PluginObjectArrayInsertProc", throwingProcedure);
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertObject(oneAndTwo()); }), "inserting");
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}
