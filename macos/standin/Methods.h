// Plain functions as methods of existing classes.

#pragma once

#include <objc/runtime.h>

namespace standin {

/// Makes the class answer the message with the function, which takes the object, the selector and
/// the arguments. `types` is the method's type code, in macOS's letters.
template <typename Result, typename... Arguments>
void replaceMethod(Class cls, const char *selector, Result (*function)(id, SEL, Arguments...),
                   const char *types) {
    // By way of the function type that converts to any other.
    const auto imp = reinterpret_cast<IMP>(reinterpret_cast<void (*)()>(function));
    const SEL name = sel_registerTypedName(selector, types);
    if (!class_addMethod(cls, name, imp, types)) { // which leaves what the class inherits alone
        method_setImplementation(class_getInstanceMethod(cls, name), imp);
    }
    // The runtime leaves an existing method the type code of its old function.
    method_getDescription(class_getInstanceMethod(cls, name))->types = const_cast<char *>(types);
}

} // namespace standin
