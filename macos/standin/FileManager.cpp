// The File Manager over POSIX: the catalog of a volume is the file system's own.

#include "FileReferences.h"
#include "HfsNames.h"
#include "WideResults.h"

#include <algorithm>
#include <cstring>

namespace standin {
namespace {

enum : OSErr {
    noError = 0,
    noSuchVolume = -35,
    badName = -37,
    fileNotFound = -43,
    badParameter = -50,
    pathTooLong = -2110,
};

// The fields of FSCatalogInfo that this catalog can fill in.
constexpr FSCatalogInfoBitmap volumeField = 0x04;
constexpr FSCatalogInfoBitmap parentField = 0x08;
constexpr FSCatalogInfoBitmap nodeField = kFSCatInfoNodeID;
constexpr FSCatalogInfoBitmap knownFields = volumeField | parentField | nodeField;

// Node IDs with a meaning: the parent of a volume's root folder, the root folder, and the first
// that is not the volume's own.
constexpr UInt32 rootParentNode = 1;
constexpr UInt32 rootNode = 2;
constexpr UInt32 firstUserNode = 16;

constexpr FSVolumeRefNum onlyVolume = -100;

bool isVolumeRoot(const File &file) {
    struct stat parent;
    return file.path == "/" ||
           (S_ISDIR(file.status.st_mode) && lstat(parentPath(file.path).c_str(), &parent) == 0 &&
            parent.st_dev != file.status.st_dev);
}

// A node ID has 32 bits and some are reserved: an inode number is folded to what is left.
UInt32 nodeOf(const File &file) {
    if (isVolumeRoot(file)) {
        return rootNode;
    }
    const auto node = static_cast<UInt32>(file.status.st_ino);
    return node < firstUserNode ? node | 0x80000000U : node;
}

UInt32 parentNodeOf(const File &file) {
    if (isVolumeRoot(file)) {
        return rootParentNode;
    }
    File parent{.path = parentPath(file.path), .status = {}};
    return lstat(parent.path.c_str(), &parent.status) == 0 ? nodeOf(parent) : 0;
}

void fillInfo(const File &file, FSCatalogInfoBitmap fields, FSCatalogInfo &info) {
    if ((fields & volumeField) != 0) {
        info.volume = onlyVolume;
    }
    if ((fields & parentField) != 0) {
        info.parentDirID = parentNodeOf(file);
    }
    if ((fields & nodeField) != 0) {
        info.nodeID = nodeOf(file);
    }
}

OSErr fillName(const File &file, HFSUniStr255 &out) {
    const std::string name = file.path.substr(file.path.rfind('/') + 1);
    const auto units = hfsName(name.empty() ? "Linux" : name); // the boot volume needs some name
    if (!units || units->size() > std::size(out.unicode)) {
        return badName;
    }
    out.length = static_cast<UInt16>(units->size());
    std::ranges::copy(*units, out.unicode);
    return noError;
}

// The parent of a volume's root folder is no folder: the reference to it is not valid.
OSErr fillParent(const File &file, FSRef &parent) {
    parent = {};
    return isVolumeRoot(file) || makeReference(parentPath(file.path), parent) ? noError
                                                                              : fileNotFound;
}

// The bytes of no reference at all, as against one whose item has gone.
bool isBlank(const FSRef &ref) {
    return std::ranges::all_of(ref.hidden, [](UInt8 byte) { return byte == 0; });
}

} // namespace
} // namespace standin

extern "C" standin::WideOSErr getCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo,
                                             FSCatalogInfo *catalogInfo, HFSUniStr255 *outName,
                                             FSSpecPtr fileSpec,
                                             FSRef *parentRef) asm("FSGetCatalogInfo");

standin::WideOSErr getCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo,
                                  FSCatalogInfo *catalogInfo, HFSUniStr255 *outName,
                                  FSSpecPtr fileSpec, FSRef *parentRef) {
    using namespace standin;
    if (ref == nullptr || fileSpec != nullptr || (whichInfo & ~knownFields) != 0) {
        return badParameter;
    }
    const auto file = resolveReference(*ref);
    if (!file) {
        return isBlank(*ref) ? noSuchVolume : fileNotFound;
    }
    if (catalogInfo != nullptr) {
        fillInfo(*file, whichInfo, *catalogInfo);
    }
    OSErr status = outName != nullptr ? fillName(*file, *outName) : OSErr{noError};
    if (status == noError && parentRef != nullptr) {
        status = fillParent(*file, *parentRef);
    }
    return status;
}

OSStatus FSRefMakePath(const FSRef *ref, UInt8 *path, UInt32 pathBufferSize) {
    using namespace standin;
    if (ref == nullptr || path == nullptr) {
        return badParameter;
    }
    const auto file = resolveReference(*ref);
    if (!file) {
        return isBlank(*ref) ? noSuchVolume : fileNotFound;
    }
    if (file->path.size() + 1 > pathBufferSize) {
        return pathTooLong;
    }
    std::memcpy(path, file->path.c_str(), file->path.size() + 1);
    return noError;
}
