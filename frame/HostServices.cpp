#include "frame/HostServices.h"

StringContents REALGetStringContents(REALstringStruct *string) {
    static constinit void *lengthInBytes = nullptr;

    const char *bytes = REALGetStringCString(string);
    if (lengthInBytes == nullptr)
        lengthInBytes = REALLoadFrameworkMethod(nullptr, "LenB( s as string ) as integer");
    if (lengthInBytes == nullptr)
        return {bytes, 0};
    return {bytes, reinterpret_cast<std::int64_t (*)(REALstringStruct *)>(lengthInBytes)(string)};
}
