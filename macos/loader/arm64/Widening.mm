#import <Foundation/Foundation.h>

#include <array>
#include <cstdint>
#include <cstring>

#include <objc/runtime.h>

// An image takes it for granted that a method widens an answer of eight or sixteen bits to 32
// before it returns. Methods of this system leave that to their callers.

namespace {

/// How far to the left an answer is moved, and back; the highest bit is set when its sign comes
/// along. 0: it is wide enough.
using Widening = std::uint8_t;
constexpr Widening hasSign = 0x80, byte = 24, half = 16;

Widening wideningOf(const char *answer) {
    switch (answer[std::strspn(answer, "rnNoORV")]) { // behind qualifiers
    case 'c':
        return hasSign | byte;
    case 'C':
    case 'B':
        return byte;
    case 's':
        return hasSign | half;
    case 'S':
        return half;
    default:
        return 0;
    }
}

struct Known {
    Class cls;
    SEL selector;
    Widening widening;
};

thread_local std::array<Known, 256> known;

} // namespace

/// What has to be done to the answer of the object's method. Called for every message: looking the
/// method's types up each time would take longer than all the rest.
extern "C" unsigned machoWidening(id receiver, SEL selector) {
    const Class cls = object_getClass(receiver);
    const auto mixed =
        reinterpret_cast<std::uintptr_t>(cls) * 31 + reinterpret_cast<std::uintptr_t>(selector);
    auto &entry = known[(mixed >> 4 ^ mixed >> 12) % known.size()];
    if (entry.cls == cls && entry.selector == selector)
        return entry.widening;
    const Method method = class_getInstanceMethod(cls, selector);
    const char *const types = method == nullptr ? nullptr : method_getTypeEncoding(method);
    entry = {cls, selector, types == nullptr ? Widening{0} : wideningOf(types)};
    return entry.widening;
}
