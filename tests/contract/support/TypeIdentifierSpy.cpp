#include "TypeIdentifierSpy.h"

#include <CoreText/CoreText.h>

#include <dlfcn.h>
#include <map>

using Identifier = CFTypeID();

static std::map<Identifier *, CFTypeID> answers;

static CFTypeID identifier(Identifier *function, const char *name) {
    if (const auto found = answers.find(function); found != answers.end())
        return found->second;
    return reinterpret_cast<Identifier *>(dlsym(RTLD_NEXT, name))();
}

TypeIdentifierSpy::~TypeIdentifierSpy() {
    answers.clear();
}

void TypeIdentifierSpy::answer(Identifier *function, CFTypeID newIdentifier) {
    answers[function] = newIdentifier;
}

// The program's own functions stand before the stand-in's, for everything loaded into it.

CFTypeID CFURLGetTypeID() {
    return identifier(CFURLGetTypeID, "CFURLGetTypeID");
}
CFTypeID CFDictionaryGetTypeID() {
    return identifier(CFDictionaryGetTypeID, "CFDictionaryGetTypeID");
}
CFTypeID CFStringGetTypeID() {
    return identifier(CFStringGetTypeID, "CFStringGetTypeID");
}
CFTypeID CFNumberGetTypeID() {
    return identifier(CFNumberGetTypeID, "CFNumberGetTypeID");
}
CFTypeID CFArrayGetTypeID() {
    return identifier(CFArrayGetTypeID, "CFArrayGetTypeID");
}
CFTypeID CFBooleanGetTypeID() {
    return identifier(CFBooleanGetTypeID, "CFBooleanGetTypeID");
}
CFTypeID CFDataGetTypeID() {
    return identifier(CFDataGetTypeID, "CFDataGetTypeID");
}
CFTypeID CFCharacterSetGetTypeID() {
    return identifier(CFCharacterSetGetTypeID, "CFCharacterSetGetTypeID");
}
CFTypeID CFBundleGetTypeID() {
    return identifier(CFBundleGetTypeID, "CFBundleGetTypeID");
}
CFTypeID CFSetGetTypeID() {
    return identifier(CFSetGetTypeID, "CFSetGetTypeID");
}
CFTypeID CFBagGetTypeID() {
    return identifier(CFBagGetTypeID, "CFBagGetTypeID");
}
CFTypeID CFUUIDGetTypeID() {
    return identifier(CFUUIDGetTypeID, "CFUUIDGetTypeID");
}
CFTypeID CFTimeZoneGetTypeID() {
    return identifier(CFTimeZoneGetTypeID, "CFTimeZoneGetTypeID");
}
CFTypeID CFDateGetTypeID() {
    return identifier(CFDateGetTypeID, "CFDateGetTypeID");
}
CFTypeID CFAttributedStringGetTypeID() {
    return identifier(CFAttributedStringGetTypeID, "CFAttributedStringGetTypeID");
}
CFTypeID CFErrorGetTypeID() {
    return identifier(CFErrorGetTypeID, "CFErrorGetTypeID");
}
CFTypeID CTFontGetTypeID() {
    return identifier(CTFontGetTypeID, "CTFontGetTypeID");
}
CFTypeID CTFontCollectionGetTypeID() {
    return identifier(CTFontCollectionGetTypeID, "CTFontCollectionGetTypeID");
}
CFTypeID CTFrameGetTypeID() {
    return identifier(CTFrameGetTypeID, "CTFrameGetTypeID");
}
CFTypeID CTFramesetterGetTypeID() {
    return identifier(CTFramesetterGetTypeID, "CTFramesetterGetTypeID");
}
CFTypeID CTGlyphInfoGetTypeID() {
    return identifier(CTGlyphInfoGetTypeID, "CTGlyphInfoGetTypeID");
}
CFTypeID CTLineGetTypeID() {
    return identifier(CTLineGetTypeID, "CTLineGetTypeID");
}
CFTypeID CTParagraphStyleGetTypeID() {
    return identifier(CTParagraphStyleGetTypeID, "CTParagraphStyleGetTypeID");
}
CFTypeID CTRunGetTypeID() {
    return identifier(CTRunGetTypeID, "CTRunGetTypeID");
}
CFTypeID CTTypesetterGetTypeID() {
    return identifier(CTTypesetterGetTypeID, "CTTypesetterGetTypeID");
}
CFTypeID CTRunDelegateGetTypeID() {
    return identifier(CTRunDelegateGetTypeID, "CTRunDelegateGetTypeID");
}
