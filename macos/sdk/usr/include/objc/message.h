// The message dispatch functions. They have no prototype of their own: cast one to the type of the
// method that it is to reach.

#pragma once
#pragma clang system_header

#include <objc/objc.h>

OBJC_EXPORT void objc_msgSend(void);       // results in integer, pointer and SSE registers
OBJC_EXPORT void objc_msgSend_stret(void); // results that are returned in memory
OBJC_EXPORT void objc_msgSend_fpret(void); // long double results
