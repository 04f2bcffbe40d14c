#pragma once

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

/// While it lives, objects of a class answer a message with the test's function, which takes the
/// object, the selector and the arguments. The class must have the method, of its own or inherited.
class MethodSubstitute {
public:
    template <class Result, class... Arguments>
    MethodSubstitute(Class owner, SEL selector, Result (*function)(id, SEL, Arguments...))
        : method_(class_getInstanceMethod(owner, selector)),
          before_(method_setImplementation(
              method_, reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(function)))) {}
    ~MethodSubstitute() { method_setImplementation(method_, before_); }
    MethodSubstitute(const MethodSubstitute &) = delete;
    MethodSubstitute &operator=(const MethodSubstitute &) = delete;

private:
    Method method_;
    IMP before_;
};
