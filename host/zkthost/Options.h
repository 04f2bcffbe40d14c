#pragma once

// The command line of zkthost.

#include "host/Host.h"
#include "host/classes/Description.h"
#include "host/processor/Processor.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zkthost {

enum class Command { describe, report, call, convert, run };

struct Options {
    Command command = Command::report;
    host::DescriptionFormat format = host::DescriptionFormat::text;
    std::filesystem::path image; ///< never empty
    bool imageIsDefault = true;
    std::string_view processor = processor::name; ///< that the image is to be run for
    host::HostOptions host = {};
    std::vector<std::string> withoutServices = {};
    bool trace = false;
    std::string expression = {}; ///< of call
    /// Of run: the program's file and arguments; nothing for the prompt.
    std::vector<std::string> program = {};
    /// Of describe, for the reference: the folder of its words.
    std::optional<std::filesystem::path> words = {};
    // Of convert, at most one; neither: the example.
    std::optional<std::filesystem::path> propertyList = {};
    std::optional<std::string> cocoaClass = {};
};

/// Input that cannot be worked with: one line for the user.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What to print instead of running (help), or the options. Throws InputError.
struct CommandLine {
    std::optional<std::string> text;
    Options options;
};
CommandLine parseCommandLine(int argc, const char *const *argv);

} // namespace zkthost
