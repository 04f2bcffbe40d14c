#include "host/program/Raised.h"

#include "host/Host.h"

#include <utility>

namespace host::program {

void raise(std::string_view className, std::string_view message) {
    Host &host = Host::current();
    Raised raised{.exception = host.newObject(className).object()};
    host.set(raised.exception, "Message", Value(message)).result();
    throw raised;
}

void raiseOutOfBounds(std::int64_t index, std::size_t count) {
    raise("OutOfBoundsException", "index " + std::to_string(index) + " of an array of " +
                                      std::to_string(count) +
                                      (count == 1 ? " element" : " elements"));
}

Value valueOf(Outcome outcome) {
    if (outcome.exception)
        throw Raised{.exception = std::move(outcome.exception->object)};
    return std::move(outcome.value);
}

} // namespace host::program
