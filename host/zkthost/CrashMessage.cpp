#include "host/zkthost/CrashMessage.h"

#include <array>
#include <csignal>
#include <unistd.h>
#include <utility>

namespace zkthost {

namespace {

constexpr std::array signals = {SIGSEGV, SIGBUS, SIGILL, SIGFPE};

std::string text;
std::array<struct sigaction, signals.size()> former{};

void endWithMessage(int /*signal*/) {
    static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
    _exit(2);
}

} // namespace

CrashMessage::CrashMessage(std::string message) {
    text = std::move(message) + '\n';
    struct sigaction action{};
    action.sa_handler = endWithMessage;
    for (std::size_t i = 0; i < signals.size(); ++i)
        sigaction(signals.at(i), &action, &former.at(i));
}

CrashMessage::~CrashMessage() {
    for (std::size_t i = 0; i < signals.size(); ++i)
        sigaction(signals.at(i), &former.at(i), nullptr);
}

} // namespace zkthost
