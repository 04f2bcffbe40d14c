// Dictionaries when the host lacks something, or something throws on the way.

#import "DictionaryScene.h"
#import "OwnObject.h"

#include "Caught.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr const char *made = R"(PluginNewInstance("Dictionary") = Dictionary#1)";

NSNumber *number(int integer) {
    return [NSNumber numberWithInt:integer];
}

NSDictionary *oneEntry() {
    return [NSDictionary dictionaryWithObject:number(1) forKey:number(2)];
}

/// A traced dictionary over the keys 1 and 2, whose values are the keys or what the test says.
struct TwoEntries {
    TwoEntries() {
        keys->elements = numbers({1, 2});
        dictionary->keys = keys;
        dictionary->valueFor = [](id key) { return key; };
    }
    operator id() const { return dictionary; }

    OwnObject<TracedArray> keys;
    OwnObject<TracedDictionary> dictionary;
};

void throwingSetter(host::ObjectHandle, host::ObjectHandle, host::ObjectHandle) {
    throw std::runtime_error("setting");
}
void *loadThrowingSetter(host::ObjectHandle, const char *) {
    return reinterpret_cast<void *>(&throwingSetter);
}

} // namespace

TEST(DictionaryWithout, ItsClassInTheHostIsNilAndAsksForNothing) {
    DictionaryScene scene;
    scene.host.hideClass("Dictionary");
    EXPECT_EQ(scene.convertObject(TwoEntries()), nullptr);
    EXPECT_THAT(scene.host.calls(), ElementsAre(R"(PluginNewInstance("Dictionary") = nil)"));
}

TEST(DictionaryWithout, ItsSetterConvertsAndReleasesAllTheSame) {
    DictionaryScene scene;
    scene.host.hideMethod(setterDeclaration);
    const host::ObjectRef dictionary = scene.convert(oneEntry());
    EXPECT_THAT(scene.host.calls(),
                ElementsAre(made, "IntegerToVariant(2) = Variant#2",
                            "IntegerToVariant(1) = Variant#3",
                            request("Dictionary#1", setterDeclaration, "nil"),
                            request("Dictionary#1", getterDeclaration),
                            request("Dictionary#1", keyGetterDeclaration),
                            "REALUnlockObject(Variant#2)", "REALUnlockObject(Variant#3)"));
    EXPECT_THAT(entriesOf(dictionary), IsEmpty());
}

TEST(DictionaryWithout, ItsSetterHasNoUseForThatOfAnEarlierDictionary) {
    DictionaryScene scene;
    const host::ObjectRef before = scene.convert(oneEntry());
    scene.host.hideMethod(setterDeclaration);
    EXPECT_THAT(entriesOf(scene.convert(oneEntry())), IsEmpty());
    scene.host.showMethod(setterDeclaration);
    EXPECT_THAT(entriesOf(scene.convert(oneEntry())), ElementsAre("2: 1"));
}

TEST(DictionaryWithout, ItsGettersIsFilledAllTheSame) {
    DictionaryScene scene;
    scene.host.hideMethod(getterDeclaration);
    scene.host.hideMethod(keyGetterDeclaration);
    EXPECT_THAT(entriesOf(scene.convert(TwoEntries())), ElementsAre("1: 1", "2: 2"));
}

TEST(DictionaryInside, IsNilInItsPlaceWhenTheHostRefusesTheInstance) {
    DictionaryScene scene;
    const TwoEntries outer;
    outer.dictionary->valueFor = [&](id key) -> id {
        if ([key intValue] == 2)
            return key;
        scene.host.hideClass("Dictionary");
        return oneEntry();
    };
    EXPECT_THAT(entriesOf(scene.convert(outer)), ElementsAre("1: nil", "2: 2"));
}

TEST(DictionaryLeft, ByASetterThatThrowsLeavesNothingBehind) {
    DictionaryScene scene;
    scene.host.services().replace("REALLoadObjectMethod", loadThrowingSetter);
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertObject(oneEntry()); }), "setting");
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}

TEST(DictionaryLeft, ByKeysThatBecomeFewerMeanwhileLeavesNothingBehind) {
    DictionaryScene scene;
    NSMutableArray *const keys = [NSMutableArray arrayWithObjects:number(1), number(2), nil];
    const OwnObject<TracedDictionary> source;
    source->keys = keys;
    source->valueFor = [&](id key) {
        [keys removeLastObject];
        return key;
    };
    EXPECT_THAT(cocoaExceptionFrom([&] { scene.convertObject(source); }).value_or(""),
                StartsWith("NSRangeException"));
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}
