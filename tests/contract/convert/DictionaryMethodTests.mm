// The three methods of the host's Dictionary: when they are looked up, and when again.

#import "DictionaryScene.h"
#import "OwnObject.h"

#include "Caught.h"

#include "host/core/Core.h"
#include "host/memory/Heap.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

NSNumber *number(int integer) {
    return [NSNumber numberWithInt:integer];
}

NSDictionary *oneEntry() {
    return [NSDictionary dictionaryWithObject:number(1) forKey:number(2)];
}

/// A dictionary with these values, in order.
struct Values {
    explicit Values(std::vector<id> values) : values_(std::move(values)) {
        for (std::size_t i = 0; i < values_.size(); ++i)
            keys->elements.push_back(number(static_cast<int>(i)));
        dictionary->keys = keys;
        dictionary->valueFor = [this](id key) {
            return values_[static_cast<std::size_t>([key intValue])];
        };
    }
    operator id() const { return dictionary; }

    OwnObject<TracedArray> keys;
    OwnObject<TracedDictionary> dictionary;

private:
    std::vector<id> values_;
};

/// The host's only Dictionary: what it hands out as a new instance, with a reference each time.
host::ObjectHandle onlyDictionary;

host::ObjectHandle handOutTheOnlyDictionary(const char *) {
    host::Core::current().heap.lock(onlyDictionary);
    return onlyDictionary;
}

/// A host that makes one Dictionary and hands it out again and again, so that it alone cannot tell
/// one conversion from the next.
struct OneDictionaryScene : DictionaryScene {
    OneDictionaryScene() : only(host.newInstance("Dictionary")) {
        onlyDictionary = only;
        host.services().replace("PluginNewInstance", handOutTheOnlyDictionary);
        host.clearTrace();
    }

    host::ObjectRef only;
};

} // namespace

TEST(DictionaryMethods, AreLookedUpOncePerDictionary) {
    DictionaryScene scene;
    scene.convert(Values({number(1), number(2), number(3)}));
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
}

TEST(DictionaryMethods, AreLookedUpAfreshForTheNextDictionary) {
    DictionaryScene scene;
    const host::ObjectRef first = scene.convert(oneEntry());
    const host::ObjectRef second = scene.convert(oneEntry());
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key",
                            "Dictionary#4 set", "Dictionary#4 get", "Dictionary#4 key"));
}

TEST(DictionaryMethods, AreLookedUpAfreshThoughTheInstanceIsTheSame) {
    OneDictionaryScene scene;
    scene.convert(oneEntry());
    scene.convert(oneEntry());
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key",
                            "Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
}

TEST(DictionaryMethods, AreNotLookedUpForAnEmptyDictionary) {
    DictionaryScene scene;
    scene.convert([NSDictionary dictionary]);
    EXPECT_THAT(scene.methodRequests(), IsEmpty());
}

TEST(DictionaryMethods, AreLookedUpByTheInnerDictionaryAndThenByTheOuterOne) {
    DictionaryScene scene;
    const host::ObjectRef outer = scene.convert(Values({oneEntry(), number(1)}));
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#3 set", "Dictionary#3 get", "Dictionary#3 key",
                            "Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
}

TEST(DictionaryMethods, AreLookedUpAgainAfterEachInnerDictionary) {
    DictionaryScene scene;
    const host::ObjectRef outer =
        scene.convert(Values({number(1), oneEntry(), number(1), oneEntry()}));
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key",
                            "Dictionary#5 set", "Dictionary#5 get", "Dictionary#5 key",
                            "Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key",
                            "Dictionary#11 set", "Dictionary#11 get", "Dictionary#11 key",
                            "Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
    EXPECT_EQ(host::dictionaryEntries(outer).size(), 4u);
}

TEST(DictionaryMethods, AreLookedUpAgainAfterAnEmptyInnerDictionary) {
    DictionaryScene scene;
    const host::ObjectRef outer =
        scene.convert(Values({number(1), [NSDictionary dictionary], number(1)}));
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key",
                            "Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
    EXPECT_EQ(host::dictionaryEntries(outer).size(), 3u);
}

TEST(DictionaryMethods, AreKeptThroughAnInnerDictionaryWithoutKeys) {
    DictionaryScene scene;
    const OwnObject<TracedDictionary> keyless;
    const host::ObjectRef outer = scene.convert(Values({number(1), keyless, number(1)}));
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
    EXPECT_EQ(host::dictionaryEntries(outer).size(), 3u);
}

TEST(DictionaryMethods, AreLookedUpAgainAfterADictionaryInsideAnArray) {
    DictionaryScene scene;
    NSArray *const array = [NSArray arrayWithObject:oneEntry()];
    const host::ObjectRef outer = scene.convert(Values({number(1), array}));
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key",
                            "Dictionary#6 set", "Dictionary#6 get", "Dictionary#6 key",
                            "Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
}

TEST(DictionaryMethods, AreLookedUpAgainAfterADictionaryThatIsAKey) {
    DictionaryScene scene;
    const OwnObject<TracedArray> keys;
    keys->elements = {number(1), oneEntry()};
    const OwnObject<TracedDictionary> source;
    source->keys = keys;
    source->valueFor = [](id) { return number(1); };
    const host::ObjectRef outer = scene.convert(source);
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key",
                            "Dictionary#4 set", "Dictionary#4 get", "Dictionary#4 key",
                            "Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
}

TEST(DictionaryMethods, AreLookedUpOncePerDictionaryThoughTheHostHasNone) {
    DictionaryScene scene;
    scene.host.hideMethod(setterDeclaration);
    scene.host.hideMethod(getterDeclaration);
    scene.host.hideMethod(keyGetterDeclaration);
    scene.convert(Values({number(1), number(2)}));
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
}

// The instance that an exception left is gone, and another one may stand at its address.
TEST(DictionaryMethods, AreLookedUpAgainAfterAnException) {
    OneDictionaryScene scene;
    RefusingNumber *const refusing = [[[RefusingNumber alloc] init] autorelease];
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convert(Values({number(1), refusing})); }),
              "Refused: objCType");
    scene.host.clearTrace();
    scene.convert(oneEntry());
    EXPECT_THAT(scene.methodRequests(),
                ElementsAre("Dictionary#1 set", "Dictionary#1 get", "Dictionary#1 key"));
}
