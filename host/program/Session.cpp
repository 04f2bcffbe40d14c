#include "host/program/Session.h"

#include "host/classes/Exceptions.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

namespace host::program {

namespace {

template <typename Body>
std::optional<Uncaught> uncaughtBy(Host &host, Body body) {
    try {
        body();
        return std::nullopt;
    } catch (Raised &raised) {
        // The host tells what it knows of an exception that is raised.
        host::raise(Core::current(), raised.exception);
        Uncaught uncaught{.exception = *host.takePendingException(),
                          .lines = std::move(raised.lines)};
        uncaught.exception.object = {};
        return uncaught;
    }
}

} // namespace

Session::Session(Host &host, Form form, Settings settings)
    : host_(host), form_(form), checker_(host.classes(), form),
      evaluator_(host, std::move(settings)) {}

Loaded Session::load(std::string_view text) {
    Parsed parsed = parse(text, form_);
    Loaded result{.errors = std::move(parsed.errors), .isIncomplete = parsed.isIncomplete};
    if (result.isIncomplete && form_ == Form::typed)
        return result;
    auto program = std::make_unique<Program>(std::move(parsed.program));
    const bool isRead = result.errors.empty();
    std::ranges::move(checker_.check(*program, isRead), std::back_inserter(result.errors));
    std::ranges::sort(result.errors, [](const Diagnostic &a, const Diagnostic &b) {
        return std::tie(a.at, a.text) < std::tie(b.at, b.text);
    });
    const auto isSame = [](const Diagnostic &a, const Diagnostic &b) {
        return a.at == b.at && a.text == b.text;
    };
    const auto repeated = std::ranges::unique(result.errors, isSame);
    result.errors.erase(repeated.begin(), repeated.end());
    if (result.errors.empty())
        programs_.push_back(std::move(program));
    return result;
}

std::optional<Uncaught> Session::run() {
    return uncaughtBy(host_, [&] { evaluator_.run(*programs_.back(), checker_.globalCount()); });
}

std::optional<Uncaught> Session::finish() {
    return uncaughtBy(host_, [&] { evaluator_.clear(); });
}

std::vector<std::string> circles() {
    std::vector<std::string> result;
    for (const Object *object : Core::current().heap.liveObjects())
        // A Variant in a circle is only what holds a value of another object.
        if (object->pluginReferences() == 0 && object->type->name != "Variant")
            result.push_back(Heap::name(*object) +
                             " outlives the program: objects hold each other in a circle");
    return result;
}

} // namespace host::program
