#include "Caught.h"

#include <exception>

std::optional<std::string> standardExceptionFrom(const std::function<void()> &body) {
    try {
        body();
    } catch (const std::exception &exception) {
        return exception.what();
    }
    return std::nullopt;
}
