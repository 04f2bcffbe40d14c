#include "StringCreationSpy.h"

#include "CoreFoundationCalls.h"
#include "TraceLines.h"

#include "host/core/Text.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdio>
#include <dlfcn.h>
#include <optional>

namespace {

struct Watch {
    const host::Image *image = nullptr;
    std::optional<CFStringRef> answer;
    std::function<void()> action;
};
Watch watch;

bool isWatched(const void *caller) {
    return watch.image != nullptr && watch.image->contains(caller);
}

void note(const char *function, CFAllocatorRef allocator, const std::string &arguments) {
    noteInTrace(std::string(function) +
                (allocator == kCFAllocatorDefault ? "(" : "(another allocator, ") + arguments +
                ')');
    if (watch.action)
        watch.action();
}

std::string shown(const UInt8 *bytes, CFIndex count) {
    if (bytes == nullptr)
        return "nil";
    return host::inQuotes({reinterpret_cast<const char *>(bytes), static_cast<std::size_t>(count)});
}

std::string shown(CFStringEncoding encoding) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", encoding);
    return text;
}

template <class Function>
Function *next(Function *, const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

// The program's own functions stand before the stand-in's, for everything loaded into it.

CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8 *bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation) {
    static const auto original = next(&CFStringCreateWithBytes, "CFStringCreateWithBytes");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFStringCreateWithBytes");
    if (isWatched(__builtin_return_address(0))) {
        note("CFStringCreateWithBytes", allocator,
             shown(bytes, count) + ", " + std::to_string(count) + ", " + shown(encoding) +
                 (isExternalRepresentation ? ", true" : ", false"));
        if (watch.answer)
            return *watch.answer;
    }
    return original(allocator, bytes, count, encoding, isExternalRepresentation);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar *characters,
                                         CFIndex count) {
    static const auto original =
        next(&CFStringCreateWithCharacters, "CFStringCreateWithCharacters");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFStringCreateWithCharacters");
    if (isWatched(__builtin_return_address(0))) {
        note("CFStringCreateWithCharacters", allocator,
             (characters == nullptr ? "nil, " : "pointer, ") + std::to_string(count));
        if (watch.answer)
            return *watch.answer;
    }
    return original(allocator, characters, count);
}

StringCreationSpy::StringCreationSpy(const host::Image &image) {
    watch = {};
    watch.image = &image;
}

StringCreationSpy::~StringCreationSpy() {
    watch = {};
}

void StringCreationSpy::answer(const void *string) {
    watch.answer = static_cast<CFStringRef>(string);
}

void StringCreationSpy::before(std::function<void()> action) {
    watch.action = std::move(action);
}
