#include "host/zkthost/Call.h"

#include "host/program/Conversion.h"
#include "host/zkthost/Report.h"
#include "host/zkthost/RunProgram.h"
#include "host/zkthost/ValueTree.h"

#include <utility>

namespace zkthost {

using namespace host;

std::string inWords(const RaisedException &exception) {
    std::string text = exception.className;
    if (!exception.cocoaName.empty())
        text += " (" + exception.cocoaName + ')';
    if (exception.message)
        text += ": " + *exception.message;
    return text + ", error number " + std::to_string(exception.errorNumber);
}

CallResult evaluate(Host &host, std::string_view statements) {
    CallResult result;
    const auto print = [&](std::string_view lines) {
        result.text += lines;
        result.printed += lines;
    };
    const auto show = [&](const Value &value, const Type &type) {
        const Value shown = program::plain(value, type);
        // A Variant knows more of its value than the value does.
        const Value &tree = shown.index() == value.index() || value.isNil() ? shown : value;
        result.text += treeAsText(tree) + '\n';
        result.values.push_back(treeAsJson(tree));
    };
    program::Session session(host, program::Form::typed, {.print = print, .show = show});
    const program::Loaded loaded = session.load(statements);
    result.errors = errorsAsText("call", loaded.errors);
    if (!loaded.errors.empty())
        return result;
    auto uncaught = session.run();
    if (auto atTheEnd = session.finish(); !uncaught)
        uncaught = std::move(atTheEnd);
    if (uncaught)
        result.raised = inWords(uncaught->exception);
    return result;
}

std::string callAsJson(const CallResult &result, const Account &account) {
    return jsonText({{"values", result.values},
                     {"printed", result.printed},
                     {"account", accountAsJson(account)}});
}

} // namespace zkthost
