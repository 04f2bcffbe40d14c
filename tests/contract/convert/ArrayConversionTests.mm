// Arrays and sets as host arrays.

#import "CollectionDoubles.h"
#import "OwnObject.h"
#import "ValueScene.h"

#include "host/classes/Inspect.h"
#include "host/core/Text.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

constexpr const char *create = "RuntimeArrayCreateSingleDimBoundedArray(4, -1) = Array#1";

/// The elements as text: 1, "a", nil, Array#3.
std::vector<std::string> elementsOf(const host::ObjectRef &array) {
    std::vector<std::string> result;
    for (const host::Value &element : host::arrayElements(array))
        result.push_back(describe(element));
    return result;
}

/// An array in an array, and so on; the innermost is empty.
NSArray *nestedArrays(int depth) {
    NSArray *array = [NSArray array];
    for (int i = 1; i < depth; ++i)
        array = [NSArray arrayWithObject:array];
    return array;
}

} // namespace

TEST(ArrayConversion, OfAnEmptyArrayIsAnEmptyHostArray) {
    ValueScene scene;
    const host::ObjectRef array = scene.convert([NSArray array]);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("find RuntimeArrayCreateSingleDimBoundedArray", create));
    EXPECT_EQ(scene.host.className(array), "Array");
    EXPECT_EQ(host::elementType(array), host::objectElements);
    EXPECT_EQ(host::arrayCount(array), 0u);
}

TEST(ArrayConversion, InsertsElementByElementInOrder) {
    ValueScene scene;
    const OwnObject<TracedArray> source;
    source->elements = numbers({11, 12});
    const host::ObjectRef array = scene.convert(source);
    EXPECT_THAT(
        scene.host.trace(),
        ElementsAre(
            "find RuntimeArrayCreateSingleDimBoundedArray", create, "[array objectEnumerator]",
            "[array nextObject]", "find IntegerToVariant", "IntegerToVariant(11) = Variant#2",
            "find PluginObjectArrayInsertProc", "PluginObjectArrayInsertProc(Array#1) = pointer",
            "ObjectArray.Insert(Array#1, 0, Variant#2)", "find REALUnlockObject",
            "REALUnlockObject(Variant#2)", "[array nextObject]", "IntegerToVariant(12) = Variant#3",
            "PluginObjectArrayInsertProc(Array#1) = pointer",
            "ObjectArray.Insert(Array#1, 1, Variant#3)", "REALUnlockObject(Variant#3)",
            "[array nextObject]"));
    EXPECT_THAT(elementsOf(array), ElementsAre("11", "12"));
}

TEST(ArrayConversion, KeepsThePlacesOfNulls) {
    ValueScene scene;
    const host::ObjectRef array = scene.convert(
        [NSArray arrayWithObjects:[NSNumber numberWithInt:1], [NSNull null], @"a", nil]);
    EXPECT_THAT(elementsOf(array), ElementsAre("1", "nil", "\"a\""));
    EXPECT_THAT(scene.host.calls(), testing::Contains("ObjectArray.Insert(Array#1, 1, nil)"));
    EXPECT_THAT(scene.host.calls(), testing::Not(testing::Contains("REALUnlockObject(nil)")));
}

TEST(ArrayConversion, KeepsThePlacesOfWhatHasNoHostValue) {
    ValueScene scene;
    NSObject *const plain = [[[NSObject alloc] init] autorelease];
    const host::ObjectRef array =
        scene.convert([NSArray arrayWithObjects:plain, @"a", plain, [NSData data], nil]);
    EXPECT_THAT(elementsOf(array), ElementsAre("nil", "\"a\"", "nil", "nil"));
}

TEST(ArrayConversion, EndsAtTheFirstNilOfTheEnumeration) {
    ValueScene scene;
    const OwnObject<TracedArray> source;
    source->elements = numbers({1, 2, 3});
    source->elements[1] = nil;
    EXPECT_THAT(elementsOf(scene.convert(source)), ElementsAre("1"));
}

TEST(ArrayConversion, WithoutAnEnumeratorIsEmpty) {
    ValueScene scene;
    const OwnObject<TracedArray> source;
    source->elements = numbers({1});
    source->hasNoEnumerator = true;
    EXPECT_THAT(elementsOf(scene.convert(source)), IsEmpty());
    EXPECT_THAT(scene.host.calls(), ElementsAre(create, "[array objectEnumerator]"));
}

TEST(ArrayConversion, LeavesArrayAndElementsOneReferenceEach) {
    ValueScene scene;
    const host::ObjectHandle handle =
        scene.convertObject([NSArray arrayWithObjects:@"a", @"b", [NSArray array], nil]);
    EXPECT_EQ(scene.host.references(handle), 1);
    host::ObjectRef array = host::ObjectRef::adopt(handle);
    EXPECT_EQ(scene.host.account().liveObjects, 4u);
    EXPECT_EQ(scene.host.services().calls("REALUnlockObject"), 3u);
    array.drop();
    EXPECT_EQ(scene.host.account().liveObjects, 0u);
    EXPECT_EQ(scene.host.account().liveStrings, 0u);
}

TEST(ArrayConversion, ConvertsAnObjectAsOftenAsItIsThere) {
    ValueScene scene;
    NSString *const element = @"a";
    EXPECT_THAT(elementsOf(scene.convert([NSArray arrayWithObjects:element, element, nil])),
                ElementsAre("\"a\"", "\"a\""));
    EXPECT_EQ(scene.host.services().calls("StringToVariant"), 2u);
}

TEST(ArrayConversion, TakesMutableArraysToo) {
    ValueScene scene;
    NSMutableArray *const source = [NSMutableArray arrayWithObject:@"a"];
    [source addObject:@"b"];
    EXPECT_THAT(elementsOf(scene.convert(source)), ElementsAre("\"a\"", "\"b\""));
}

TEST(ArrayConversion, NestsTwoHundredDeep) {
    constexpr int depth = 200;
    ValueScene scene;
    host::ObjectRef array = scene.convert(nestedArrays(depth));
    for (int i = 1; i < depth; ++i) {
        const auto elements = host::arrayElements(array);
        ASSERT_EQ(elements.size(), 1u) << i;
        array = elements[0].object();
    }
    EXPECT_EQ(host::arrayCount(array), 0u);
}

TEST(ArrayConversion, PutsAnInnerArrayBetweenItsNeighbours) {
    ValueScene scene;
    NSArray *const inner = [NSArray arrayWithObjects:@"b", @"c", nil];
    const host::ObjectRef array = scene.convert([NSArray arrayWithObjects:@"a", inner, @"d", nil]);
    const auto elements = host::arrayElements(array);
    ASSERT_EQ(elements.size(), 3u);
    EXPECT_EQ(describe(elements[0]), "\"a\"");
    EXPECT_THAT(elementsOf(elements[1].object()), ElementsAre("\"b\"", "\"c\""));
    EXPECT_EQ(describe(elements[2]), "\"d\"");
}

TEST(ArrayConversion, ReachesFarIndexes) {
    constexpr int count = 70'000;
    ValueScene scene({.tracing = false});
    NSMutableArray *const source = [NSMutableArray array];
    for (int i = 0; i < count; ++i)
        [source addObject:[NSNumber numberWithInt:i]];
    const auto elements = host::arrayElements(scene.convert(source));
    ASSERT_EQ(elements.size(), std::size_t{count});
    for (int i = 0; i < count; ++i)
        ASSERT_EQ(elements[static_cast<std::size_t>(i)].integer(), i);
}

TEST(SetConversion, IsAnArrayInTheOrderOfItsObjects) {
    ValueScene scene;
    const OwnObject<TracedArray> objects;
    objects->elements = numbers({3, 1, 2});
    const OwnObject<TracedSet> set;
    set->objects = objects;
    const host::ObjectRef array = scene.convert(set);
    EXPECT_THAT(elementsOf(array), ElementsAre("3", "1", "2"));
    std::vector<std::string> messages;
    for (const std::string &line : scene.host.calls())
        if (line.starts_with('['))
            messages.push_back(line);
    EXPECT_THAT(messages,
                ElementsAre("[set allObjects]", "[array objectEnumerator]", "[array nextObject]",
                            "[array nextObject]", "[array nextObject]", "[array nextObject]"));
}

TEST(SetConversion, OfFoundationsSetsHasTheOrderOfTheirObjects) {
    ValueScene scene;
    NSMutableSet *const set = [NSMutableSet set];
    for (int i = 0; i < 40; ++i)
        [set addObject:[NSString stringWithFormat:@"element %d", i * i]];
    std::vector<std::string> expected;
    expected.reserve([set count]);
    for (NSUInteger i = 0; i < [set count]; ++i)
        expected.push_back(host::inQuotes([[[set allObjects] objectAtIndex:i] UTF8String]));
    EXPECT_THAT(elementsOf(scene.convert(set)), ElementsAreArray(expected));
}

TEST(SetConversion, OfAnEmptySetIsAnEmptyArray) {
    ValueScene scene;
    const host::ObjectRef array = scene.convert([NSSet set]);
    EXPECT_THAT(scene.host.calls(), ElementsAre(create));
    EXPECT_EQ(host::arrayCount(array), 0u);
}

TEST(SetConversion, WithoutObjectsIsAnEmptyArray) {
    ValueScene scene;
    const OwnObject<TracedSet> set;
    const host::ObjectRef array = scene.convert(set);
    EXPECT_EQ(host::arrayCount(array), 0u);
}

TEST(SetConversion, KeepsThePlacesOfNulls) {
    ValueScene scene;
    const OwnObject<TracedSet> set;
    set->objects = [NSArray arrayWithObjects:[NSNull null], @"a", nil];
    EXPECT_THAT(elementsOf(scene.convert(set)), ElementsAre("nil", "\"a\""));
}
