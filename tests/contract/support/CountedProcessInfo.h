#pragma once

#import "ProcessInfoDouble.h"

#include <functional>

/// A process-information object that counts the references taken and given back, and can fail at
/// either.
@interface CountedProcessInfo : ProcessInfoDouble {
@public
    int retains;
    int releases;
    std::function<void()> onRetain;  // runs first; may throw
    std::function<void()> onRelease; // likewise
}
@end

/// Answers another object, or nil, when it is retained.
@interface AnotherWhenRetained : ProcessInfoDouble {
@public
    id another; // not retained
}
@end
