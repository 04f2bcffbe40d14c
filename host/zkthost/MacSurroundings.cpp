// macOS takes the command line and the environment as they are; only streams need care, before
// other libraries open files.

#include "host/zkthost/Surroundings.h"

#include <cstdint>
#include <mach-o/dyld.h>
#include <string>

namespace zkthost {

namespace {

[[gnu::constructor]] void prepare() {
    occupyStandardStreams();
}

} // namespace

const char *const *originalArguments() {
    return nullptr;
}

std::filesystem::path programFile() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size); // says the size alone
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0)
        return {};
    std::error_code error;
    return std::filesystem::canonical(path.c_str(), error);
}

} // namespace zkthost
