#include "host/core/Cocoa.h"

#import <Foundation/Foundation.h>

namespace host {

AutoreleasePool::AutoreleasePool() : pool_(pushAutoreleasePool()) {}

AutoreleasePool::~AutoreleasePool() {
    popAutoreleasePool(pool_);
}

void *pushAutoreleasePool() {
    return [[NSAutoreleasePool alloc] init];
}

void popAutoreleasePool(void *pool) {
    [static_cast<NSAutoreleasePool *>(pool) drain];
}

} // namespace host
