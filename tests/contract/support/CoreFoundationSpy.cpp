#include "CoreFoundationSpy.h"

#include "CoreFoundationCalls.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstdio>
#include <dlfcn.h>
#include <map>

namespace {

struct Watch {
    const host::Image *image = nullptr;
    std::vector<std::string> calls;
    std::map<std::string, std::function<void()>, std::less<>> actions;
    std::optional<long> length;
    bool refusesConversion = false;
};
Watch watch;

/// True when the call is the image's own and somebody watches it.
bool note(const void *caller, std::string_view function, std::string_view arguments = {}) {
    if (watch.image == nullptr || !watch.image->contains(caller))
        return false;
    watch.calls.push_back(std::string(function) + std::string(arguments));
    if (const auto found = watch.actions.find(function); found != watch.actions.end())
        found->second();
    return true;
}

template <class Function>
Function *next(Function *, const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

std::string conversionArguments(CFIndex size, CFStringEncoding encoding) {
    char text[64];
    std::snprintf(text, sizeof text, "(%ld, 0x%08X)", static_cast<long>(size), encoding);
    return text;
}

} // namespace

// The program's own functions stand before the stand-in's, for everything loaded into it.

CFIndex CFStringGetLength(CFStringRef string) {
    static const auto original = next(&CFStringGetLength, "CFStringGetLength");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFStringGetLength");
    if (note(__builtin_return_address(0), "CFStringGetLength") && watch.length)
        return *watch.length;
    return original(string);
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex size,
                           CFStringEncoding encoding) {
    static const auto original = next(&CFStringGetCString, "CFStringGetCString");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFStringGetCString");
    if (note(__builtin_return_address(0), "CFStringGetCString",
             conversionArguments(size, encoding)) &&
        watch.refusesConversion)
        return false;
    return original(string, buffer, size, encoding);
}

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key) {
    static const auto original = next(&CFDictionaryGetValue, "CFDictionaryGetValue");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFDictionaryGetValue");
    note(__builtin_return_address(0), "CFDictionaryGetValue");
    return original(dictionary, key);
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void *key, const void *value) {
    static const auto original = next(&CFDictionarySetValue, "CFDictionarySetValue");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFDictionarySetValue");
    note(__builtin_return_address(0), "CFDictionarySetValue");
    original(dictionary, key, value);
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void *key) {
    static const auto original = next(&CFDictionaryRemoveValue, "CFDictionaryRemoveValue");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFDictionaryRemoveValue");
    note(__builtin_return_address(0), "CFDictionaryRemoveValue");
    original(dictionary, key);
}

CoreFoundationSpy::CoreFoundationSpy(const host::Image &image) {
    watch = {};
    watch.image = &image;
}

CoreFoundationSpy::~CoreFoundationSpy() {
    watch = {};
}

std::vector<std::string> CoreFoundationSpy::calls() const {
    return watch.calls;
}

void CoreFoundationSpy::before(std::string_view function, std::function<void()> action) {
    watch.actions.insert_or_assign(std::string(function), std::move(action));
}

void CoreFoundationSpy::answerLength(long length) {
    watch.length = length;
}

void CoreFoundationSpy::refuseConversion() {
    watch.refusesConversion = true;
}
