// Plain functions as methods of existing classes.

#pragma once

#include <objc/runtime.h>

#include <bit>

namespace standin {

/// Makes the class answer the message with the function, which takes the object, the selector and
/// the arguments. `types` is the method's type code, in macOS's letters.
template <typename Result, typename... Arguments>
void replaceMethod(Class cls, const char *selector, Result (*function)(id, SEL, Arguments...),
                   const char *types) {
    class_replaceMethod(cls, sel_registerTypedName(selector, types), std::bit_cast<IMP>(function),
                        types);
}

} // namespace standin
