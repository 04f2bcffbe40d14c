// One cell: a process of its own, and what leaves an operation.

#include "FaultMatrix.h"

#include "ActingScene.h"
#include "Caught.h"
#include "System.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace matrix {

namespace {

[[noreturn]] void fail(const char *what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void writeAll(int file, const std::string &text) {
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = write(file, text.data() + written, text.size() - written);
        if (count <= 0)
            _exit(1);
        written += static_cast<std::size_t>(count);
    }
}

std::string readAll(int file) {
    std::string text;
    std::array<char, 4096> buffer;
    for (ssize_t count = 0; (count = read(file, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    return text;
}

} // namespace

void throwOf(Fault fault) {
    switch (fault) {
    case Fault::badAlloc:
        throw std::bad_alloc();
    case Fault::outOfRange:
        throw std::out_of_range("out of range");
    case Fault::lengthError:
        throw std::length_error("too long");
    case Fault::number:
        throw 42;
    case Fault::cocoa:
        raiseNSException("Fault", "raised");
    default:
        return;
    }
}

std::string leaving(const std::function<void()> &body) {
    try {
        const auto cocoa = cocoaExceptionFrom(body);
        return cocoa ? "NSException " + *cocoa : "";
    } catch (const std::bad_alloc &) {
        return "std::bad_alloc";
    } catch (const std::out_of_range &exception) {
        return std::string("std::out_of_range: ") + exception.what();
    } catch (const std::length_error &exception) {
        return std::string("std::length_error: ") + exception.what();
    } catch (const std::exception &exception) {
        return std::string("std::exception: ") + exception.what();
    } catch (int number) {
        return "int " + std::to_string(number);
    }
}

std::string inChild(const std::function<std::string()> &body) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        fail("pipe");
    // Not inherited: what children write to stderr one after the other is read as one child's.
    const int log = anonymousFile("log");
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0 || log < 0)
        fail("fork");
    if (child == 0) {
        close(ends[0]);
        dup2(log, STDERR_FILENO);
        writeAll(ends[1], body());
        _exit(0);
    }
    close(ends[1]);
    std::string text = readAll(ends[0]);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        text = WIFSIGNALED(status) ? "died of signal " + std::to_string(WTERMSIG(status))
                                   : "ended with status " + std::to_string(WEXITSTATUS(status));
        lseek(log, 0, SEEK_SET);
        text += '\n' + readAll(log);
    }
    close(log);
    return text;
}

} // namespace matrix
