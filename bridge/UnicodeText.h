#pragma once

#include "frame/HostText.h"

// Makes a UTF-8 host string, owned by the caller, from UTF-16 text in host byte order. The length
// is in bytes and must be in the range that REALBuildUnicodeString has checked; exceptions pass.
REALstringStruct *REALBuildUnicodeStringUTF16(const void *data, std::int64_t length);
