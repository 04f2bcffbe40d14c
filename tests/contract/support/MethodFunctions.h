#pragma once

#import <Foundation/Foundation.h>

#include <objc/runtime.h>

/// A function as the implementation of a method: self and the selector come first.
template <class Function>
IMP implementationOf(Function *function) {
    return reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(function));
}

/// The other way round.
template <class Signature>
Signature *functionOf(IMP implementation) {
    return reinterpret_cast<Signature *>(reinterpret_cast<void (*)()>(implementation));
}
