#include "host/core/Cocoa.h"

#import <Foundation/Foundation.h>

namespace host {

void startFoundation(int argc, char **argv, char **environment) {
    [NSProcessInfo initializeWithArguments:argv count:argc environment:environment];
}

const char *foundationName() {
    return "GNUstep";
}

} // namespace host
