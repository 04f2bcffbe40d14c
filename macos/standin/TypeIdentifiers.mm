// Type identifiers: distinct small numbers, as macOS hands them out in no documented order.

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <CoreText/CoreText.h>

#include "Methods.h"
#include "Misuse.h"

#include <cstdint>

namespace {

enum Type : std::uint8_t {
    rootType = 1, // of an object without a Core Foundation type of its own
    arrayType,
    attributedStringType,
    bagType,
    booleanType,
    bundleType,
    calendarType,
    characterSetType,
    dataType,
    dateType,
    dictionaryType,
    errorType,
    localeType,
    nullType,
    numberType,
    readStreamType,
    runLoopTimerType,
    setType,
    stringType,
    timeZoneType,
    urlType,
    uuidType,
    writeStreamType,
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

// The types of Foundation's classes whose objects are Core Foundation objects too. No class is a
// subclass of another.
struct BridgedClass {
    const char *name;
    CFTypeID (*answer)(id, SEL);
};

template <Type type>
CFTypeID answer(id, SEL) {
    return type;
}

constexpr BridgedClass bridgedClasses[] = {
    {.name = "NSArray", .answer = answer<arrayType>},
    {.name = "NSAttributedString", .answer = answer<attributedStringType>},
    {.name = "NSCalendar", .answer = answer<calendarType>},
    {.name = "NSCharacterSet", .answer = answer<characterSetType>},
    {.name = "NSData", .answer = answer<dataType>},
    {.name = "NSDate", .answer = answer<dateType>},
    {.name = "NSDictionary", .answer = answer<dictionaryType>},
    {.name = "NSError", .answer = answer<errorType>},
    {.name = "NSInputStream", .answer = answer<readStreamType>},
    {.name = "NSLocale", .answer = answer<localeType>},
    {.name = "NSNull", .answer = answer<nullType>},
    {.name = "NSNumber", .answer = answer<numberType>},
    {.name = "NSOutputStream", .answer = answer<writeStreamType>},
    {.name = "NSSet", .answer = answer<setType>},
    {.name = "NSString", .answer = answer<stringType>},
    {.name = "NSTimeZone", .answer = answer<timeZoneType>},
    {.name = "NSTimer", .answer = answer<runLoopTimerType>},
    {.name = "NSURL", .answer = answer<urlType>},
};

void giveType(Class cls, CFTypeID (*answer)(id, SEL)) {
    standin::replaceMethod(cls, "_cfTypeID", answer, "Q16@0:8");
}

} // namespace

@protocol CoreFoundationType
- (CFTypeID)_cfTypeID;
@end

@interface StandInTypeIdentifiers : NSObject
@end

@implementation StandInTypeIdentifiers

// On macOS every object of Foundation is a Core Foundation object, be it of the root type; so is a
// class, which has the root class's methods for objects too.
+ (void)load {
    giveType([NSObject class], answer<rootType>);
    giveType(object_getClass([NSObject class]), answer<rootType>);
    for (const BridgedClass &each : bridgedClasses) {
        giveType(objc_getClass(each.name), each.answer);
    }
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    giveType([[NSNumber numberWithBool:YES] class], answer<booleanType>);
    [pool drain];
}

@end

CFTypeID CFGetTypeID(CFTypeRef object) {
    standin::requireObject(object, __func__);
    return [(id<CoreFoundationType>)object _cfTypeID];
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
