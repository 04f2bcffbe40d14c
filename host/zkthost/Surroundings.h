#pragma once

namespace zkthost {

/// The command line as the process got it, ended by null: files may have names that are no UTF-8.
/// Null when there was no memory to keep it.
const char *const *originalArguments();

} // namespace zkthost
