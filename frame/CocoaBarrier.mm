#include "frame/CocoaBarrier.h"

#include <Foundation/Foundation.h>

bool throwsCocoaObject(void (*function)(const void *), const void *argument) {
    @try {
        function(argument);
    } @catch (NSObject *) {
        return true;
    }
    return false;
}
