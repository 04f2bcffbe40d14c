// The pointer-wide integers that Cocoa counts with.

#pragma once
#pragma clang system_header

typedef long NSInteger;
typedef unsigned long NSUInteger;

#define NSIntegerMax __LONG_MAX__
#define NSIntegerMin (-__LONG_MAX__ - 1L)
#define NSUIntegerMax (__LONG_MAX__ * 2UL + 1UL)
