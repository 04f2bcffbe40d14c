#include "host/zkthost/ForeignExceptions.h"

#import <Foundation/Foundation.h>

namespace zkthost {

std::optional<std::string> cocoaExceptionFrom(const std::function<void()> &body) {
    @try {
        body();
    } @catch (NSException *exception) {
        NSString *text =
            [NSString stringWithFormat:@"%@: %@", [exception name], [exception reason]];
        return std::string([text UTF8String]);
    }
    return std::nullopt;
}

} // namespace zkthost
