#pragma once

// Who of a plug-in is at work: for what is said about exceptions and crashes.

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// A call into a plug-in's code, for as long as it lasts. Calls nest, since a plug-in may ask the
/// host for what leads into a plug-in again. Each thread has its own.
class PluginCall {
public:
    enum class Kind { entryPoint, constructor, destructor, member, setter };

    /// The names must live as long as the call.
    PluginCall(Kind kind, std::string_view className, std::string_view member = {});
    /// Without done(), an exception of the plug-in ended the call.
    ~PluginCall();
    PluginCall(const PluginCall &) = delete;
    PluginCall &operator=(const PluginCall &) = delete;

    void done();

    /// "NSProcessInfoZKT.hostName", "New NSProcessInfoZKT", in pieces: a signal handler can put
    /// them together.
    [[nodiscard]] std::array<std::string_view, 5> words() const;

    /// The innermost call; null when no plug-in is at work.
    static const PluginCall *current();
    /// The call that an exception left last, in words; none when a call has ended well since then.
    static const std::optional<std::string> &thrower();

private:
    Kind kind_;
    std::string_view className_;
    std::string_view member_;
    const PluginCall *outer_;
    bool done_ = false;
};

} // namespace host
