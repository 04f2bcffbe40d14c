#include "host/Cocoa.h"

#import <Foundation/Foundation.h>

#include <exception>

namespace host {

AutoreleasePool::AutoreleasePool()
    : pool_([[NSAutoreleasePool alloc] init]), exceptionsInFlight_(std::uncaught_exceptions()) {}

AutoreleasePool::~AutoreleasePool() {
    if (std::uncaught_exceptions() == exceptionsInFlight_)
        [static_cast<NSAutoreleasePool *>(pool_) drain];
}

void startFoundation(int argc, char **argv, char **environment) {
    [NSProcessInfo initializeWithArguments:argv count:argc environment:environment];
}

} // namespace host
