#pragma once

#include "Alone.h"

#include "host/image/Image.h"

#include <functional>

/// Stands between one image and the Core Foundation functions that make strings from bytes. Each
/// call by the image is a line of the host's trace, the default allocator left out:
/// CFStringCreateWithBytes("abc", 3, 0x00000600, true), CFStringCreateWithCharacters(pointer, 3).
/// One at a time; for all other callers the functions are as ever.
class StringCreationSpy {
public:
    explicit StringCreationSpy(const host::Image &image);
    ~StringCreationSpy();
    StringCreationSpy(const StringCreationSpy &) = delete;
    StringCreationSpy &operator=(const StringCreationSpy &) = delete;

    /// The image gets this from now on, with a reference that is the test's to give; nil is none.
    void answer(const void *string);
    /// Runs behind the line, before the function; may throw.
    void before(std::function<void()> action);

private:
    Alone<StringCreationSpy> alone_;
};
