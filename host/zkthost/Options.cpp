#include "host/zkthost/Options.h"

#include "host/core/Text.h"
#include "host/services/Services.h"
#include "host/zkthost/CommandHelp.h"
#include "host/zkthost/Surroundings.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <optional>
#include <span>

namespace zkthost {

namespace {

using host::DescriptionFormat;
using host::Siblings;

template <typename Value>
struct Choice {
    const char *name;
    Value value;
};
constexpr Choice<Siblings> siblings[] = {
    {"all", Siblings::all},           {"exceptions", Siblings::exceptions},
    {"registry", Siblings::registry}, {"none", Siblings::none},
    {"wrappers", Siblings::wrappers},
};
constexpr Choice<std::string_view> processors[] = {
    {"x86_64", "x86_64"},
    {"arm64", "arm64"},
};
constexpr Choice<DescriptionFormat> formats[] = {
    {"text", DescriptionFormat::text},
    {"json", DescriptionFormat::json},
    {"markdown", DescriptionFormat::markdown},
    {"html", DescriptionFormat::html},
};

/// "text, json, markdown or html"
template <typename Value, std::size_t Count>
std::string listOf(std::span<const Choice<Value>, Count> choices) {
    std::string text;
    for (const auto &choice : choices)
        text += (text.empty()                 ? ""
                 : &choice == &choices.back() ? " or "
                                              : ", ") +
                std::string(choice.name);
    return text;
}

template <typename Value, std::size_t Count>
Value chosen(const std::string &option, const std::string &name,
             std::span<const Choice<Value>, Count> choices) {
    for (const auto &choice : choices)
        if (name == choice.name)
            return choice.value;
    throw InputError(option + ' ' + name + ": it is " + listOf(choices));
}

/// The bundle of this build, beside the folder that the program was built in.
std::filesystem::path defaultImage() {
    return (programFile().parent_path() / "../macos/NSProcessInfoZKT.bundle").lexically_normal();
}

/// Services whose absence no plug-in survives.
void checkService(const std::string &name) {
    if (!host::Services::has(name))
        throw InputError("--without " + name + ": there is no such host service; the nearest is " +
                         host::Services::nearest(name));
    if (name == "RegisterPluginVersion")
        throw InputError("--without " + name +
                         ": every host has this service, and plug-ins call it unseen");
}

double versionIn(const std::string &text) {
    const auto version = host::realNumber(text);
    if (!version || *version < 0)
        throw InputError("--host-version " + text + ": it is a number like 2013.04");
    return *version;
}

/// Behind "run" and its options everything is the program's: its file and its arguments, whatever
/// they look like. All arguments when there is no "run".
int argumentsBeforeProgram(const CLI::App &app, int argc, const char *const *argv) {
    const auto pastOptions = [&](int place) {
        while (place < argc && std::string_view(argv[place]).starts_with("--")) {
            const CLI::Option *option = app.get_option_no_throw(argv[place]);
            place += option != nullptr && option->get_items_expected_max() > 0 ? 2 : 1;
        }
        return std::min(place, argc);
    };
    const int command = pastOptions(1);
    return command < argc && std::string_view(argv[command]) == "run" ? pastOptions(command + 1)
                                                                      : argc;
}

/// The command line as the parser leaves it: words.
struct Words {
    std::optional<std::string> image;
    std::string processor{processor::name};
    std::optional<std::string> version;
    std::string sibling = "all";
    std::string format = "text";
    std::optional<std::string> words;
    std::optional<std::string> propertyList;
    std::optional<std::string> cocoaClass;
    std::string helpFor;
    std::optional<std::string> expression;
};

void addGeneralOptions(CLI::App &app, Words &words, Options &options) {
    app.set_version_flag("--version", "zkthost " ZKTHOST_VERSION, "Print the version and end");
    app.add_option("--image", words.image,
                   "The plug-in: a Mach-O bundle or a shared object (default: the bundle of this "
                   "build)")
        ->type_name("FILE");
    app.add_option("--arch", words.processor,
                   "The processor whose part of the image runs: x86_64 or arm64 (default: this "
                   "machine's); for another one's, the zkthost that was built for it goes on")
        ->type_name("NAME");
    app.add_option("--host-version", words.version,
                   "The version that the host reports (default: 2013.04)")
        ->type_name("NUMBER");
    app.add_option("--without", options.withoutServices,
                   "A host service that shall be missing; may be given several times")
        ->type_name("SERVICE")
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_option("--sibling", words.sibling,
                   "The sibling parts that are present: exceptions, registry, none, all of them "
                   "(default), or wrappers for all with the family's wrapper classes")
        ->type_name("PART");
    app.add_flag("--trace", options.trace,
                 "Print each call that the plug-in makes of the host, as it happens, to standard "
                 "error");
}

void addCommands(CLI::App &app, Words &words) {
    CLI::App *describe = app.add_subcommand(
        "describe", "The plug-in's file, and its classes exactly as it registers them");
    describe->add_option("--format", words.format, "text (default), json, markdown or html")
        ->type_name("FORMAT");
    describe
        ->add_option("--words", words.words,
                     "A folder with the words of the reference: prints that, as markdown or html")
        ->type_name("FOLDER");
    CLI::App *report = app.add_subcommand("report", "Every property of this process");
    report->add_option("--format", words.format, "text (default) or json")->type_name("FORMAT");
    CLI::App *call = app.add_subcommand(
        "call",
        "Statements of the host's language with ; between them, and the values of those "
        "that are expressions; other names are members of the shared object: 'argument(0)', "
        "'processName = \"x\"; processName', 'beginActivity(&hFF, \"work\").Options'");
    call->add_option("statements", words.expression, "What to run")->type_name("STATEMENTS");
    call->add_option("--format", words.format, "text (default) or json")->type_name("FORMAT");
    CLI::App *convert = app.add_subcommand(
        "convert", "What the plug-in makes of a Cocoa object; of an example without --plist and "
                   "--class");
    convert
        ->add_option("--plist", words.propertyList,
                     "A property list file, read by Foundation: its contents are the object")
        ->type_name("FILE");
    convert->add_option("--class", words.cocoaClass, "A class to make the object of, by init")
        ->type_name("NAME");
    convert->add_option("--format", words.format, "text (default) or json")->type_name("FORMAT");
    app.add_subcommand(
        "run", "run FILE [ARGUMENTS]: a program of the host's language (- for standard input), "
               "which sees the ARGUMENTS as its own; on a terminal without FILE, a prompt");
    CLI::App *help = app.add_subcommand("help", "This text, or that of a command");
    help->add_option("command", words.helpFor, "Of which command")->type_name("COMMAND");
}

struct NamedCommand {
    const char *name;
    Command command;
    bool hasDocuments; ///< Markdown and HTML beside text and JSON
};
constexpr NamedCommand commands[] = {
    {"describe", Command::describe, true}, {"report", Command::report, false},
    {"call", Command::call, false},        {"convert", Command::convert, false},
    {"run", Command::run, false},
};

/// Throws InputError for words that mean nothing.
void interpret(const Words &words, const NamedCommand &command, Options &options) {
    const std::span<const Choice<DescriptionFormat>> all(formats);
    options.command = command.command;
    options.processor = chosen("--arch", words.processor, std::span(processors));
    options.format = chosen("--format", words.format, command.hasDocuments ? all : all.first(2));
    options.host.siblings = chosen("--sibling", words.sibling, std::span(siblings));
    if (words.version)
        options.host.version = versionIn(*words.version);
    if (words.image && words.image->empty())
        throw InputError("--image is followed by no file name");
    options.imageIsDefault = !words.image;
    options.image = words.image ? std::filesystem::path(*words.image) : defaultImage();
    if (options.command == Command::call && !words.expression)
        throw InputError(std::string("call is followed by statements") + whereToLook);
    if (words.propertyList && words.cocoaClass)
        throw InputError("--plist and --class exclude each other");
    const bool isMarkdown = options.format == DescriptionFormat::markdown;
    const bool isHtml = options.format == DescriptionFormat::html;
    if (words.words && !isMarkdown && !isHtml)
        throw InputError("--words is for --format markdown or html");
    if (isHtml && !words.words)
        throw InputError("--format html is for the reference: name the folder of its --words");
    options.words = words.words;
    options.expression = words.expression.value_or("");
    options.propertyList = words.propertyList;
    options.cocoaClass = words.cocoaClass;
    std::ranges::for_each(options.withoutServices, checkService);
}

} // namespace

CommandLine parseCommandLine(int argc, const char *const *argv) {
    CommandLine result;
    Options &options = result.options;
    Words words;
    CLI::App app("A host for plug-ins of the ZKT family: loads one and shows what programs see.",
                 "zkthost");
    app.require_subcommand(0, 1); // checked below: an unknown word shall be named first
    app.fallthrough();
    app.allow_extras();
    addGeneralOptions(app, words, options);
    addCommands(app, words);
    app.footer(footerText()); // commands would inherit it
    try {
        const int ours = argumentsBeforeProgram(app, argc, argv);
        options.program.assign(argv + ours, argv + argc);
        app.parse(ours, argv);
    } catch (const CLI::CallForHelp &) {
        result.text = helpText(app, givenCommand(app));
        return result;
    } catch (const CLI::CallForVersion &version) {
        result.text = std::string(version.what()) + '\n';
        return result;
    } catch (const CLI::ParseError &error) {
        throw InputError(error.what() + std::string(whereToLook));
    }
    refuseRest(app);
    const CLI::App *given = givenCommand(app);
    if (given == nullptr)
        throw InputError("no command: describe, report, call, convert or run" +
                         std::string(whereToLook));
    if (given->get_name() == "help") {
        result.text = helpText(app, words.helpFor);
        return result;
    }
    for (const NamedCommand &command : commands)
        if (given->get_name() == command.name)
            interpret(words, command, options);
    return result;
}

} // namespace zkthost
