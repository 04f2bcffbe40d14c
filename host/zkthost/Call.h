#pragma once

#include "host/Host.h"

#include <string>
#include <string_view>

namespace zkthost {

/// What a call came to, in words: it outlives the host's objects.
struct CallResult {
    std::string text;
    bool raised = false; ///< the text tells the host exception
};

/// Evaluates an expression (host/zkthost/Expression.h) through the registered declarations; a name
/// without a class belongs to the shared process-information object. Throws InputError for a text
/// that is no expression, a name that nothing has (with the nearest one that there is) and
/// arguments that the declaration does not ask for.
CallResult evaluate(host::Host &host, std::string_view expression);

/// "NSExceptionZKT (NSRangeException): why, error number 0"
std::string inWords(const host::RaisedException &exception);

} // namespace zkthost
