#include "host/core/Json.h"

namespace host {

std::string jsonText(const Json &json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::string jsonLine(const Json &json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace host
