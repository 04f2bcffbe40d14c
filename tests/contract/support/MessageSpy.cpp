#include "MessageSpy.h"

#include "macos/loader/BridgeSymbols.h"

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <utility>

struct objc_object;
struct objc_selector;

using Implementation = void();
using Lookup = Implementation *(objc_object *, objc_selector *);

// The runtime's, declared here because its own headers have other types for them.
extern "C" const char *sel_getName(objc_selector *selector);
extern "C" Lookup objc_msg_lookup;

namespace {

struct Watch {
    const host::Image *image = nullptr; // null: nobody watches
    MessageSpy::Interruptions interruptions;
    std::vector<std::string> sent;
};
Watch watch;

Lookup *runtimesLookup() {
    static constinit Lookup *found = nullptr;
    if (found == nullptr)
        found = reinterpret_cast<Lookup *>(dlsym(RTLD_NEXT, "objc_msg_lookup"));
    return found;
}

/// The loader's functions that send a bundle's messages.
const std::vector<const char *> &loadersSends() {
    static const std::vector<const char *> sends = [] {
        std::vector<const char *> found;
        for (const macho::BridgeSymbol &symbol : macho::runtimeSymbols())
            if (symbol.name.starts_with("objc_msgSend"))
                found.push_back(static_cast<const char *>(symbol.address));
        return found;
    }();
    return sends;
}

bool isLoaders(const void *caller) {
    constexpr std::ptrdiff_t longestSend = 512; // bytes of code
    return std::ranges::any_of(loadersSends(), [=](const char *send) {
        const std::ptrdiff_t distance = static_cast<const char *>(caller) - send;
        return distance > 0 && distance < longestSend;
    });
}

/// Where the caller of the loader's function goes on, by the frame that this one keeps.
const void *callerOf(const void *const *frame) {
    return static_cast<const void *const *>(*frame)[1];
}

/// In the place of a method: it has the method's caller and may throw to it.
void interrupt() {
    const auto found = watch.interruptions.find(watch.sent.size());
    const auto action = found->second;
    action();
    std::abort();
}

Implementation *watched(objc_object *receiver, objc_selector *selector, bool sentByImage) {
    if (!sentByImage)
        return runtimesLookup()(receiver, selector);
    watch.sent.emplace_back(sel_getName(selector));
    return watch.interruptions.contains(watch.sent.size()) ? interrupt
                                                           : runtimesLookup()(receiver, selector);
}

} // namespace

// Stands before the runtime's function for everything in the process.
Implementation *objc_msg_lookup(objc_object *receiver, objc_selector *selector) {
    if (watch.image == nullptr || receiver == nullptr) [[likely]]
        return runtimesLookup()(receiver, selector);
    const void *caller = __builtin_return_address(0);
    if (isLoaders(caller))
        caller = callerOf(static_cast<const void *const *>(__builtin_frame_address(0)));
    return watched(receiver, selector, watch.image->contains(caller));
}

MessageSpy::MessageSpy(const host::Image &image, Interruptions interruptions) {
    loadersSends(); // sends messages itself, the first time
    watch.sent.clear();
    watch.interruptions = std::move(interruptions);
    watch.image = &image;
}

MessageSpy::~MessageSpy() {
    watch.image = nullptr;
}

const std::vector<std::string> &MessageSpy::sent() {
    return watch.sent;
}
