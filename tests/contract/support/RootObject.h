#pragma once

#import <Foundation/Foundation.h>

/// A root class of its own, with little of what the conversion asks of an object.
__attribute__((objc_root_class))
@interface RootObject {
    Class isa;
@public
    int references; ///< retained less released
}
- (BOOL)respondsToSelector:(SEL)selector; ///< to none
- (id)retain;
- (void)release;
@end

/// An object of the class or one below, in memory that is large enough, zeroed, and outlives it:
/// the class makes none itself.
RootObject *makeRootObject(void *memory, Class cls);
