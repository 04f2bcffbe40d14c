#include "host/crash/CrashHandler.h"

#include "host/crash/Places.h"
#include "host/crash/Registers.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>

namespace crash {

namespace {

struct SignalName {
    int signal;
    std::string_view name;
};
constexpr std::array<SignalName, 6> handled{{{SIGSEGV, "SIGSEGV"},
                                             {SIGBUS, "SIGBUS"},
                                             {SIGILL, "SIGILL"},
                                             {SIGFPE, "SIGFPE"},
                                             {SIGTRAP, "SIGTRAP"},
                                             {SIGABRT, "SIGABRT"}}};

/// Of a fault that the processor found, what its code says about the address.
struct Meaning {
    int signal;
    int code;
    std::string_view text;
};
constexpr std::array<Meaning, 6> meanings{{{SIGSEGV, SEGV_MAPERR, "nothing is mapped there"},
                                           {SIGSEGV, SEGV_ACCERR, "it must not be used so"},
                                           {SIGBUS, BUS_ADRERR, "nothing is behind it"},
                                           {SIGILL, ILL_ILLOPN, "no instruction"},
                                           {SIGILL, ILL_ILLOPC, "no instruction"},
                                           {SIGFPE, FPE_INTDIV, "a division by zero"}}};

constexpr unsigned secondsToLook = 30;

Handling handling{};
std::vector<LoadedImage> images;
Speaker prologue = nullptr;
Speaker actor = nullptr;
Speaker epilogue = nullptr;
std::atomic_flag isHandling;
// Finding out where it was takes more than the system's usual size.
alignas(16) std::array<std::byte, std::size_t{1} << 20> alternateStack;

void setDefault(int signal) {
    struct sigaction action{};
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
}

void nameSignal(Writer &writer, int signal, const siginfo_t &info) {
    for (const SignalName &each : handled)
        if (each.signal == signal)
            writer << each.name;
    // Sent by a process, abort() among them.
    if (info.si_code <= 0)
        return;
    // An address that the processor does not have is not told.
    if (info.si_code == SI_KERNEL) {
        writer << " at an address that no memory can have";
        return;
    }
    writer << " at ";
    writer.address(reinterpret_cast<std::uintptr_t>(info.si_addr));
    for (const Meaning &each : meanings)
        if (each.signal == signal && each.code == info.si_code)
            writer << " (" << each.text << ")";
}

const LoadedImage *imageAt(std::uintptr_t address) {
    const auto found = std::ranges::find_if(
        images, [&](const LoadedImage &image) { return address - image.base < image.size; });
    return found == images.end() ? nullptr : &*found;
}

/// The way to the crash up to the plug-in's part of it; without one, its last steps.
void tellTheWay(const ucontext_t &context) {
    constexpr std::size_t stepsOutside = 8;
    const std::vector<std::uintptr_t> way = backtrace(context);
    std::size_t steps = std::min(way.size(), stepsOutside);
    for (std::size_t i = 0; i < way.size(); ++i)
        if (imageAt(way[i]) != nullptr)
            steps = i + 1;
    Writer writer;
    for (std::size_t i = 0; i < steps;) {
        std::size_t next = i + 1;
        while (next < steps && way[next] == way[i])
            ++next;
        writer << "  " << placeInWords(way[i], images);
        if (next - i > 1)
            (writer << ", ").decimal(next - i) << " times";
        writer << "\n";
        writer.flush();
        i = next;
    }
}

/// In a process of its own: memory may be damaged, and what looks at it may crash or wait for ever.
bool tellTheWayApart(const ucontext_t &context) {
    const pid_t process = _Fork();
    if (process == 0) {
        for (const SignalName &each : handled)
            setDefault(each.signal);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        setDefault(SIGALRM);
        alarm(secondsToLook);
        tellTheWay(context);
        _exit(0);
    }
    int status = -1;
    while (process > 0 && waitpid(process, &status, 0) < 0 && errno == EINTR)
        ;
    return process > 0 && status == 0;
}

void tell(int signal, const siginfo_t &info, const ucontext_t &context) {
    Writer writer;
    if (prologue != nullptr)
        prologue(writer);
    writer << handling.program << ": ";
    if (actor != nullptr)
        actor(writer);
    nameSignal(writer, signal, info);
    writer << "\n";
    writer.flush();
    const auto address = registersOf(context).instruction;
    if (!tellTheWayApart(context)) {
        writer << "  at ";
        const LoadedImage *const image = imageAt(address);
        if (image != nullptr)
            (writer << image->file.native() << "+").address(address - image->base);
        else
            writer.address(address);
        writer << "; the way there cannot be told, memory may be damaged\n";
    }
    for (const LoadedImage &image : images)
        (writer << "  " << image.file.native() << " is loaded at ").address(image.base) << "\n";
    if (epilogue != nullptr)
        epilogue(writer);
}

void onCrash(int signal, siginfo_t *info, void *context) {
    if (!isHandling.test_and_set())
        tell(signal, *info, *static_cast<ucontext_t *>(context));
    if (handling.status)
        _exit(*handling.status);
    setDefault(signal);
    raise(signal);
}

} // namespace

void handleCrashes(const Handling &wanted) {
    handling = wanted;
    const stack_t stack{
        .ss_sp = alternateStack.data(), .ss_flags = 0, .ss_size = alternateStack.size()};
    sigaltstack(&stack, nullptr);
    struct sigaction action{};
    action.sa_sigaction = onCrash;
    // A crash of the handler itself is to reach it too.
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    for (const SignalName &each : handled)
        sigaction(each.signal, &action, nullptr);
}

void addImage(const std::filesystem::path &file, const void *base, std::size_t size) {
    images.push_back({file, reinterpret_cast<std::uintptr_t>(base), size});
}

void setActor(Speaker speaker) {
    actor = speaker;
}

void setPrologue(Speaker speaker) {
    prologue = speaker;
}

void setEpilogue(Speaker speaker) {
    epilogue = speaker;
}

} // namespace crash
