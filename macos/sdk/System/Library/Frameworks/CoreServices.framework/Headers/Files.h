// The File Manager: file references and what the catalog knows of them. Functions return 0 or a
// negative error code.

#pragma once
#pragma clang system_header

#include <CoreFoundation/CFAvailability.h>
#include <CoreFoundation/CFBase.h>

// A file reference: bytes without meaning to anyone but the File Manager.
struct FSRef {
    UInt8 hidden[80];
};
typedef struct FSRef FSRef;
typedef FSRef *FSRefPtr;

typedef struct FSSpec FSSpec; // an older form of file reference; only ever null here
typedef FSSpec *FSSpecPtr;

#pragma pack(push, 2) // the File Manager keeps the alignment of the 68000

struct HFSUniStr255 {
    UInt16 length; // in units, at most 255
    UniChar unicode[255];
};
typedef struct HFSUniStr255 HFSUniStr255;

struct UTCDateTime {
    UInt16 highSeconds;
    UInt32 lowSeconds;
    UInt16 fraction;
};
typedef struct UTCDateTime UTCDateTime;

typedef SInt16 FSVolumeRefNum;
typedef UInt32 FSCatalogInfoBitmap;

typedef struct __FSFileSec *FSFileSecRef;

struct FSPermissionInfo {
    UInt32 userID;
    UInt32 groupID;
    UInt8 reserved1;
    UInt8 userAccess;
    UInt16 mode;
    FSFileSecRef fileSec;
};
typedef struct FSPermissionInfo FSPermissionInfo;

struct FSCatalogInfo {
    UInt16 nodeFlags;
    FSVolumeRefNum volume;
    UInt32 parentDirID;
    UInt32 nodeID; // 2: the root folder of a volume
    UInt8 sharingFlags;
    UInt8 userPrivileges;
    UInt8 reserved1;
    UInt8 reserved2;
    UTCDateTime createDate;
    UTCDateTime contentModDate;
    UTCDateTime attributeModDate;
    UTCDateTime accessDate;
    UTCDateTime backupDate;
    FSPermissionInfo permissions;
    UInt8 finderInfo[16];
    UInt8 extFinderInfo[16];
    UInt64 dataLogicalSize;
    UInt64 dataPhysicalSize;
    UInt64 rsrcLogicalSize;
    UInt64 rsrcPhysicalSize;
    UInt32 valence;
    UInt32 textEncodingHint;
};
typedef struct FSCatalogInfo FSCatalogInfo;

#pragma pack(pop)

enum {
    kFSCatInfoNone = 0x00000000,
    kFSCatInfoNodeID = 0x00000010,
};

/// What the catalog knows of an existing item. `whichInfo` picks the fields of `catalogInfo` to
/// fill in; every output may be null. `fileSpec` must be null.
CF_EXPORT OSErr FSGetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo,
                                 FSCatalogInfo *catalogInfo, HFSUniStr255 *outName,
                                 FSSpecPtr fileSpec, FSRef *parentRef)
    CF_MACOS_DEPRECATED(10.0, 10.8);

/// Writes the item's POSIX path in UTF-8 with a terminating zero byte.
CF_EXPORT OSStatus FSRefMakePath(const FSRef *ref, UInt8 *path, UInt32 pathBufferSize)
    CF_MACOS_DEPRECATED(10.0, 10.8);
