#include "host/zkthost/Options.h"

#include "host/services/Services.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>

namespace zkthost {

namespace {

/// The bundle beside the folder that this program was built in.
std::filesystem::path defaultImage() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / "../macos/NSProcessInfoZKT.bundle").lexically_normal();
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

std::string namesOfServices() {
    std::string text = "Host services for --without:";
    for (const std::string_view name : host::Services::names())
        text += "\n  " + std::string(name);
    return text;
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

} // namespace

CommandLine parseCommandLine(int argc, const char *const *argv) {
    CommandLine result;
    Options &options = result.options;
    CLI::App app("A host for plug-ins of the ZKT family: loads one and shows what programs see.",
                 "zkthost");
    app.require_subcommand(0, 1); // checked below: an unknown word shall be named first
    app.fallthrough();
    app.footer(namesOfServices());

    std::string image;
    app.add_option("--image", image,
                   "The plug-in: a Mach-O bundle or a shared object (default: the bundle of this "
                   "build)")
        ->type_name("FILE");
    double version = host::HostOptions::usualVersion;
    app.add_option("--host-version", version, "The version that the host reports")
        ->type_name("V")
        ->capture_default_str();
    app.add_option("--without", options.withoutServices,
                   "A host service that shall be missing; may be given several times")
        ->type_name("SERVICE")
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    const std::map<std::string, host::Siblings> siblings{{"exceptions", host::Siblings::exceptions},
                                                         {"registry", host::Siblings::registry},
                                                         {"none", host::Siblings::none},
                                                         {"wrappers", host::Siblings::wrappers}};
    app.add_option(
           "--sibling", options.host.siblings,
           "The sibling parts that are present: exceptions, registry, none, or wrappers for "
           "all with the family's wrapper classes (default: exceptions and registry)")
        ->type_name("PART")
        ->transform(CLI::Transformer(siblings));

    using host::DescriptionFormat;
    const std::map<std::string, DescriptionFormat> describeFormats{
        {"text", DescriptionFormat::text},
        {"json", DescriptionFormat::json},
        {"markdown", DescriptionFormat::markdown}};
    const std::map<std::string, DescriptionFormat> reportFormats{{"text", DescriptionFormat::text},
                                                                 {"json", DescriptionFormat::json}};
    std::string format = "text";
    CLI::App *describe =
        app.add_subcommand("describe", "The plug-in's classes exactly as it registers them");
    describe->add_option("--format", format, "text, json or markdown");
    CLI::App *report = app.add_subcommand("report", "Every property of this process");
    report->add_option("--format", format, "text or json");
    CLI::App *call = app.add_subcommand(
        "call",
        "Statements of the host's language with ; between them, and the values of those "
        "that are expressions; other names are members of the shared object: 'argument(0)', "
        "'processName = \"x\"; processName', 'beginActivity(&hFF, \"work\").Options'");
    call->add_option("statements", options.expression, "What to run")
        ->type_name("STATEMENTS")
        ->required();
    call->add_option("--format", format, "text or json");

    CLI::App *convert = app.add_subcommand(
        "convert", "What the plug-in makes of a Cocoa object; of an example without --plist and "
                   "--class");
    CLI::Option *plist = convert
                             ->add_option("--plist", options.propertyList,
                                          "A property list file: its contents are the object")
                             ->type_name("FILE");
    convert->add_option("--class", options.cocoaClass, "A class to make the object of")
        ->type_name("NAME")
        ->excludes(plist);
    convert->add_option("--format", format, "text or json");

    CLI::App *run = app.add_subcommand(
        "run", "run FILE [ARGUMENTS]: a program of the host's language (- for standard input), "
               "which sees the ARGUMENTS as its own; on a terminal without FILE, a prompt");

    try {
        const int ours = argumentsBeforeProgram(app, argc, argv);
        options.program.assign(argv + ours, argv + argc);
        app.parse(ours, argv);
    } catch (const CLI::CallForHelp &) {
        result.text = app.help();
        return result;
    } catch (const CLI::ParseError &error) {
        throw InputError(std::string(error.what()) + " (zkthost --help lists what there is)");
    }
    if (app.get_subcommands().empty())
        throw InputError("no command: describe, report, call, convert or run (zkthost --help lists "
                         "what there is)");
    options.command = describe->parsed()  ? Command::describe
                      : call->parsed()    ? Command::call
                      : convert->parsed() ? Command::convert
                      : run->parsed()     ? Command::run
                                          : Command::report;
    const auto &formats = describe->parsed() ? describeFormats : reportFormats;
    const auto chosen = formats.find(format);
    if (chosen == formats.end())
        throw InputError("--format " + format + ": it is text" +
                         (describe->parsed() ? ", json or markdown" : " or json"));
    options.format = chosen->second;
    options.host.version = version;
    options.imageIsDefault = image.empty() && app.count("--image") == 0;
    options.image = options.imageIsDefault ? defaultImage() : std::filesystem::path(image);
    std::ranges::for_each(options.withoutServices, checkService);
    return result;
}

} // namespace zkthost
