#include "CoreFoundationCalls.h"

#include <utility>

namespace {

struct Watch {
    const host::Image *image = nullptr; // null: nobody watches
    CoreFoundationCalls::Action action;
};
Watch watch;

} // namespace

CoreFoundationCalls::CoreFoundationCalls(const host::Image &image, Action action) {
    watch = {&image, std::move(action)};
}

CoreFoundationCalls::~CoreFoundationCalls() {
    watch = {};
}

bool CoreFoundationCalls::tell(const void *caller, std::string_view function) {
    return watch.image == nullptr || !watch.image->contains(caller) || watch.action(function);
}
