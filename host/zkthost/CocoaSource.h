#pragma once

// Cocoa objects of the user's choice.

#include <filesystem>
#include <string>

namespace zkthost {

/// Owns one reference to a Cocoa object.
class CocoaSource {
public:
    /// What the property list file holds. Throws InputError for a file that cannot be read and for
    /// one that holds no property list.
    static CocoaSource propertyList(const std::filesystem::path &file);
    /// [[Class alloc] init]. Throws InputError for a class that is not there, that is no NSObject
    /// and that makes no instance.
    static CocoaSource instanceOf(const std::string &className);
    /// A property list with a value of every kind.
    static CocoaSource example();

    CocoaSource(CocoaSource &&other) noexcept;
    CocoaSource &operator=(CocoaSource &&) = delete;
    ~CocoaSource();

    /// An object whose environment is a dictionary that holds the source under "value": in the
    /// place of the process-information object, it feeds the source to the plug-in. Borrowed; lives
    /// as long as this.
    [[nodiscard]] void *asEnvironment() const { return holder_; }

private:
    explicit CocoaSource(void *holder) : holder_(holder) {}

    void *holder_;
};

} // namespace zkthost
