#include "host/core/Trace.h"

#include <utility>

namespace host {

void Trace::lookup(std::string_view name, bool found) {
    if (!on_)
        return;
    entries_.push_back({false, (found ? "find " : "miss ") + std::string(name)});
    if (listener_)
        listener_->stood(entries_.back().text);
}

std::size_t Trace::begin(std::string line) {
    entries_.push_back({true, std::move(line)});
    const std::size_t place = firstPlace_ + entries_.size() - 1;
    if (listener_)
        listener_->begun(place, entries_.back().text);
    return place;
}

void Trace::end(std::size_t place, std::string_view text) {
    if (place < firstPlace_ || place - firstPlace_ >= entries_.size())
        return;
    std::string &line = entries_[place - firstPlace_].text;
    line += text;
    if (listener_)
        listener_->ended(place, line, text);
}

std::vector<std::string> Trace::all() const {
    std::vector<std::string> result;
    result.reserve(entries_.size());
    for (const Entry &entry : entries_)
        result.push_back(entry.text);
    return result;
}

std::vector<std::string> Trace::select(bool calls) const {
    std::vector<std::string> result;
    for (const Entry &entry : entries_)
        if (entry.isCall == calls)
            result.push_back(entry.text);
    return result;
}

std::vector<std::string> Trace::calls() const {
    return select(true);
}

std::vector<std::string> Trace::lookups() const {
    return select(false);
}

void Trace::clear() {
    firstPlace_ += entries_.size();
    entries_.clear();
}

} // namespace host
