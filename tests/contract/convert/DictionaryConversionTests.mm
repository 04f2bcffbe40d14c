// Dictionaries as the host's: keys, values and their order.

#import "DictionaryScene.h"
#import "OwnObject.h"

#include "host/core/Text.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

NSNumber *number(int integer) {
    return [NSNumber numberWithInt:integer];
}

/// A traced dictionary over keys of its own, whose values are twice the keys.
struct TracedEntries {
    explicit TracedEntries(std::vector<id> elements) {
        keys->elements = std::move(elements);
        dictionary->keys = keys;
        dictionary->valueFor = [](id key) { return number(2 * [key intValue]); };
    }

    OwnObject<TracedArray> keys;
    OwnObject<TracedDictionary> dictionary;
};

/// A dictionary as the value of another's only key, and so on; the innermost is empty.
NSDictionary *nestedDictionaries(int depth) {
    NSDictionary *dictionary = [NSDictionary dictionary];
    for (int i = 1; i < depth; ++i)
        dictionary = [NSDictionary dictionaryWithObject:dictionary forKey:@"inner"];
    return dictionary;
}

} // namespace

TEST(DictionaryConversion, OfNilIsNil) {
    DictionaryScene scene;
    EXPECT_EQ(scene.convertEntries(nil), nullptr);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
}

TEST(DictionaryConversion, OfAnEmptyDictionaryIsAnEmptyHostDictionary) {
    DictionaryScene scene;
    const host::ObjectRef dictionary = scene.convert([NSDictionary dictionary]);
    EXPECT_THAT(
        scene.host.trace(),
        ElementsAre("find PluginNewInstance", R"(PluginNewInstance("Dictionary") = Dictionary#1)"));
    EXPECT_THAT(entriesOf(dictionary), IsEmpty());
}

TEST(DictionaryConversion, SetsEntryByEntryInTheOrderOfTheKeys) {
    DictionaryScene scene;
    const TracedEntries entries(numbers({3, 1}));
    const host::ObjectRef dictionary = scene.convert(entries.dictionary);
    EXPECT_THAT(
        scene.host.trace(),
        ElementsAre("find PluginNewInstance", R"(PluginNewInstance("Dictionary") = Dictionary#1)",
                    "[dictionary allKeys]", "[array count]", "[array objectAtIndex:0]",
                    "[dictionary objectForKey:3]", "find IntegerToVariant",
                    "IntegerToVariant(3) = Variant#2", "IntegerToVariant(6) = Variant#3",
                    "find REALLoadObjectMethod", request("Dictionary#1", setterDeclaration),
                    request("Dictionary#1", getterDeclaration),
                    request("Dictionary#1", keyGetterDeclaration),
                    "Dictionary.Value(Dictionary#1, Variant#2, Variant#3)", "find REALUnlockObject",
                    "REALUnlockObject(Variant#2)", "REALUnlockObject(Variant#3)",
                    "[array objectAtIndex:1]", "[dictionary objectForKey:1]",
                    "IntegerToVariant(1) = Variant#4", "IntegerToVariant(2) = Variant#5",
                    "Dictionary.Value(Dictionary#1, Variant#4, Variant#5)",
                    "REALUnlockObject(Variant#4)", "REALUnlockObject(Variant#5)"));
    EXPECT_THAT(entriesOf(dictionary), ElementsAre("3: 6", "1: 2"));
}

TEST(DictionaryConversion, IsTheSameWhetherCalledDirectlyOrForAnObject) {
    DictionaryScene scene;
    NSDictionary *const source = [NSDictionary dictionaryWithObject:@"value" forKey:@"key"];
    EXPECT_THAT(entriesOf(scene.convertDictionary(source)), ElementsAre(R"("key": "value")"));
    EXPECT_THAT(entriesOf(scene.convert(source)), ElementsAre(R"("key": "value")"));
}

TEST(DictionaryConversion, TakesMutableDictionariesToo) {
    DictionaryScene scene;
    NSMutableDictionary *const source = [NSMutableDictionary dictionary];
    [source setObject:@"value" forKey:@"key"];
    EXPECT_THAT(entriesOf(scene.convert(source)), ElementsAre(R"("key": "value")"));
}

TEST(DictionaryConversion, OfFoundationsDictionariesHasTheOrderOfTheirKeys) {
    DictionaryScene scene;
    NSMutableDictionary *const source = [NSMutableDictionary dictionary];
    for (int i = 0; i < 40; ++i)
        [source setObject:number(i) forKey:[NSString stringWithFormat:@"key %d", i * i]];
    std::vector<std::string> expected;
    for (NSUInteger i = 0; i < [source count]; ++i) {
        NSString *const key = [[source allKeys] objectAtIndex:i];
        expected.push_back(host::inQuotes([key UTF8String]) + ": " +
                           std::to_string([[source objectForKey:key] intValue]));
    }
    EXPECT_THAT(entriesOf(scene.convert(source)), ElementsAreArray(expected));
}

TEST(DictionaryConversion, WithoutKeysIsAnEmptyHostDictionary) {
    DictionaryScene scene;
    const OwnObject<TracedDictionary> source;
    const host::ObjectRef dictionary = scene.convert(source);
    EXPECT_THAT(scene.host.calls(), ElementsAre(R"(PluginNewInstance("Dictionary") = Dictionary#1)",
                                                "[dictionary allKeys]"));
    EXPECT_THAT(entriesOf(dictionary), IsEmpty());
}

TEST(DictionaryConversion, HandsOverOneReferenceAndLeavesItsEntriesOneEach) {
    DictionaryScene scene;
    const host::ObjectHandle handle =
        scene.convertObject([NSDictionary dictionaryWithObject:@"value" forKey:@"key"]);
    EXPECT_EQ(scene.host.references(handle), 1);
    host::ObjectRef dictionary = host::ObjectRef::adopt(handle);
    EXPECT_EQ(scene.host.account().liveObjects, 3u);
    EXPECT_EQ(scene.host.services().calls("REALUnlockObject"), 2u);
    dictionary.drop();
    EXPECT_EQ(scene.host.account().liveObjects, 0u);
    EXPECT_EQ(scene.host.account().liveStrings, 0u);
}

TEST(DictionaryEntry, WhoseValueHasNoHostValueIsNil) {
    DictionaryScene scene;
    const TracedEntries entries(numbers({1, 2, 3}));
    const OwnObject<NSObject> plain;
    entries.dictionary->valueFor = [&](id key) -> id {
        switch ([key intValue]) {
        case 1:
            return [NSNull null];
        case 2:
            return plain;
        default:
            return nil;
        }
    };
    EXPECT_THAT(entriesOf(scene.convert(entries.dictionary)),
                ElementsAre("1: nil", "2: nil", "3: nil"));
    EXPECT_THAT(scene.host.calls(),
                testing::Contains("Dictionary.Value(Dictionary#1, Variant#2, nil)"));
    EXPECT_EQ(scene.host.services().calls("REALUnlockObject"), 3u) << "of the keys";
}

TEST(DictionaryEntry, WhoseKeyHasNoHostValueHasTheKeyNil) {
    DictionaryScene scene;
    NSObject *const plain = [[[NSObject alloc] init] autorelease];
    for (const id key : std::initializer_list<id>{[NSNull null], plain}) {
        const TracedEntries entries({key});
        entries.dictionary->valueFor = [](id) { return number(7); };
        EXPECT_THAT(entriesOf(scene.convert(entries.dictionary)), ElementsAre("nil: 7"));
    }
    EXPECT_EQ(scene.host.services().calls("REALUnlockObject"), 2u) << "of the values";
}

TEST(DictionaryEntry, MayBeNilAltogether) {
    DictionaryScene scene;
    const TracedEntries entries({[NSNull null]});
    entries.dictionary->valueFor = [](id) { return [NSNull null]; };
    EXPECT_THAT(entriesOf(scene.convert(entries.dictionary)), ElementsAre("nil: nil"));
    EXPECT_EQ(scene.host.services().lookups("REALUnlockObject"), 0u);
}

TEST(DictionaryEntry, IsSetAgainWhenTheHostTakesTwoKeysForOne) {
    DictionaryScene scene;
    const TracedEntries entries({number(1), [NSNumber numberWithDouble:1.0]});
    int values = 0;
    entries.dictionary->valueFor = [&](id) { return number(++values); };
    EXPECT_THAT(entriesOf(scene.convert(entries.dictionary)), ElementsAre("1: 2"));
}

TEST(DictionaryEntry, MayHaveAnyKindOfKey) {
    DictionaryScene scene;
    const TracedEntries entries({@"text", number(1), [NSArray array], [NSDictionary dictionary]});
    entries.dictionary->valueFor = [](id) { return @"v"; };
    EXPECT_THAT(entriesOf(scene.convert(entries.dictionary)),
                ElementsAre(R"("text": "v")", R"(1: "v")", testing::MatchesRegex(R"(Array#.: "v")"),
                            testing::MatchesRegex(R"(Dictionary#..?: "v")")));
}

TEST(DictionaryThatGrowsMeanwhile, IsConvertedAsFarAsItsKeysWereCounted) {
    DictionaryScene scene;
    const TracedEntries entries(numbers({1, 2}));
    entries.dictionary->valueFor = [&](id key) {
        entries.keys->elements.push_back(number(100 + [key intValue]));
        return key;
    };
    EXPECT_THAT(entriesOf(scene.convert(entries.dictionary)), ElementsAre("1: 1", "2: 2"));
    const auto calls = scene.host.calls();
    EXPECT_EQ(std::ranges::count(calls, "[array count]"), 1);
    EXPECT_EQ(std::ranges::count(calls, "[dictionary allKeys]"), 1);
}

TEST(DictionaryThatGrowsMeanwhile, StaysAsItsKeysWere) {
    DictionaryScene scene;
    NSMutableDictionary *const contents = [NSMutableDictionary dictionary];
    [contents setObject:@"one" forKey:@"1"];
    [contents setObject:@"two" forKey:@"2"];
    const OwnObject<TracedDictionary> source;
    source->keys = [contents allKeys];
    source->valueFor = [&](id key) {
        [contents setObject:@"more" forKey:[key stringByAppendingString:@"+"]];
        return [contents objectForKey:key];
    };
    EXPECT_THAT(entriesOf(scene.convert(source)),
                testing::UnorderedElementsAre(R"("1": "one")", R"("2": "two")"));
}

TEST(DictionaryThatLosesAValueMeanwhile, HasNilInItsPlace) {
    DictionaryScene scene;
    NSMutableDictionary *const contents = [NSMutableDictionary dictionary];
    [contents setObject:@"one" forKey:number(1)];
    [contents setObject:@"two" forKey:number(2)];
    const TracedEntries entries(numbers({1, 2}));
    entries.dictionary->valueFor = [&](id key) {
        id const value = [contents objectForKey:key];
        [contents removeAllObjects];
        return value;
    };
    EXPECT_THAT(entriesOf(scene.convert(entries.dictionary)), ElementsAre("1: \"one\"", "2: nil"));
}

TEST(NestedDictionary, LeavesTheOuterOneAllItsEntries) {
    DictionaryScene scene;
    NSDictionary *const inner = [NSDictionary dictionaryWithObject:@"x" forKey:@"y"];
    const TracedEntries entries(numbers({1, 2, 3}));
    entries.dictionary->valueFor = [&](id key) -> id { return [key intValue] == 2 ? inner : key; };
    const host::ObjectRef outer = scene.convert(entries.dictionary);
    const auto converted = host::dictionaryEntries(outer);
    ASSERT_EQ(converted.size(), 3u);
    EXPECT_EQ(converted[0].second.integer(), 1);
    EXPECT_THAT(entriesOf(converted[1].second.object()), ElementsAre(R"("y": "x")"));
    EXPECT_EQ(converted[2].second.integer(), 3);
}

TEST(NestedDictionary, NestsTwoHundredDeep) {
    constexpr int depth = 200;
    DictionaryScene scene;
    host::ObjectRef dictionary = scene.convert(nestedDictionaries(depth));
    for (int i = 1; i < depth; ++i) {
        const auto entries = host::dictionaryEntries(dictionary);
        ASSERT_EQ(entries.size(), 1u) << i;
        EXPECT_EQ(entries[0].first.text(), "inner");
        dictionary = entries[0].second.object();
    }
    EXPECT_THAT(entriesOf(dictionary), IsEmpty());
}
