// zkthost: loads a plug-in into the reference host and shows what it gives to programs.
//
// Exit status: 0 fine; 1 the plug-in misbehaved (violations, leaks, a foreign exception);
// 2 the input cannot be worked with (one line on stderr); 3 what was called raised an exception;
// 5 zkthost itself failed.
// A plug-in that misbehaved gives 1 whatever follows from it; its violations stand first.

#include "host/Host.h"
#include "host/classes/Description.h"
#include "host/core/Cocoa.h"
#include "host/core/PluginCall.h"
#include "host/zkthost/Call.h"
#include "host/zkthost/CocoaSource.h"
#include "host/zkthost/Convert.h"
#include "host/zkthost/CrashMessage.h"
#include "host/zkthost/ForeignExceptions.h"
#include "host/zkthost/Options.h"
#include "host/zkthost/Report.h"
#include "host/zkthost/RunProgram.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

enum Status { fine = 0, misbehaved = 1, badInput = 2, raisedException = 3, failed = 5 };

void print(std::FILE *stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
}

Status complain(const std::string &what, Status status) {
    print(stderr, "zkthost: " + what + '\n');
    return status;
}

bool wantsColours() {
    const char *terminal = std::getenv("TERM");
    return isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr &&
           terminal != nullptr && std::string_view(terminal) != "dumb";
}

/// Tells what the plug-in did wrong until now; leaks are known once the host has been shut down.
Status verdict(host::Host &host) {
    const auto &violations = host.violations();
    std::fflush(stdout);
    for (const std::string &violation : violations)
        print(stderr, "violation: " + violation + '\n');
    return violations.empty() ? fine : misbehaved;
}

/// For work that ended early: what the plug-in did wrong until then may be the cause, and is then
/// the status.
Status giveUp(host::Host &host, const std::string &what, Status status) {
    const Status before = verdict(host);
    complain(what, status);
    return before == fine ? status : before;
}

/// For an exception that nobody expects: the plug-in's when it left a call into the plug-in, else a
/// fault of this program.
Status giveUpAfter(host::Host &host, const std::string &kind, const std::string &what) {
    const std::string reason = what.empty() ? "" : ": " + what;
    if (const auto &thrower = host::PluginCall::thrower())
        return giveUp(host, *thrower + " let " + kind + " through" + reason, misbehaved);
    return giveUp(host, "failed by itself, with " + kind + reason, failed);
}

host::Image &load(host::Host &host, const zkthost::Options &options) {
    for (const std::string &service : options.withoutServices)
        host.services().hide(service);
    try {
        return host.loadPlugin(options.image);
    } catch (const host::ImageError &error) {
        const char *hint = options.imageIsDefault
                               ? " (build it with ./dev build, or name another with --image)"
                               : "";
        throw zkthost::InputError(error.what() + std::string(hint));
    }
}

/// What a program keeps alive at its end is told like what the plug-in does.
Status programVerdict(host::Host &host) {
    host.shutDown();
    const Status status = verdict(host);
    const std::vector<std::string> circles = host::program::circles(host);
    for (const std::string &circle : circles)
        print(stderr, "leak: " + circle + '\n');
    return circles.empty() ? status : misbehaved;
}

Status call(host::Host &host, const zkthost::Options &options) {
    const zkthost::CallResult result = zkthost::evaluate(host, options.expression);
    print(stderr, result.errors);
    if (options.format != host::DescriptionFormat::json)
        print(stdout, result.text);
    const Status status = programVerdict(host);
    if (!result.errors.empty())
        return status == fine ? badInput : status;
    if (result.raised) {
        complain(*result.raised, raisedException);
        return status == fine ? raisedException : status;
    }
    if (options.format == host::DescriptionFormat::json)
        print(stdout, callAsJson(result, host.account()));
    return status;
}

zkthost::CocoaSource sourceOf(const zkthost::Options &options) {
    if (options.propertyList)
        return zkthost::CocoaSource::propertyList(*options.propertyList);
    if (options.cocoaClass)
        return zkthost::CocoaSource::instanceOf(*options.cocoaClass);
    return zkthost::CocoaSource::example();
}

Status convert(host::Host &host, const host::Image &image, const zkthost::Options &options) {
    // Not every class bears an instance that only init has prepared.
    std::optional<zkthost::CrashMessage> guard;
    if (options.cocoaClass)
        guard.emplace("zkthost: --class " + *options.cocoaClass +
                      ": Foundation crashed with an instance that alloc and init made");
    const zkthost::CocoaSource source = sourceOf(options);
    const zkthost::Conversion conversion = zkthost::convert(host, image, source);
    host.shutDown();
    const host::Account account = host.account();
    if (!conversion.raised)
        print(stdout, options.format == host::DescriptionFormat::json
                          ? conversionAsJson(conversion, account)
                          : conversion.text + "\n\n" + describe(account) + '\n');
    const Status status = verdict(host);
    if (!conversion.raised)
        return status;
    complain(conversion.text, raisedException);
    return status == fine ? raisedException : status;
}

Status runProgram(host::Host &host, const zkthost::Options &options) {
    if (options.program.empty()) {
        if (isatty(STDIN_FILENO) == 0)
            throw zkthost::InputError("no program: name its FILE, or - for standard input");
        load(host, options);
        zkthost::runPrompt(host);
        return programVerdict(host);
    }
    const std::string &file = options.program.front();
    const std::string text = zkthost::readProgram(file);
    load(host, options);
    const zkthost::ProgramEnd end = zkthost::runProgram(host, file, text);
    const Status status = programVerdict(host);
    if (end == zkthost::ProgramEnd::refused)
        return status == fine ? badInput : status;
    return end == zkthost::ProgramEnd::fine ? status : misbehaved;
}

Status run(host::Host &host, const zkthost::Options &options) {
    if (options.command == zkthost::Command::run)
        return runProgram(host, options);
    host::Image &image = load(host, options);
    if (options.command == zkthost::Command::describe) {
        print(stdout, describeClasses(host, options.format));
        host.shutDown();
        return verdict(host);
    }
    if (options.command == zkthost::Command::call)
        return call(host, options);
    if (options.command == zkthost::Command::convert)
        return convert(host, image, options);
    const zkthost::Report report = zkthost::makeReport(host, image);
    host.shutDown();
    const host::Account account = host.account();
    if (options.format == host::DescriptionFormat::json)
        print(stdout, reportAsJson(report, account));
    else
        print(stdout, reportAsText(report, wantsColours()) + '\n' + describe(account) + '\n');
    return verdict(host);
}

/// A program that runs sees itself and its own arguments.
void startFoundation(int argc, char **argv, const zkthost::Options &options) {
    const int count = static_cast<int>(options.program.size());
    host::startFoundation(count > 0 ? count : argc, count > 0 ? argv + argc - count : argv,
                          environ);
}

} // namespace

int main(int argc, char **argv) {
    // verdict() prints them; a host that dies early has its cause printed instead.
    host::Host::onUnexamined([](const std::string &) {});
    zkthost::Options options;
    try {
        zkthost::CommandLine commandLine = zkthost::parseCommandLine(argc, argv);
        if (commandLine.text) {
            print(stdout, *commandLine.text);
            return fine;
        }
        options = std::move(commandLine.options);
    } catch (const zkthost::InputError &error) {
        return complain(error.what(), badInput);
    }
    startFoundation(argc, argv, options);
    // Outside of what exceptions leave: an NSException may live in the host's autorelease pool.
    host::Host host(options.host);
    try {
        Status status = fine;
        const auto cocoa = zkthost::cocoaExceptionFrom([&] { status = run(host, options); });
        return cocoa ? giveUpAfter(host, "an NSException", *cocoa) : status;
    } catch (const zkthost::InputError &error) {
        return giveUp(host, error.what(), badInput);
    } catch (const host::UsageError &error) {
        return giveUp(host, error.what(), badInput);
    } catch (const std::exception &error) {
        return giveUpAfter(host, "a C++ exception", error.what());
    } catch (...) {
        return giveUpAfter(host, "a C++ exception", "");
    }
}
