#include "convert/Values.h"

#include "frame/FamilyHooks.h"
#include "frame/HostServices.h"

#include <cstring>

namespace {

// The data of the family's geometry classes is laid out as Foundation's structures are.
static_assert(sizeof(NSRect) == 4 * sizeof(double) && sizeof(NSSize) == 2 * sizeof(double) &&
              sizeof(NSPoint) == 2 * sizeof(double) &&
              sizeof(NSRange) == 2 * sizeof(std::uint64_t));

template <class Structure>
REALobjectStruct *newGeometry(const char *hostClass, Structure fields) {
    REALobjectStruct *instance = REALnewInstance(hostClass);
    if (instance != nullptr)
        instanceData<Structure>(instance) = fields;
    return instance;
}

// What a sibling's method gives for the value, if it is there.
template <class Send>
REALobjectStruct *throughHook(NSValue *value, SEL hook, Send send) {
    return [value respondsToSelector:hook] ? send() : nullptr;
}

struct StructureRow {
    const char *encoding;
    REALobjectStruct *(*convert)(NSValue *);
};

constexpr StructureRow structureRows[] = {
    {"{CGRect={CGPoint=dd}{CGSize=dd}}",
     [](NSValue *value) { return newGeometry("NSRectZKT", [value rectValue]); }},
    {"{CGSize=dd}", [](NSValue *value) { return newGeometry("NSSizeZKT", [value sizeValue]); }},
    {"{_NSRange=QQ}", [](NSValue *value) { return newGeometry("NSRangeZKT", [value rangeValue]); }},
    {"{CGPoint=dd}", [](NSValue *value) { return newGeometry("NSPointZKT", [value pointValue]); }},
    {"{?=qqq}",
     [](NSValue *value) {
         return throughHook(value, @selector(QTTimeValueZKT),
                            [=] { return [value QTTimeValueZKT]; });
     }},
    {"{?={?=qqq}{?=qqq}}",
     [](NSValue *value) {
         return throughHook(value, @selector(QTTimeRangeValueZKT),
                            [=] { return [value QTTimeRangeValueZKT]; });
     }},
    {"{?=qiIq}",
     [](NSValue *value) {
         return throughHook(value, @selector(CMTimeValueZKT),
                            [=] { return [value CMTimeValueZKT]; });
     }},
    {"{?={?=qiIq}{?=qiIq}}",
     [](NSValue *value) {
         return throughHook(value, @selector(CMTimeRangeValueZKT),
                            [=] { return [value CMTimeRangeValueZKT]; });
     }},
    {"{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}",
     [](NSValue *value) {
         return throughHook(value, @selector(CMTimeMappingValueZKT),
                            [=] { return [value CMTimeMappingValueZKT]; });
     }},
};

} // namespace

REALobjectStruct *newStructure(NSValue *value) {
    const char *encoding = [value objCType];
    for (const StructureRow &row : structureRows)
        if (std::strcmp(encoding, row.encoding) == 0)
            return row.convert(value);
    return nullptr;
}
