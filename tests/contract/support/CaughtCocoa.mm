#include "Caught.h"

#import <Foundation/Foundation.h>

std::optional<std::string> cocoaExceptionFrom(const std::function<void()> &body) {
    @try {
        body();
    } @catch (NSException *exception) {
        return std::string([[exception name] UTF8String]) + ": " + [[exception reason] UTF8String];
    }
    return std::nullopt;
}
