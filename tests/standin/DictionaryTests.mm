// Dictionaries by identity, and Foundation's own through the same functions.

#import "Cocoa.h"

namespace {

using Dictionaries = CocoaTest;

CFMutableDictionaryRef newDictionary() {
    return CFDictionaryCreateMutable(kCFAllocatorDefault, 0, nullptr, nullptr);
}

TEST_F(Dictionaries, KeysAreComparedByIdentity) {
    const CFMutableDictionaryRef dictionary = newDictionary();
    NSMutableString *const key = [NSMutableString stringWithString:@"key"];
    NSMutableString *const equalKey = [NSMutableString stringWithString:@"key"];
    int value = 0;
    CFDictionarySetValue(dictionary, key, &value);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, key), &value);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, equalKey), nullptr);
    CFRelease(dictionary);
}

TEST_F(Dictionaries, NothingIsRetained) {
    const CFMutableDictionaryRef dictionary = newDictionary();
    NSObject *const object = [[[NSObject alloc] init] autorelease];
    CFDictionarySetValue(dictionary, object, object);
    EXPECT_EQ([object retainCount], 1U);
    CFDictionaryRemoveValue(dictionary, object);
    EXPECT_EQ([object retainCount], 1U);
    CFRelease(dictionary);
}

TEST_F(Dictionaries, SettingReplacesAndRemovingForgets) {
    const CFMutableDictionaryRef dictionary = newDictionary();
    int key = 0;
    int first = 0;
    int second = 0;
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 0);
    CFDictionaryRemoveValue(dictionary, &key);
    CFDictionarySetValue(dictionary, &key, &first);
    CFDictionarySetValue(dictionary, &key, &second);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 1);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, &key), &second);
    CFDictionaryRemoveValue(dictionary, &key);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 0);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, &key), nullptr);
    CFRelease(dictionary);
}

TEST_F(Dictionaries, NullIsAKeyAndAValueLikeAnyOther) {
    const CFMutableDictionaryRef dictionary = newDictionary();
    int value = 0;
    CFDictionarySetValue(dictionary, nullptr, &value);
    EXPECT_EQ(CFDictionaryGetValue(dictionary, nullptr), &value);
    CFDictionarySetValue(dictionary, &value, nullptr);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 2);
    CFRelease(dictionary);
}

TEST_F(Dictionaries, AreObjectsOfTheDictionaryType) {
    const CFMutableDictionaryRef dictionary = newDictionary();
    EXPECT_EQ(CFGetTypeID(dictionary), CFDictionaryGetTypeID());
    EXPECT_EQ([(id)dictionary retainCount], 1U);
    CFRelease(dictionary);
}

TEST_F(Dictionaries, FoundationsCompareByValueAndRetain) {
    NSMutableDictionary *const foundation = [NSMutableDictionary dictionary];
    const auto dictionary = (CFMutableDictionaryRef)foundation;
    NSObject *const value = [[[NSObject alloc] init] autorelease];
    CFDictionarySetValue(dictionary, @"key", value);
    EXPECT_EQ([value retainCount], 2U);
    NSMutableString *const equalKey = [NSMutableString stringWithString:@"key"];
    EXPECT_EQ(CFDictionaryGetValue(dictionary, equalKey), value);
    EXPECT_EQ(CFDictionaryGetCount(dictionary), 1);
    CFDictionaryRemoveValue(dictionary, equalKey);
    EXPECT_EQ([foundation count], 0U);
}

TEST_F(Dictionaries, NullDictionariesEndTheProcess) {
    EXPECT_DEATH(CFDictionaryGetValue(none<CFDictionaryRef>(), nullptr),
                 "CFDictionaryGetValue: the object is null");
}

} // namespace
