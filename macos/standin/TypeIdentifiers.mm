// Type identifiers: distinct small numbers, as macOS hands them out in no documented order.

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <CoreText/CoreText.h>

#include "Misuse.h"

#include <cstdint>

namespace {

enum Type : std::uint8_t {
    rootType = 1, // an object of no Core Foundation type of its own
    arrayType,
    attributedStringType,
    bagType,
    booleanType,
    bundleType,
    characterSetType,
    dataType,
    dateType,
    dictionaryType,
    errorType,
    numberType,
    setType,
    stringType,
    timeZoneType,
    urlType,
    uuidType,
    fontType,
    fontCollectionType,
    frameType,
    framesetterType,
    glyphInfoType,
    lineType,
    paragraphStyleType,
    runType,
    runDelegateType,
    typesetterType,
};

// The classes whose objects are Core Foundation objects too. No class is a subclass of another.
CFTypeID typeOfClassCluster(id object) {
    const struct {
        Class cluster;
        Type type;
    } bridged[] = {
        {.cluster = [NSString class], .type = stringType},
        {.cluster = [NSNumber class], .type = numberType},
        {.cluster = [NSDictionary class], .type = dictionaryType},
        {.cluster = [NSArray class], .type = arrayType},
        {.cluster = [NSData class], .type = dataType},
        {.cluster = [NSURL class], .type = urlType},
        {.cluster = [NSDate class], .type = dateType},
        {.cluster = [NSSet class], .type = setType},
        {.cluster = [NSCharacterSet class], .type = characterSetType},
        {.cluster = [NSTimeZone class], .type = timeZoneType},
        {.cluster = [NSAttributedString class], .type = attributedStringType},
        {.cluster = [NSError class], .type = errorType},
    };
    for (const auto &row : bridged) {
        if ([object isKindOfClass:row.cluster]) {
            return row.type;
        }
    }
    return rootType;
}

} // namespace

@protocol CoreFoundationType
- (CFTypeID)_cfTypeID;
@end

CFTypeID CFGetTypeID(CFTypeRef object) {
    standin::requireObject(object, __func__);
    if (object == kCFBooleanTrue || object == kCFBooleanFalse) {
        return booleanType;
    }
    if ([(id)object respondsToSelector:@selector(_cfTypeID)]) {
        return [(id<CoreFoundationType>)object _cfTypeID];
    }
    return typeOfClassCluster((id)object);
}

CFTypeID CFArrayGetTypeID() {
    return arrayType;
}
CFTypeID CFAttributedStringGetTypeID() {
    return attributedStringType;
}
CFTypeID CFBagGetTypeID() {
    return bagType;
}
CFTypeID CFBooleanGetTypeID() {
    return booleanType;
}
CFTypeID CFBundleGetTypeID() {
    return bundleType;
}
CFTypeID CFCharacterSetGetTypeID() {
    return characterSetType;
}
CFTypeID CFDataGetTypeID() {
    return dataType;
}
CFTypeID CFDateGetTypeID() {
    return dateType;
}
CFTypeID CFDictionaryGetTypeID() {
    return dictionaryType;
}
CFTypeID CFErrorGetTypeID() {
    return errorType;
}
CFTypeID CFNumberGetTypeID() {
    return numberType;
}
CFTypeID CFSetGetTypeID() {
    return setType;
}
CFTypeID CFStringGetTypeID() {
    return stringType;
}
CFTypeID CFTimeZoneGetTypeID() {
    return timeZoneType;
}
CFTypeID CFURLGetTypeID() {
    return urlType;
}
CFTypeID CFUUIDGetTypeID() {
    return uuidType;
}

CFTypeID CTFontGetTypeID() {
    return fontType;
}
CFTypeID CTFontCollectionGetTypeID() {
    return fontCollectionType;
}
CFTypeID CTFrameGetTypeID() {
    return frameType;
}
CFTypeID CTFramesetterGetTypeID() {
    return framesetterType;
}
CFTypeID CTGlyphInfoGetTypeID() {
    return glyphInfoType;
}
CFTypeID CTLineGetTypeID() {
    return lineType;
}
CFTypeID CTParagraphStyleGetTypeID() {
    return paragraphStyleType;
}
CFTypeID CTRunGetTypeID() {
    return runType;
}
CFTypeID CTRunDelegateGetTypeID() {
    return runDelegateType;
}
CFTypeID CTTypesetterGetTypeID() {
    return typesetterType;
}
