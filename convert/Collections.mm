#include "convert/Collections.h"

#include "convert/Dispatch.h"
#include "frame/HeldUntilReset.h"

REALobjectStruct *newHostArray(NSArray *array) {
    ObjectReference result{REALCreateArray(objectElements, emptyArray)};
    if (!result)
        return nullptr;
    NSEnumerator *elements = [array objectEnumerator];
    std::int64_t index = 0;
    while (id element = [elements nextObject]) {
        ObjectReference value{NewVariantFromNSObject(element)};
        // Fetched for each element: the host sees it, and may give another.
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

using SetValue = void(REALobjectStruct *dictionary, REALobjectStruct *key, REALobjectStruct *value);

// The methods of the Dictionary that is being filled. Converting a nested dictionary takes them
// over and leaves them to nobody, so the outer one looks them up again. The getters are looked up
// with the setter for the host to see, and are not called.
constinit REALobjectStruct *LastDictionary = nullptr;
constinit SetValue *LastDictionarySetter = nullptr;
constinit void *LastDictionaryGetter = nullptr;
constinit void *LastDictionaryKeyGetter = nullptr;

void loadMethods(REALobjectStruct *dictionary) {
    LastDictionary = dictionary;
    LastDictionarySetter = reinterpret_cast<SetValue *>(
        REALLoadObjectMethod(dictionary, "Value(key As Variant, Assigns _value As Variant)"));
    LastDictionaryGetter = REALLoadObjectMethod(dictionary, "Value(key As Variant) As Variant");
    LastDictionaryKeyGetter = REALLoadObjectMethod(dictionary, "Key(index As Integer) As Variant");
}

// Leaves the methods to nobody at the end, also when an exception passes: the instance is gone
// then, and another one may stand at its address.
struct MethodsInUse {
    MethodsInUse() = default;
    ~MethodsInUse() { LastDictionary = nullptr; }
    MethodsInUse(const MethodsInUse &) = delete;
    MethodsInUse &operator=(const MethodsInUse &) = delete;
};

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
    const MethodsInUse methods;
    const NSUInteger count = [keys count];
    for (NSUInteger i = 0; i < count; ++i) {
        id cocoaKey = [keys objectAtIndex:i];
        id cocoaValue = [dictionary objectForKey:cocoaKey];
        ObjectReference key{NewVariantFromNSObject(cocoaKey)};
        ObjectReference value{NewVariantFromNSObject(cocoaValue)};
        if (LastDictionary != result.get())
            loadMethods(result.get());
        if (LastDictionarySetter != nullptr)
            LastDictionarySetter(result.get(), key.get(), value.get());
        key.reset();
        value.reset();
    }
    return result.handOver();
}
