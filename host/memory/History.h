#pragma once

// What happened to one object or string, for the messages about it.

#include <array>
#include <cstddef>
#include <string>

namespace host {

/// Keeps the first event and the latest ones; costs no allocation.
class History {
public:
    /// Both texts must live as long as the host: "locked", "REALLockObject".
    void add(const char *what, const char *by) { events_[placeOf(count_++)] = {what, by}; }
    /// "made by PluginNewInstance, locked by REALLockObject, ..., freed by REALUnlockObject"
    [[nodiscard]] std::string text() const;

private:
    struct Event {
        const char *what;
        const char *by;
    };
    static constexpr std::size_t limit = 12;
    /// The events behind the first form a ring.
    static constexpr std::size_t placeOf(std::size_t event) {
        return event == 0 ? 0 : 1 + (event - 1) % (limit - 1);
    }
    std::array<Event, limit> events_{};
    std::size_t count_ = 0;
};

} // namespace host
