// The classic fixed-width scalar types of macOS.

#pragma once
#pragma clang system_header

#include <stdint.h>

typedef unsigned char Boolean; // 0 or 1, unlike the signed BOOL of Objective-C
typedef uint8_t UInt8;
typedef int8_t SInt8;
typedef uint16_t UInt16;
typedef int16_t SInt16;
typedef unsigned int UInt32;
typedef signed int SInt32;
typedef unsigned long long UInt64;
typedef signed long long SInt64;

typedef SInt16 OSErr;
typedef SInt32 OSStatus;

typedef UInt16 UniChar;
