#include "host/zkthost/Output.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace zkthost {

namespace {

/// Gives 0 or the error's number.
int writeAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written >= 0)
            text.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            return errno;
    }
    return 0;
}

} // namespace

void print(std::string_view text) {
    if (const int error = writeAll(STDOUT_FILENO, text))
        throw OutputError(std::string("standard output cannot be written: ") +
                          std::strerror(error));
}

void printError(std::string_view text) {
    writeAll(STDERR_FILENO, text);
}

bool wantsColours() {
    const char *refusal = std::getenv("NO_COLOR");
    const char *terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) != 0 && (refusal == nullptr || *refusal == '\0') &&
           terminal != nullptr && std::string_view(terminal) != "dumb";
}

std::size_t terminalWidth() {
    winsize size{};
    return isatty(STDOUT_FILENO) != 0 && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col
                                                                                      : 0;
}

} // namespace zkthost
