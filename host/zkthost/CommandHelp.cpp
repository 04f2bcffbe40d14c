#include "host/zkthost/CommandHelp.h"

#include "host/language/EditDistance.h"
#include "host/services/Services.h"
#include "host/zkthost/Options.h"

#include <algorithm>
#include <vector>

namespace zkthost {

namespace {

std::vector<const CLI::App *> commandsOf(const CLI::App &app) {
    return app.get_subcommands([](const CLI::App *) { return true; });
}

std::vector<std::string> commandNames(const CLI::App &app) {
    std::vector<std::string> names;
    for (const CLI::App *command : commandsOf(app))
        names.push_back(command->get_name());
    return names;
}

std::vector<std::string> optionNames(const CLI::App &app) {
    std::vector<std::string> names;
    for (const CLI::Option *option : app.get_options())
        for (const std::string &name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

/// "; the nearest is report", or "" when none is near.
std::string nearestOf(const std::string &wanted, const std::vector<std::string> &names) {
    const auto distance = [&](const std::string &name) { return host::editDistance(name, wanted); };
    const auto nearest = std::ranges::min_element(names, {}, distance);
    return nearest == names.end() || distance(*nearest) > wanted.size() / 3
               ? ""
               : "; the nearest is " + *nearest;
}

[[noreturn]] void refuseOption(const CLI::App &app, const CLI::App *given,
                               const std::string &name) {
    std::vector<std::string> names = optionNames(app);
    for (const CLI::App *command : commandsOf(app)) {
        const std::vector<std::string> own = optionNames(*command);
        const bool isMeant = given == nullptr || given == command;
        if (isMeant && std::ranges::find(own, name) != own.end())
            throw InputError(name + " stands behind its command: zkthost " + command->get_name() +
                             ' ' + name + whereToLook);
        if (given == command)
            names.insert(names.end(), own.begin(), own.end());
    }
    throw InputError((given == nullptr ? "there is" : given->get_name() + " has") + " no option " +
                     name + nearestOf(name, names) + whereToLook);
}

} // namespace

std::string footerText() {
    std::string text = R"(Exit status:
  0  fine
  1  the plug-in misbehaved: violations, leaks, an exception that is not the host's
  2  the input cannot be worked with
  3  what was called raised an exception of the host
  4  the plug-in, or what it called, crashed
  5  zkthost itself failed, or its output could not be written

Host services for --without:)";
    for (const std::string_view name : host::Services::names())
        text += "\n  " + std::string(name);
    return text;
}

std::string helpText(const CLI::App &app, const CLI::App *command) {
    const CLI::Formatter formatter;
    if (command == nullptr)
        return formatter.make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
    std::vector<const CLI::Option *> general;
    for (const CLI::Option *option : app.get_options())
        if (option != app.get_help_ptr())
            general.push_back(option);
    return formatter.make_help(command, app.get_name() + ' ' + command->get_name(),
                               CLI::AppFormatMode::Normal) +
           formatter.make_group("For every command", false, general);
}

std::string helpText(const CLI::App &app, const std::string &command) {
    if (command.empty())
        return helpText(app, nullptr);
    for (const CLI::App *each : commandsOf(app))
        if (each->get_name() == command)
            return helpText(app, each);
    throw InputError("there is no command " + command + nearestOf(command, commandNames(app)) +
                     whereToLook);
}

const CLI::App *givenCommand(const CLI::App &app) {
    const auto given = app.get_subcommands();
    return given.empty() ? nullptr : given.front();
}

void refuseRest(const CLI::App &app) {
    const CLI::App *given = givenCommand(app);
    const std::vector<std::string> rest = app.remaining(true);
    if (rest.empty())
        return;
    const std::string &word = rest.front();
    if (word.starts_with('-'))
        refuseOption(app, given, word.substr(0, word.find('=')));
    if (given != nullptr)
        throw InputError(given->get_name() + " is followed by " + word +
                         ", which was not expected" + whereToLook);
    throw InputError("there is no command " + word + nearestOf(word, commandNames(app)) +
                     whereToLook);
}

} // namespace zkthost
