#pragma once

#include "host/Host.h"
#include "host/core/Json.h"
#include "host/program/Session.h"

#include <optional>
#include <string>
#include <string_view>

namespace zkthost {

/// What typed statements came to, in words: it outlives the host's objects.
struct CallResult {
    std::string text; ///< what was printed and the values, as trees, in order
    host::Json values = host::Json::array(); ///< of the expressions that stand for themselves
    std::string printed;                     ///< alone
    std::string errors;                      ///< of the text: nothing was run
    std::optional<std::string> raised;       ///< the exception that ended it
};

/// Runs statements of the host's language. A name that means nothing else is a member of the object
/// that the plug-in shares.
CallResult evaluate(host::Host &host, std::string_view statements);

std::string callAsJson(const CallResult &result, const host::Account &account);

/// "NSExceptionZKT (NSRangeException): why, error number 0"
std::string inWords(const host::RaisedException &exception);

} // namespace zkthost
