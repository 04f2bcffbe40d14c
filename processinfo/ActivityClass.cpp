#include "processinfo/Classes.h"

#include "processinfo/ActivityData.h"
#include "processinfo/Handlers.h"

#include <iterator>

using namespace hostType;
using namespace processinfo;

namespace {

constexpr PluginPropertyRecord properties[] = {
    field("Handle", Integer, offsetof(ActivityData, token)),
    field("Reason", String, offsetof(ActivityData, reason)),
    field("Options", Integer, offsetof(ActivityData, options)),
};

constexpr PluginMethodRecord methods[] = {
    method("Constructor", activity::Constructor, 0x84),
    method("Destructor", activity::Destructor),
};

} // namespace

constinit PluginClassRecord processActivityClass{
    .name = "NSProcessInfoActivityZKT",
    .dataSize = sizeof(ActivityData),
    .properties = properties,
    .propertyCount = std::size(properties),
    .methods = methods,
    .methodCount = std::size(methods),
};
