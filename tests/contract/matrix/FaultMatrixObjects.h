#pragma once

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include <string>

/// A number of any type code, whose value is 5.
@interface MatrixNumber : NSNumber {
@public
    const char *code; // not copied
}
@end

/// A value of any type code, with the fields 1, 2, 3, 4. It knows the hooks for times if told so,
/// and answers them with one host object.
@interface MatrixValue : NSValue {
@public
    const char *code; // not copied
    BOOL knowsHooks;
    void *hookAnswer;
}
@end

/// Data of any length over a few bytes: for what looks at no more than these.
@interface MatrixData : NSData {
@public
    NSUInteger size;
}
@end

/// An object of Core Foundation with this type.
@interface MatrixTyped : NSObject {
@public
    CFTypeID type;
}
- (CFTypeID)_cfTypeID;
@end

/// An object of no class that is known for anything, which denies that it is one of Core
/// Foundation.
@interface MatrixThing : NSObject
@end

/// An empty class of this name below NSObject, made if there is none; for the life of the process.
Class matrixClass(const char *name);
