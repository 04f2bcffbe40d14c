#pragma once

#include "Alone.h"

#include "host/image/Image.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Stands between one image and the Core Foundation functions for strings and dictionaries that it
/// calls itself. One at a time; without one, and for all other callers, the functions are as ever.
class CoreFoundationSpy {
public:
    explicit CoreFoundationSpy(const host::Image &image);
    ~CoreFoundationSpy();
    CoreFoundationSpy(const CoreFoundationSpy &) = delete;
    CoreFoundationSpy &operator=(const CoreFoundationSpy &) = delete;

    /// In order, with plain arguments: "CFStringGetLength", "CFStringGetCString(600, 0x08000100)",
    /// "CFDictionaryGetValue", "CFDictionarySetValue", "CFDictionaryRemoveValue".
    [[nodiscard]] std::vector<std::string> calls() const;

    /// Runs before each call of the function; may throw.
    void before(std::string_view function, std::function<void()> action);
    /// What CFStringGetLength answers instead of the length.
    void answerLength(long length);
    /// CFStringGetCString answers false and writes nothing.
    void refuseConversion();

private:
    Alone<CoreFoundationSpy> alone_;
};
