#include "tests/host/FileReference.h"

#include <CoreServices/CoreServices.h>
#import <Foundation/Foundation.h>

bool makeFileReference(const std::filesystem::path &path, void *reference) {
    NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
    NSURL *url = [NSURL fileURLWithPath:[NSString stringWithUTF8String:path.c_str()]];
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    const bool found = CFURLGetFSRef((CFURLRef)url, static_cast<FSRef *>(reference));
#pragma clang diagnostic pop
    [pool drain];
    return found;
}
