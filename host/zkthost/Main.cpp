// zkthost: loads a plug-in into the reference host and shows what it gives to programs.
//
// Its exit statuses are those of Status.h; zkthost --help has them in words.
// A plug-in that misbehaved gives 1 whatever follows from it; its violations stand first.

#include "host/Host.h"
#include "host/classes/Description.h"
#include "host/core/Cocoa.h"
#include "host/core/Core.h"
#include "host/core/PluginCall.h"
#include "host/crash/CrashHandler.h"
#include "host/processor/Processor.h"
#include "host/zkthost/Call.h"
#include "host/zkthost/CocoaSource.h"
#include "host/zkthost/Columns.h"
#include "host/zkthost/Convert.h"
#include "host/zkthost/ForeignExceptions.h"
#include "host/zkthost/ImageFacts.h"
#include "host/zkthost/LiveTrace.h"
#include "host/zkthost/Options.h"
#include "host/zkthost/OtherProcessor.h"
#include "host/zkthost/Output.h"
#include "host/zkthost/Reference.h"
#include "host/zkthost/Report.h"
#include "host/zkthost/ReportText.h"
#include "host/zkthost/RunProgram.h"
#include "host/zkthost/Status.h"
#include "host/zkthost/Surroundings.h"

#include <unistd.h>

#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Not every unistd.h declares it.
// NOLINTNEXTLINE(readability-redundant-declaration)
extern "C" char **environ;

namespace {

using namespace zkthost;

Status complain(const std::string &what, Status status) {
    printError("zkthost: " + printable(what) + '\n');
    return status;
}

/// Tells what the plug-in did wrong until now; leaks are known once the host has been shut down.
Status verdict(host::Host &host) {
    const auto &violations = host.violations();
    for (const std::string &violation : violations)
        printError("violation: " + violation + '\n');
    return violations.empty() ? fine : misbehaved;
}

/// In a signal handler; leaks are not known then.
void tellViolations(crash::Writer &writer) {
    if (host::Host::exists())
        for (const std::string &violation : host::Host::current().violations())
            writer << "violation: " << violation << "\n";
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

host::Image &load(host::Host &host, const Options &options) {
    for (const std::string &service : options.withoutServices)
        host.services().hide(service);
    try {
        return host.loadPlugin(options.image);
    } catch (const host::ImageError &error) {
        const char *hint = options.imageIsDefault
                               ? " (build it with ./dev build, or name another with --image)"
                               : "";
        throw InputError(error.what() + std::string(hint));
    }
}

Status reference(host::Host &host, const std::filesystem::path &words,
                 host::DescriptionFormat format) {
    const std::vector<ReferenceChapter> chapters = makeReference(host, words);
    print(format == host::DescriptionFormat::html ? referenceAsHtml(chapters)
                                                  : referenceAsMarkdown(chapters));
    host.shutDown();
    return verdict(host);
}

Status describe(host::Host &host, const host::Image &image, host::DescriptionFormat format) {
    using host::DescriptionFormat;
    const ImageFacts facts = factsOf(image.file());
    const std::string classes = describeClasses(host.classes(), format);
    if (format == DescriptionFormat::json)
        print(host::jsonText({{"schema", 1},
                              {"image", factsAsJson(facts)},
                              {"classes", classesAsJson(host.classes())}}));
    else if (format == DescriptionFormat::markdown)
        print(factsAsMarkdown(facts) + '\n' + classes + importsAsMarkdown(facts));
    else
        print(factsAsText(facts) + '\n' + classes + importsAsText(facts));
    host.shutDown();
    return verdict(host);
}

/// What a program keeps alive at its end is told like what the plug-in does.
Status programVerdict(host::Host &host) {
    host.shutDown();
    const Status status = verdict(host);
    const std::vector<std::string> circles = host::program::circles();
    for (const std::string &circle : circles)
        printError("leak: " + circle + '\n');
    return circles.empty() ? status : misbehaved;
}

Status call(host::Host &host, const Options &options) {
    const CallResult result = evaluate(host, options.expression);
    if (options.format != host::DescriptionFormat::json)
        print(result.text);
    const Status status = programVerdict(host);
    printError(result.errors);
    if (!result.errors.empty())
        return status == fine ? badInput : status;
    if (result.raised) {
        complain(*result.raised, raisedException);
        return status == fine ? raisedException : status;
    }
    if (options.format == host::DescriptionFormat::json)
        print(callAsJson(result, host.account()));
    return status;
}

CocoaSource sourceOf(const Options &options) {
    if (options.propertyList)
        return CocoaSource::propertyList(*options.propertyList);
    if (options.cocoaClass)
        return CocoaSource::instanceOf(*options.cocoaClass);
    return CocoaSource::example();
}

constexpr crash::Handling ownCrashes{.program = "zkthost", .status = crashed};

/// A crash is then told of the input.
void expectCrash(const std::string &what) {
    static std::string subject;
    subject = "zkthost: " + printable(what);
    crash::handleCrashes({.program = subject.c_str(), .status = badInput});
}

Status convert(host::Host &host, const host::Image &image, const Options &options) {
    // Not every class bears an instance that only init has prepared.
    if (options.cocoaClass)
        expectCrash("--class " + *options.cocoaClass +
                    ": Foundation crashed with an instance that alloc and init made");
    if (options.propertyList)
        expectCrash("--plist " + options.propertyList->string() +
                    ": Foundation crashed reading it");
    const CocoaSource source = sourceOf(options);
    if (options.propertyList)
        crash::handleCrashes(ownCrashes);
    const Conversion conversion = convert(host, image, source);
    host.shutDown();
    const host::Account account = host.account();
    if (!conversion.raised)
        print(options.format == host::DescriptionFormat::json
                  ? conversionAsJson(conversion, account)
                  : conversion.text + "\n\n" + describe(account) + '\n');
    const Status status = verdict(host);
    if (!conversion.raised)
        return status;
    complain(conversion.text, raisedException);
    return status == fine ? raisedException : status;
}

Status runProgram(host::Host &host, const Options &options) {
    if (options.program.empty()) {
        if (isatty(STDIN_FILENO) == 0)
            throw InputError("no program: name its FILE, or - for standard input");
        load(host, options);
        runPrompt(host);
        return programVerdict(host);
    }
    const std::string &file = options.program.front();
    const std::string text = readProgram(file);
    load(host, options);
    const ProgramEnd end = zkthost::runProgram(host, file, text);
    const Status status = programVerdict(host);
    if (end == ProgramEnd::refused)
        return status == fine ? badInput : status;
    return end == ProgramEnd::fine ? status : misbehaved;
}

Status report(host::Host &host, const host::Image &image, const Options &options) {
    const bool isText = options.format == host::DescriptionFormat::text;
    ReportText text(styleOfOutput());
    const Report report = makeReport(host, image, isText ? &text : nullptr);
    host.shutDown();
    const host::Account account = host.account();
    print(isText ? '\n' + describe(account) + '\n' : reportAsJson(report, account));
    return verdict(host);
}

Status run(host::Host &host, const Options &options) {
    if (options.command == Command::run)
        return runProgram(host, options);
    host::Image &image = load(host, options);
    if (options.command == Command::describe)
        return options.words ? reference(host, *options.words, options.format)
                             : describe(host, image, options.format);
    if (options.command == Command::call)
        return call(host, options);
    if (options.command == Command::convert)
        return convert(host, image, options);
    return report(host, image, options);
}

/// A program that runs sees itself and its own arguments.
void startFoundation(int argc, char **argv, const Options &options) {
    const int count = static_cast<int>(options.program.size());
    host::startFoundation(count > 0 ? count : argc, count > 0 ? argv + argc - count : argv,
                          environ);
}

} // namespace

int main(int argc, char **argv) {
    // verdict() prints them; a host that dies early has its cause printed instead.
    host::Host::onUnexamined([](const std::string &) {});
    Options options;
    try {
        const char *const *const original = originalArguments();
        const char *const *const arguments = original != nullptr ? original : argv;
        CommandLine commandLine = parseCommandLine(argc, arguments);
        if (commandLine.text) {
            print(*commandLine.text);
            return fine;
        }
        options = std::move(commandLine.options);
        if (options.processor != processor::name)
            continueFor(options.processor, arguments);
    } catch (const InputError &error) {
        return complain(error.what(), badInput);
    } catch (const OutputError &error) {
        return complain(error.what(), failed);
    }
    startFoundation(argc, argv, options);
    crash::handleCrashes(ownCrashes);
    crash::setEpilogue(tellViolations);
    // Outside of what exceptions leave: an NSException may live in the host's autorelease pool.
    host::Host host(options.host);
    if (options.trace)
        traceLive(host::Core::current().trace);
    try {
        Status status = fine;
        const auto cocoa = cocoaExceptionFrom([&] { status = run(host, options); });
        return cocoa ? giveUpAfter(host, "an NSException", *cocoa) : status;
    } catch (const InputError &error) {
        return giveUp(host, error.what(), badInput);
    } catch (const host::UsageError &error) {
        return giveUp(host, error.what(), badInput);
    } catch (const OutputError &error) {
        verdict(host);
        return complain(error.what(), failed);
    } catch (const std::exception &error) {
        return giveUpAfter(host, "a C++ exception", error.what());
    } catch (...) {
        return giveUpAfter(host, "a C++ exception", "");
    }
}
