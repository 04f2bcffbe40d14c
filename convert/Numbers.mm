#include "convert/Values.h"

#include "frame/HostServices.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

namespace {

struct NumberRow {
    char typeCode;
    REALobjectStruct *(*convert)(NSNumber *);
};

using N = NSNumber;
constexpr NumberRow numberRows[] = {
    // Cocoa's booleans have the type of char, so every char is one.
    {'c', [](N *number) { return REALNewVariantBoolean([number boolValue] != 0); }},
    {'C', [](N *number) { return REALNewVariantInteger([number unsignedCharValue]); }},
    {'s', [](N *number) { return REALNewVariantInteger([number shortValue]); }},
    {'S', [](N *number) { return REALNewVariantInteger([number unsignedShortValue]); }},
    {'i', [](N *number) { return REALNewVariantInteger([number intValue]); }},
    {'I', [](N *number) { return REALNewVariantUInt32([number unsignedIntValue]); }},
    {'q', [](N *number) { return REALNewVariantInteger([number longValue]); }},
    // The host programs expect a UInt32 of the low half.
    {'Q',
     [](N *number) {
         return REALNewVariantUInt32(static_cast<std::uint32_t>([number unsignedLongValue]));
     }},
    {'f', [](N *number) { return REALNewVariantSingle([number floatValue]); }},
};

} // namespace

REALobjectStruct *newBooleanVariant(NSObject *boolean) {
    return REALNewVariantBoolean(boolean == (id)kCFBooleanTrue);
}

REALobjectStruct *newNumberVariant(NSNumber *number) {
    const char *typeCode = [number objCType];
    for (const NumberRow &row : numberRows)
        if (typeCode[0] == row.typeCode && typeCode[1] == '\0')
            return row.convert(number);
    return REALNewVariantDouble([number doubleValue]);
}
