#pragma once

#include "host/Host.h"

#import <Foundation/Foundation.h>

#include <string>

/// A structure value of any type code. The messages that read it are lines of the host's trace:
/// [value rectValue]; so are the questions whether it knows a hook, and the hooks themselves.
@interface TracedValue : NSValue {
@public
    std::string code;
    NSRect rect; // rectValue; its size is sizeValue, its origin pointValue
    NSRange range;
    bool knowsHooks;
    host::ObjectHandle hookAnswer; // not retained
}
@end
