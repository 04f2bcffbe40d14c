// What a plug-in does with the SDK: one use of each language feature that needs the runtime.

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

extern "C" __attribute__((visibility("default"))) long plugInMain(id object) {
    const id classes[] = {
        [NSProcessInfo class],  [NSString class],
        [NSNumber class],       [NSValue class],
        [NSCalendarDate class], [NSArray class],
        [NSSet class],          [NSDictionary class],
        [NSData class],         [NSURL class],
        [NSNull class],         [NSException class],
        [NSDate class],         [NSObject class],
        [NSTask class],         [NSAffineTransform class],
        [NSURLDownload class],  [NSAutoreleasePool class],
    };
    @try {
        NSProcessInfo *info = [NSProcessInfo processInfo];
        if ([object rectValue].size.width > [info systemUptime]) {
            return static_cast<long>([[info arguments] count]);
        }
        if ([info respondsToSelector:@selector(thermalState)]) {
            return [info thermalState];
        }
        if (&NSProcessInfoThermalStateDidChangeNotification != nullptr) {
            return CFStringGetLength((CFStringRef)NSProcessInfoThermalStateDidChangeNotification);
        }
        return [object isKindOfClass:classes[0]] ? class_getSuperclass([object class]) == Nil : 0;
    } @catch (NSException *exception) {
        NSLog(@"A %@: %@, Info: %@\n", [exception name], [exception reason], [exception userInfo]);
        return -1;
    }
}
