#include "convert/Collections.h"

#include "convert/Conversion.h"
#include "frame/HostReference.h"

REALobjectStruct *newHostArray(NSArray *array) {
    ObjectReference result{REALCreateArray(objectElements, emptyArray)};
    if (!result)
        return nullptr;
    NSEnumerator *elements = [array objectEnumerator];
    std::int64_t index = 0;
    for (id element = [elements nextObject]; element != nil; element = [elements nextObject]) {
        ObjectReference value{NewVariantFromNSObject(element)};
        if (ObjectInsertProcedure *insert = REALInsertArrayValueObject(result.get()))
            insert(result.get(), index, value.get());
        value.reset();
        ++index;
    }
    return result.handOver();
}

REALobjectStruct *newHostArrayOfSet(NSSet *set) {
    return newHostArray([set allObjects]);
}

namespace {

// The methods of the Dictionary that is being filled. Converting a nested dictionary takes them
// over and leaves them to nobody, so the outer one looks them up again.
constinit REALobjectStruct *LastDictionary = nullptr;
constinit void *LastDictionarySetter = nullptr;
constinit void *LastDictionaryGetter = nullptr;
constinit void *LastDictionaryKeyGetter = nullptr;

using SetValue = void(REALobjectStruct *dictionary, REALobjectStruct *key, REALobjectStruct *value);

void loadMethods(REALobjectStruct *dictionary) {
    LastDictionary = dictionary;
    LastDictionarySetter =
        REALLoadObjectMethod(dictionary, "Value(key As Variant, Assigns _value As Variant)");
    LastDictionaryGetter = REALLoadObjectMethod(dictionary, "Value(key As Variant) As Variant");
    LastDictionaryKeyGetter = REALLoadObjectMethod(dictionary, "Key(index As Integer) As Variant");
}

} // namespace

REALobjectStruct *NSDictionaryRB(NSDictionary *dictionary) {
    if (dictionary == nil)
        return nullptr;
    ObjectReference result{REALnewInstance("Dictionary")};
    if (!result)
        return nullptr;
    NSArray *keys = [dictionary allKeys];
    if (keys == nil)
        return result.handOver();
    const NSUInteger count = [keys count];
    for (NSUInteger i = 0; i < count; ++i) {
        id cocoaKey = [keys objectAtIndex:i];
        id cocoaValue = [dictionary objectForKey:cocoaKey];
        ObjectReference key{NewVariantFromNSObject(cocoaKey)};
        ObjectReference value{NewVariantFromNSObject(cocoaValue)};
        if (LastDictionary != result.get())
            loadMethods(result.get());
        if (auto *setValue = reinterpret_cast<SetValue *>(LastDictionarySetter))
            setValue(result.get(), key.get(), value.get());
        key.reset();
        value.reset();
    }
    LastDictionary = nullptr;
    return result.handOver();
}
