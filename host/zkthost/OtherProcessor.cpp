#include "host/zkthost/OtherProcessor.h"

#include "host/processor/Processor.h"
#include "host/zkthost/Options.h"
#include "host/zkthost/Surroundings.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

namespace zkthost {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse(std::string_view processor, const std::string &reason) {
    throw InputError("--arch " + std::string(processor) + ": this zkthost is for " +
                     std::string(processor::name) + reason);
}

} // namespace

void continueFor(std::string_view processor, const char *const *arguments) {
    // Beside the folder of this build; "" where this system runs no programs of the other
    // processor.
    const std::string otherBuild = OTHER_BUILD;
    if (otherBuild.empty())
        refuse(processor, ", and this system has no other");
    const fs::path folder = (programFile().parent_path() / ".." / otherBuild).lexically_normal();
    std::error_code ignored;
    std::vector<std::string> words;
    // A build whose programs need an emulator has its name for it.
    if (fs::exists(folder / "emulate", ignored))
        words.push_back(folder / "emulate");
    words.push_back(folder / "zkthost");
    if (!fs::exists(words.back(), ignored))
        refuse(processor,
               ", and there is no " + words.back() + " (" + OTHER_BUILD_COMMAND " builds it)");
    std::vector<char *> pointers;
    std::ranges::transform(words, std::back_inserter(pointers),
                           [](std::string &word) { return word.data(); });
    for (++arguments; *arguments != nullptr; ++arguments)
        pointers.push_back(const_cast<char *>(*arguments));
    pointers.push_back(nullptr);
    execv(pointers.front(), pointers.data());
    refuse(processor, ", and " + words.front() + " cannot be started: " + std::strerror(errno));
}

} // namespace zkthost
