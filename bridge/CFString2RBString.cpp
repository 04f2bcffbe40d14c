#include "bridge/CFString2RBString.h"

#include "frame/HeldUntilReset.h"
#include "frame/HostText.h"

#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

constexpr CFIndex largestStackLength = 99; // UTF-16 units
constexpr CFIndex bytesPerUnit = 6;
constexpr CFIndex largestLength = std::numeric_limits<CFIndex>::max() / bytesPerUnit;
constexpr CFIndex stackCapacity = 600;

REALstringStruct *hostStringThrough(char *buffer, CFIndex capacity, CFStringRef string) {
    if (!CFStringGetCString(string, buffer, capacity, HostEncoding::utf8))
        return nullptr;
    return REALBuildUnicodeString(buffer, static_cast<std::int64_t>(std::strlen(buffer)),
                                  HostEncoding::utf8);
}

} // namespace

REALstringStruct *CFString2RBString(CFStringRef string) {
    if (string == nullptr)
        return nullptr;
    const CFIndex length = CFStringGetLength(string);
    if (length <= 0 || length > largestLength)
        return nullptr;

    if (length <= largestStackLength) {
        char buffer[stackCapacity + 1] = {};
        return hostStringThrough(buffer, stackCapacity, string);
    }
    const CFIndex capacity = bytesPerUnit * length;
    const HeldUntilReset<char *, std::free> buffer{
        static_cast<char *>(std::calloc(static_cast<std::size_t>(capacity), 1))};
    return buffer ? hostStringThrough(buffer.get(), capacity, string) : nullptr;
}
