// Umbrella header of Core Text: identifiers of its types, which are only told apart here.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CoreFoundation.h>

CF_EXPORT CFTypeID CTFontGetTypeID(void);
CF_EXPORT CFTypeID CTFontCollectionGetTypeID(void);
CF_EXPORT CFTypeID CTFrameGetTypeID(void);
CF_EXPORT CFTypeID CTFramesetterGetTypeID(void);
CF_EXPORT CFTypeID CTGlyphInfoGetTypeID(void);
CF_EXPORT CFTypeID CTLineGetTypeID(void);
CF_EXPORT CFTypeID CTParagraphStyleGetTypeID(void);
CF_EXPORT CFTypeID CTRunGetTypeID(void);
CF_EXPORT CFTypeID CTRunDelegateGetTypeID(void);
CF_EXPORT CFTypeID CTTypesetterGetTypeID(void);
