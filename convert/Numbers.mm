#include "convert/Values.h"

#include "frame/HostServices.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

namespace {

struct NumberRow {
    char typeCode;
    REALobjectStruct *(*convert)(NSNumber *);
};

constexpr NumberRow numberRows[] = {
    // Cocoa's booleans have the type of char, so every char is one.
    {'c', [](NSNumber *number) { return REALNewVariantBoolean([number boolValue] != 0); }},
    {'C', [](NSNumber *number) { return REALNewVariantInteger([number unsignedCharValue]); }},
    {'s', [](NSNumber *number) { return REALNewVariantInteger([number shortValue]); }},
    {'S', [](NSNumber *number) { return REALNewVariantInteger([number unsignedShortValue]); }},
    {'i', [](NSNumber *number) { return REALNewVariantInteger([number intValue]); }},
    {'I', [](NSNumber *number) { return REALNewVariantUInt32([number unsignedIntValue]); }},
    {'q', [](NSNumber *number) { return REALNewVariantInteger([number longValue]); }},
    // The host programs expect a UInt32 of the low half.
    {'Q',
     [](NSNumber *number) {
         return REALNewVariantUInt32(static_cast<std::uint32_t>([number unsignedLongValue]));
     }},
    {'f', [](NSNumber *number) { return REALNewVariantSingle([number floatValue]); }},
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
