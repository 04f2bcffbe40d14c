#include "convert/CoreFoundationWrapper.h"

#include "frame/HeldUntilReset.h"

#include <CoreText/CoreText.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

// The number of an object's Core Foundation type.
@interface NSObject (CoreFoundationType)
- (CFTypeID)_cfTypeID;
@end

namespace {

struct TypeRow {
    CFTypeID (*typeID)();
    const char *hostClass;
};

// In the order of comparison.
constexpr TypeRow typeRows[] = {
    {CFURLGetTypeID, "CFURLZKT"},
    {CFDictionaryGetTypeID, "CFDictionaryZKT"},
    {CFStringGetTypeID, "CFStringZKT"},
    {CFNumberGetTypeID, "CFNumberZKT"},
    {CFArrayGetTypeID, "CFArrayZKT"},
    {CFBooleanGetTypeID, "CFBooleanZKT"},
    {CFDataGetTypeID, "CFBinaryDataZKT"}, // not named after its type
    {CFCharacterSetGetTypeID, "CFCharacterSetZKT"},
    {CFBundleGetTypeID, "CFBundleZKT"},
    {CFSetGetTypeID, "CFSetZKT"},
    {CFBagGetTypeID, "CFBagZKT"},
    {CFUUIDGetTypeID, "CFUUIDZKT"},
    {CFTimeZoneGetTypeID, "CFTimeZoneZKT"},
    {CFDateGetTypeID, "CFDateZKT"},
    {CFAttributedStringGetTypeID, "CFAttributedStringZKT"},
    {CFErrorGetTypeID, "CFErrorZKT"},
    {CTFontGetTypeID, "CTFontZKT"},
    {CTFontCollectionGetTypeID, "CTFontCollectionZKT"},
    {CTFrameGetTypeID, "CTFrameZKT"},
    {CTFramesetterGetTypeID, "CTFramesetterZKT"},
    {CTGlyphInfoGetTypeID, "CTGlyphInfoZKT"},
    {CTLineGetTypeID, "CTLineZKT"},
    {CTParagraphStyleGetTypeID, "CTParagraphStyleZKT"},
    {CTRunGetTypeID, "CTRunZKT"},
    {CTTypesetterGetTypeID, "CTTypesetterZKT"},
    {CTRunDelegateGetTypeID, "CTRunDelegateZKT"},
};
constexpr const char *anyType = "CFObjectZKT";

// The data of the family's Core Foundation wrapper classes. A class that is none of them has
// another tag: its instances must not be written to.
struct WrapperData {
    CFTypeRef object;
    void *classOwn;
    volatile std::int64_t tag; // read and, though it is there, written: the host sees both
};
static_assert(offsetof(WrapperData, tag) == 16);
constexpr std::int64_t wrapperTag = 0x52424346;

const char *hostClassOf(CFTypeRef object) {
    const CFTypeID type = CFGetTypeID(object);
    const auto *row =
        std::ranges::find_if(typeRows, [=](const TypeRow &each) { return each.typeID() == type; });
    return row != std::end(typeRows) ? row->hostClass : anyType;
}

REALobjectStruct *newWrapper(CFTypeRef object) {
    REALobjectStruct *made = REALnewInstance(hostClassOf(object));
    if (made == nullptr)
        made = REALnewInstance(anyType);
    if (made == nullptr)
        return nullptr;
    auto &data = instanceData<WrapperData>(made);
    if (data.tag != wrapperTag)
        return nullptr; // the instance is left as it is, unreleased
    ObjectReference instance{made};
    data.tag = wrapperTag;
    data.object = CFRetain(object);
    return instance.handOver();
}

} // namespace

std::optional<REALobjectStruct *> newCoreFoundationWrapper(NSObject *object) {
    if (![object respondsToSelector:@selector(_cfTypeID)])
        return std::nullopt;
    @try {
        if (static_cast<std::int32_t>([object _cfTypeID]) > 0)
            return newWrapper((CFTypeRef)object);
    } @catch (NSException *) {
        // The object is wrapped by its class instead.
    }
    return std::nullopt;
}
