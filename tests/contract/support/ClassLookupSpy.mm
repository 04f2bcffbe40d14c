#include "ClassLookupSpy.h"

#include <dlfcn.h>
#include <objc/runtime.h>

#include <map>

namespace {

const host::Image *watched = nullptr;
std::map<std::string, std::size_t> counts;

} // namespace

// The program's own function stands before the runtime's, for everything loaded into it.
Class objc_getClass(const char *name) {
    static const auto original =
        reinterpret_cast<decltype(&objc_getClass)>(dlsym(RTLD_NEXT, "objc_getClass"));
    if (watched != nullptr && watched->contains(__builtin_return_address(0)))
        ++counts[name];
    return original(name);
}

ClassLookupSpy::ClassLookupSpy(const host::Image &image) {
    counts.clear();
    watched = &image;
}

ClassLookupSpy::~ClassLookupSpy() {
    watched = nullptr;
}

std::size_t ClassLookupSpy::count(const std::string &name) const {
    const auto found = counts.find(name);
    return found == counts.end() ? 0 : found->second;
}

std::vector<std::string> ClassLookupSpy::names() const {
    std::vector<std::string> all;
    for (const auto &[name, times] : counts)
        all.insert(all.end(), times, name);
    return all;
}
