// Dictionaries: those made here, with keys by identity and nothing retained, and Foundation's own.

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include "Misuse.h"

#include <unordered_map>

@interface StandInDictionary : NSObject {
@public
    std::unordered_map<const void *, const void *> entries;
}
- (CFTypeID)_cfTypeID;
@end

@implementation StandInDictionary

- (CFTypeID)_cfTypeID {
    return CFDictionaryGetTypeID();
}

@end

namespace {

// Null when the dictionary is one of Foundation's.
StandInDictionary *identityDictionary(CFDictionaryRef dictionary, const char *function) {
    standin::requireObject(dictionary, function);
    id const object = (id)dictionary;
    return [object isKindOfClass:[StandInDictionary class]] ? object : nil;
}

} // namespace

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex,
                                                 const CFDictionaryKeyCallBacks *keyCallBacks,
                                                 const CFDictionaryValueCallBacks *valueCallBacks) {
    if (keyCallBacks != nullptr || valueCallBacks != nullptr) {
        standin::misuse(__func__, "only dictionaries without call-backs are made here");
    }
    id const dictionary = [[StandInDictionary alloc] init];
    return (CFMutableDictionaryRef)dictionary;
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
    if (StandInDictionary *const own = identityDictionary(dictionary, __func__)) {
        return static_cast<CFIndex>(own->entries.size());
    }
    return static_cast<CFIndex>([(NSDictionary *)dictionary count]);
}

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key) {
    if (StandInDictionary *const own = identityDictionary(dictionary, __func__)) {
        const auto found = own->entries.find(key);
        return found == own->entries.end() ? nullptr : found->second;
    }
    return [(NSDictionary *)dictionary objectForKey:(id)key];
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void *key, const void *value) {
    if (StandInDictionary *const own = identityDictionary(dictionary, __func__)) {
        own->entries[key] = value;
    } else {
        [(NSMutableDictionary *)dictionary setObject:(id)value forKey:(id)key];
    }
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void *key) {
    if (StandInDictionary *const own = identityDictionary(dictionary, __func__)) {
        own->entries.erase(key);
    } else {
        [(NSMutableDictionary *)dictionary removeObjectForKey:(id)key];
    }
}
