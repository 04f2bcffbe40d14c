#pragma once

#import <Foundation/Foundation.h>

#include <string>

/// A Core Foundation string: mutable or not by what its holder was promised, and any units at all,
/// where GNUstep's own strings refuse lone surrogates and drop a byte order mark.
@interface StandInString : NSMutableString {
@public
    std::u16string text;
}
@end
