#include "bridge/NSURLRBFile.h"

#include "frame/HeldUntilReset.h"
#include "frame/HostText.h"

#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

// The host's interface to files is the File Manager's, long deprecated.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace {

constexpr UInt32 rootFolderID = 2;
constexpr CFIndex longestName = 255; // UTF-16 units
constexpr std::size_t pathCapacity = 4096;
constexpr std::int64_t nativePathMode = 3; // the host's mode for POSIX paths

// One reference to a Core Foundation object.
template <class Ref>
using Reference = HeldUntilReset<Ref, CFRelease>;

using TrueFolderItemMethod = REALobjectStruct *(REALstringStruct *path, std::int64_t pathMode);

std::optional<FSRef> fileReference(CFURLRef url) {
    FSRef reference{};
    if (!CFURLGetFSRef(url, &reference))
        return std::nullopt;
    return reference;
}

// The folder item by its parent folder and name. Null if the File Manager knows no such parent, as
// for the root folder of a volume.
std::optional<REALobjectStruct *> folderItemInParent(const FSRef &item) {
    FSCatalogInfo info{};
    FSRef parent{};
    if (FSGetCatalogInfo(&item, kFSCatInfoNodeID, &info, nullptr, nullptr, &parent) != 0)
        return std::nullopt;
    if (info.nodeID == rootFolderID)
        parent = {};
    HFSUniStr255 name{};
    const OSErr itemError =
        FSGetCatalogInfo(&item, kFSCatInfoNone, nullptr, &name, nullptr, nullptr);
    const OSErr parentError =
        FSGetCatalogInfo(&parent, kFSCatInfoNone, nullptr, nullptr, nullptr, nullptr);
    if (itemError != 0 || parentError != 0)
        return std::nullopt;
    return REALFolderItemFromParentFSRef(&parent, &name);
}

// Asks the host's global method, which is looked up once in a process, found or not.
REALobjectStruct *trueFolderItem(REALstringStruct *path) {
    static constinit TrueFolderItemMethod *GetTrueFolderItem = nullptr;
    static constinit bool doneGetTrueFolderItem = false;

    if (!doneGetTrueFolderItem) {
        GetTrueFolderItem = reinterpret_cast<TrueFolderItemMethod *>(REALLoadFrameworkMethod(
            nullptr, "GetTrueFolderItem(path As String, pathMode As Integer) As FolderItem"));
        doneGetTrueFolderItem = true;
    }
    return GetTrueFolderItem != nullptr ? GetTrueFolderItem(path, nativePathMode) : nullptr;
}

REALobjectStruct *folderItemByPath(const FSRef &item) {
    std::array<char, pathCapacity> path{};
    if (FSRefMakePath(&item, reinterpret_cast<UInt8 *>(path.data()), pathCapacity) != 0)
        return nullptr;
    StringReference text{REALBuildUnicodeString(
        path.data(), static_cast<std::int64_t>(std::strlen(path.data())), HostEncoding::utf8)};
    ObjectReference result{trueFolderItem(text.get())};
    text.reset();
    return result.handOver();
}

// The name in the form in which file systems store it, cut to what a name can hold.
HFSUniStr255 storedName(CFStringRef component) {
    Reference<CFMutableStringRef> copy{
        CFStringCreateMutableCopy(kCFAllocatorDefault, 0, component)};
    if (copy)
        CFStringNormalize(copy.get(), kCFStringNormalizationFormD);
    Reference<CFStringRef> text{copy ? copy.handOver()
                                     : static_cast<CFStringRef>(CFRetain(component))};
    HFSUniStr255 name{};
    const CFIndex length = std::clamp<CFIndex>(CFStringGetLength(text.get()), 0, longestName);
    name.length = static_cast<UInt16>(length);
    CFStringGetCharacters(text.get(), CFRange{0, length}, name.unicode);
    text.reset();
    return name;
}

// Where an item may be made: an existing folder, and a name in it.
struct Place {
    FSRef parent;
    HFSUniStr255 name;
};

std::optional<Place> placeToBe(CFURLRef url) {
    Reference<CFURLRef> parentUrl{
        CFURLCreateCopyDeletingLastPathComponent(kCFAllocatorDefault, url)};
    if (!parentUrl)
        return std::nullopt;
    std::optional<Place> place;
    if (const std::optional<FSRef> parent = fileReference(parentUrl.get())) {
        Reference<CFStringRef> component{CFURLCopyLastPathComponent(url)};
        if (component)
            place = Place{*parent, storedName(component.get())};
        component.reset();
    }
    parentUrl.reset();
    return place;
}

} // namespace

REALobjectStruct *NSURLRBFile(CFURLRef url) {
    if (url == nullptr)
        return nullptr;
    const std::optional<FSRef> item = fileReference(url);
    if (!item) {
        const std::optional<Place> place = placeToBe(url);
        return place ? REALFolderItemFromParentFSRef(&place->parent, &place->name) : nullptr;
    }
    if (const std::optional<REALobjectStruct *> result = folderItemInParent(*item))
        return *result;
    return folderItemByPath(*item);
}
