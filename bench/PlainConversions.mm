#include "PlainConversions.h"

#include "frame/HostServices.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>

#include <objc/runtime.h>

#include <cstdlib>
#include <cstring>

#pragma clang diagnostic ignored "-Wdeprecated-declarations"

@interface NSObject (CoreFoundationType)
- (CFTypeID)_cfTypeID;
@end

/// A number of a type that Foundation's own numbers do not have.
@interface CodedNumber : NSNumber {
    const char *code;
}
+ (CodedNumber *)newWithCode:(const char *)typeCode;
@end

@implementation CodedNumber
+ (CodedNumber *)newWithCode:(const char *)typeCode {
    CodedNumber *number = NSAllocateObject(self, 0, nullptr);
    number->code = typeCode;
    return number;
}
- (const char *)objCType {
    return code;
}
- (unsigned char)unsignedCharValue {
    return 5;
}
- (unsigned short)unsignedShortValue {
    return 5;
}
- (unsigned int)unsignedIntValue {
    return 5;
}
@end

/// Of no row, and no object of Core Foundation's.
@interface ProgramsObject : NSObject
@end

@implementation ProgramsObject
- (CFTypeID)_cfTypeID {
    return 0;
}
@end

namespace {

// Keeps the compiler from leaving out what only asks.
template <class Answer>
void asked(Answer answer) {
    asm volatile("" : : "r"(answer));
}

// Strings and what is text ---------------------------------------------------------------------

REALstringStruct *hostString(char *buffer, CFIndex capacity, CFStringRef text) {
    CFStringGetCString(text, buffer, capacity, HostEncoding::utf8);
    REALstringStruct *string =
        originalREALBuildString(buffer, static_cast<std::int32_t>(std::strlen(buffer)));
    REALSetStringEncoding(string, HostEncoding::utf8);
    return string;
}

REALstringStruct *hostString(CFStringRef text) {
    const CFIndex length = CFStringGetLength(text);
    if (length < 100) {
        char buffer[601] = {};
        return hostString(buffer, sizeof buffer - 1, text);
    }
    const CFIndex capacity = 6 * length;
    auto *buffer = static_cast<char *>(std::calloc(static_cast<std::size_t>(capacity), 1));
    REALstringStruct *string = hostString(buffer, capacity, text);
    std::free(buffer);
    return string;
}

REALobjectStruct *string(id text) {
    REALstringStruct *made = hostString((CFStringRef)text);
    REALobjectStruct *variant = REALNewVariantString(made);
    REALUnlockString(made);
    return variant;
}

REALobjectStruct *page(id object) {
    auto *const url = (CFURLRef)object;
    FSRef reference;
    asked(CFURLGetFSRef(url, &reference));
    const auto *const parent = CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, url);
    asked(CFURLGetFSRef(parent, &reference));
    CFRelease(parent);
    return string([object absoluteString]);
}

REALobjectStruct *file(id object) {
    FSRef item;
    FSRef parent;
    FSCatalogInfo info;
    HFSUniStr255 name;
    asked(CFURLGetFSRef((CFURLRef)object, &item));
    asked(FSGetCatalogInfo(&item, kFSCatInfoNodeID, &info, nullptr, nullptr, &parent));
    asked(FSGetCatalogInfo(&item, kFSCatInfoNone, nullptr, &name, nullptr, nullptr));
    asked(FSGetCatalogInfo(&parent, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr));
    return REALFolderItemFromParentFSRef(&parent, &name);
}

// Values -----------------------------------------------------------------------------------------

REALobjectStruct *data(id object) {
    using DataPointer = void *(REALobjectStruct * block);
    static constinit DataPointer *dataPointer = nullptr;

    const void *bytes = [(NSData *)object bytes];
    const NSUInteger length = [(NSData *)object length];
    REALobjectStruct *block = REALNewMemoryBlockOriginal(static_cast<std::int32_t>(length));
    if (dataPointer == nullptr)
        dataPointer = reinterpret_cast<DataPointer *>(
            REALLoadObjectMethod(block, "Operator_Convert() As Ptr"));
    std::memcpy(dataPointer(block), bytes, length);
    return block;
}

REALobjectStruct *date(id object) {
    using SetFields =
        void(REALobjectStruct * date, std::int64_t year, std::int64_t month, std::int64_t day,
             std::int64_t hour, std::int64_t minute, std::int64_t second);
    static Class calendarDate = [NSCalendarDate class];

    const NSTimeInterval moment = [(NSDate *)object timeIntervalSinceReferenceDate];
    NSCalendarDate *fields =
        [[[calendarDate alloc] initWithTimeIntervalSinceReferenceDate:moment] autorelease];
    const std::int64_t year = [fields yearOfCommonEra];
    const std::int64_t month = [fields monthOfYear];
    const std::int64_t day = [fields dayOfMonth];
    const std::int64_t second = [fields secondOfMinute];
    const std::int64_t minute = [fields minuteOfHour];
    const std::int64_t hour = [fields hourOfDay];
    REALobjectStruct *made = REALnewInstance("Date");
    void *setFields = REALLoadObjectMethod(
        made, "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer = 0, "
              "minute as Integer = 0, second as Integer = 0");
    reinterpret_cast<SetFields *>(setFields)(made, year, month, day, hour, minute, second);
    return made;
}

// A plain function for numbers, by what they are read and made with.
template <class Make>
auto *number(Make) {
    return +[](id object) {
        NSNumber *number = object;
        asked([number objCType]);
        return Make{}(number);
    };
}

// What the dispatch asks of objects behind the class rows.
void askAsLast(id object) {
    static Class valueClass = [NSValue class];
    asked(objc_getClass("ZKTREALobjectWrapper"));
    asked([object isKindOfClass:valueClass]);
}

template <class Make>
auto *structure(Make) {
    return +[](id object) {
        NSValue *value = object;
        askAsLast(object);
        asked([value objCType]);
        return Make{}(value);
    };
}

template <class Fields>
REALobjectStruct *geometry(const char *hostClass, Fields fields) {
    REALobjectStruct *made = REALnewInstance(hostClass);
    instanceData<Fields>(made) = fields;
    return made;
}

// Wrappers ---------------------------------------------------------------------------------------

REALobjectStruct *wrapping(id object, REALobjectStruct *instance) {
    instanceData<NSObject *>(instance) = [object retain];
    return instance;
}

REALobjectStruct *byNearestClass(id object) {
    static Class required = [NSIndexSet class];
    asked([object class]);
    REALobjectStruct *instance = REALnewInstance("NSIndexSetZKT");
    asked([object isKindOfClass:required]);
    return wrapping(object, instance);
}

REALobjectStruct *coreFoundationObject(id object) {
    askAsLast(object);
    asked([object respondsToSelector:@selector(_cfTypeID)]);
    asked([object _cfTypeID]);
    asked(CFGetTypeID((CFTypeRef)object));
    REALobjectStruct *instance = REALnewInstance("CFObjectZKT");
    instanceData<CFTypeRef>(instance) = CFRetain((CFTypeRef)object);
    return instance;
}

REALobjectStruct *programsObject(id object) {
    askAsLast(object);
    asked([object respondsToSelector:@selector(_cfTypeID)]);
    asked([object _cfTypeID]);
    asked([object class]);
    asked(REALnewInstance("ProgramsObjectZKT"));
    return wrapping(object, REALnewInstance("NSObjectZKT"));
}

// Collections of strings -------------------------------------------------------------------------

REALobjectStruct *array(id strings) {
    REALobjectStruct *result = REALCreateArray(objectElements, emptyArray);
    NSEnumerator *elements = [strings objectEnumerator];
    std::int64_t index = 0;
    while (id element = [elements nextObject]) {
        REALobjectStruct *value = string(element);
        REALInsertArrayValueObject(result)(result, index++, value);
        REALUnlockObject(value);
    }
    return result;
}

REALobjectStruct *dictionary(NSDictionary *strings) {
    using SetValue =
        void(REALobjectStruct * dictionary, REALobjectStruct * key, REALobjectStruct * value);

    REALobjectStruct *result = REALnewInstance("Dictionary");
    NSArray *keys = [strings allKeys];
    const NSUInteger count = [keys count];
    SetValue *setValue = nullptr;
    for (NSUInteger i = 0; i < count; ++i) {
        id cocoaKey = [keys objectAtIndex:i];
        id cocoaValue = [strings objectForKey:cocoaKey];
        REALobjectStruct *key = string(cocoaKey);
        REALobjectStruct *value = string(cocoaValue);
        if (i == 0) {
            setValue = reinterpret_cast<SetValue *>(
                REALLoadObjectMethod(result, "Value(key As Variant, Assigns _value As Variant)"));
            asked(REALLoadObjectMethod(result, "Value(key As Variant) As Variant"));
            asked(REALLoadObjectMethod(result, "Key(index As Integer) As Variant"));
        }
        setValue(result, key, value);
        REALUnlockObject(key);
        REALUnlockObject(value);
    }
    return result;
}

} // namespace

NSDictionary *variables(int count) {
    NSMutableDictionary *result = [NSMutableDictionary dictionary];
    for (int i = 0; i < count; ++i)
        [result setObject:[NSString stringWithFormat:@"/usr/local/share/number-%d/settings", i]
                   forKey:[NSString stringWithFormat:@"VARIABLE_%d", i]];
    return result;
}

REALobjectStruct *plainEnvironment(REALobjectStruct *instance) {
    return dictionary([instanceData<NSProcessInfo *>(instance) environment]);
}

std::vector<PlainConversion> plainConversions() {
    NSDictionary *hundred = variables(100);
    const auto text = [](NSUInteger length) {
        return [@"" stringByPaddingToLength:length withString:@"some text " startingAtIndex:0];
    };
    const std::vector<PlainConversion> conversions = {
        {"NSNull", [NSNull null], [](id) -> REALobjectStruct * { return nullptr; }},
        {"string of 40 characters", text(40), string},
        {"string of 400 characters", text(400), string},
        {"URL of a page", [NSURL URLWithString:@"http://example.invalid/page"], page},
        {"URL of a file", [NSURL fileURLWithPath:@"/etc/passwd"], file},
        {"data of 1,000 bytes", [NSMutableData dataWithLength:1000], data},
        {"date", [NSDate dateWithTimeIntervalSinceReferenceDate:400'000'000], date},
        {"Core Foundation's true", (id)kCFBooleanTrue,
         [](id) { return REALNewVariantBoolean(true); }},
        {"number 'c'", [NSNumber numberWithChar:5],
         number([](NSNumber *each) { return REALNewVariantBoolean([each boolValue] != 0); })},
        {"number 'C'", [CodedNumber newWithCode:"C"],
         number([](NSNumber *each) { return REALNewVariantInteger([each unsignedCharValue]); })},
        {"number 's'", [NSNumber numberWithShort:5],
         number([](NSNumber *each) { return REALNewVariantInteger([each shortValue]); })},
        {"number 'S'", [CodedNumber newWithCode:"S"],
         number([](NSNumber *each) { return REALNewVariantInteger([each unsignedShortValue]); })},
        {"number 'i'", [NSNumber numberWithInt:5],
         number([](NSNumber *each) { return REALNewVariantInteger([each intValue]); })},
        {"number 'I'", [CodedNumber newWithCode:"I"],
         number([](NSNumber *each) { return REALNewVariantUInt32([each unsignedIntValue]); })},
        {"number 'q'", [NSNumber numberWithLong:5],
         number([](NSNumber *each) { return REALNewVariantInteger([each longValue]); })},
        {"number 'Q'", [NSNumber numberWithUnsignedLong:~0UL], number([](NSNumber *each) {
             return REALNewVariantUInt32(static_cast<std::uint32_t>([each unsignedLongValue]));
         })},
        {"number 'f'", [NSNumber numberWithFloat:0.5F],
         number([](NSNumber *each) { return REALNewVariantSingle([each floatValue]); })},
        {"number 'd'", [NSNumber numberWithDouble:0.1],
         number([](NSNumber *each) { return REALNewVariantDouble([each doubleValue]); })},
        {"array of 100 strings", [hundred allKeys], array},
        {"set of 100 strings", [NSSet setWithArray:[hundred allKeys]],
         [](id set) { return array([set allObjects]); }},
        {"dictionary of 100 strings", hundred, [](id object) { return dictionary(object); }},
        {"rectangle", [NSValue valueWithRect:NSMakeRect(1, 2, 3, 4)],
         structure([](NSValue *value) { return geometry("NSRectZKT", [value rectValue]); })},
        {"size", [NSValue valueWithSize:NSMakeSize(1, 2)],
         structure([](NSValue *value) { return geometry("NSSizeZKT", [value sizeValue]); })},
        {"point", [NSValue valueWithPoint:NSMakePoint(1, 2)],
         structure([](NSValue *value) { return geometry("NSPointZKT", [value pointValue]); })},
        {"range", [NSValue valueWithRange:NSMakeRange(1, 2)],
         structure([](NSValue *value) { return geometry("NSRangeZKT", [value rangeValue]); })},
        {"wrapper of the row's class", [NSError errorWithDomain:@"domain" code:1 userInfo:nil],
         [](id object) { return wrapping(object, REALnewInstance("NSErrorZKT")); }},
        {"wrapper of the nearest class", [NSIndexSet indexSet], byNearestClass},
        {"wrapper by Core Foundation's type", [[NSObject new] autorelease], coreFoundationObject},
        {"wrapper by a superclass's name", [[ProgramsObject new] autorelease], programsObject},
    };
    for (const PlainConversion &each : conversions)
        [each.object retain];
    return conversions;
}
