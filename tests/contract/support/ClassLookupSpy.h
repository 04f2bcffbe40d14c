#pragma once

#include "Alone.h"

#include "host/image/Image.h"

#include <string>
#include <vector>

/// Counts the classes that one image looks up by name with objc_getClass. One at a time; counts
/// while it lives.
class ClassLookupSpy {
public:
    explicit ClassLookupSpy(const host::Image &image);
    ~ClassLookupSpy();
    ClassLookupSpy(const ClassLookupSpy &) = delete;
    ClassLookupSpy &operator=(const ClassLookupSpy &) = delete;

    /// How often the name was asked for.
    [[nodiscard]] std::size_t count(const std::string &name) const;
    /// All names that were asked for, by the alphabet, each as often.
    [[nodiscard]] std::vector<std::string> names() const;

private:
    Alone<ClassLookupSpy> alone_;
};
