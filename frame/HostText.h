#pragma once

#include "frame/HostTypes.h"

#include <cstdint>

/// Makes a host string from text in the given host encoding. The caller owns the result, which is
/// null for null data and for lengths (in bytes) outside 1 to 2,147,483,647. UTF-16 (host byte
/// order) and UTF-32 text comes out as UTF-8, every other text in its own encoding. A C++ exception
/// on the way becomes a host exception, and the result null.
///
/// Text and exceptions need each other: building text reports through RaiseException, which builds
/// its message as text. So the frame declares this, and bridge/HostText.cpp defines it.
REALstringStruct *REALBuildUnicodeString(const char *data, std::int64_t length,
                                         std::uint32_t encoding);

/// Makes a UTF-8 host string, owned by the caller, from UTF-16 text in host byte order. The length
/// is in bytes and must be in the range that REALBuildUnicodeString has checked; exceptions pass.
REALstringStruct *REALBuildUnicodeStringUTF16(const void *data, std::int64_t length);
