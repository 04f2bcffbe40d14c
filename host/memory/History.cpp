#include "host/memory/History.h"

namespace host {

std::string History::text() const {
    std::string result;
    const auto append = [&](const Event &event) {
        result += result.empty() ? "" : ", ";
        result += event.what;
        result += " by ";
        result += event.by;
    };
    if (count_ == 0)
        return "no events";
    append(events_[0]);
    const std::size_t oldest = count_ > limit ? count_ - limit + 1 : 1;
    if (oldest > 1)
        result += ", (" + std::to_string(oldest - 1) + " more)";
    for (std::size_t event = oldest; event < count_; ++event)
        append(events_[placeOf(event)]);
    return result;
}

} // namespace host
