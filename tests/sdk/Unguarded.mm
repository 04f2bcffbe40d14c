// Newer than the deployment target, so that the uses do not compile for macOS while unguarded
// availability is an error.

#import <Foundation/Foundation.h>

id newerThanTarget(NSProcessInfo *info) {
#if defined(USE_THERMAL_STATE)
    return [info thermalState] == 0 ? info : nil;
#elif defined(USE_NOTIFICATION)
    return info == nil ? nil : NSProcessInfoThermalStateDidChangeNotification;
#else
    return [info beginActivityWithOptions:NSActivityBackground reason:@""];
#endif
}
