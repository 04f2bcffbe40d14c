#include "host/core/PluginCall.h"

namespace host {

namespace {

thread_local const PluginCall *innermost = nullptr;
thread_local std::optional<std::string> lastThrower;

} // namespace

PluginCall::PluginCall(Kind kind, std::string_view className, std::string_view member)
    : kind_(kind), className_(className), member_(member), outer_(innermost) {
    innermost = this;
}

PluginCall::~PluginCall() {
    innermost = outer_;
    if (done_)
        return;
    lastThrower.emplace();
    for (const std::string_view word : words())
        *lastThrower += word;
}

void PluginCall::done() {
    done_ = true;
    // On its way an exception runs destructors that know nothing of it.
    if (kind_ != Kind::destructor)
        lastThrower.reset();
}

std::array<std::string_view, 5> PluginCall::words() const {
    switch (kind_) {
    case Kind::entryPoint:
        return {"the entry point"};
    case Kind::constructor:
        return {"New ", className_};
    case Kind::destructor:
        return {"the destructor of ", className_};
    case Kind::setter:
        return {"setting ", className_, ".", member_};
    case Kind::member:
        break;
    }
    return {className_, ".", member_};
}

const PluginCall *PluginCall::current() {
    return innermost;
}

const std::optional<std::string> &PluginCall::thrower() {
    return lastThrower;
}

} // namespace host
