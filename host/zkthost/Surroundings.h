#pragma once

#include <filesystem>

namespace zkthost {

/// The command line as the process got it, ended by null: files may have names that are no UTF-8.
/// Null when main has it unchanged, and when there was no memory to keep it.
const char *const *originalArguments();

/// Where this program is; "" when the system does not say.
std::filesystem::path programFile();

/// What is opened later does not take the place of a standard stream that was closed: writing to it
/// fails as it would have. Safe before libraries have started.
void occupyStandardStreams();

} // namespace zkthost
