// Deprecated long since, so that the uses do not compile for macOS while warnings are errors.

#include <CoreServices/CoreServices.h>

#if defined(USE_CATALOG_INFO)
OSErr use(const FSRef *ref) {
    return FSGetCatalogInfo(ref, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
}
#elif defined(USE_MAKE_PATH)
OSStatus use(const FSRef *ref, UInt8 *path) {
    return FSRefMakePath(ref, path, 1);
}
#elif defined(USE_GET_FSREF)
Boolean use(CFURLRef url, FSRef *ref) {
    return CFURLGetFSRef(url, ref);
}
#endif
