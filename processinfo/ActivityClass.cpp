#include "processinfo/Classes.h"

#include "processinfo/ActivityData.h"
#include "processinfo/Handlers.h"

#include <iterator>

namespace {

constexpr PluginPropertyRecord properties[] = {
    {.name = "Handle",
     .type = "Integer",
     .getter = hostAccessesField,
     .setter = hostAccessesField,
     .parameter = offsetof(ActivityData, token)},
    {.name = "Reason",
     .type = "String",
     .getter = hostAccessesField,
     .setter = hostAccessesField,
     .parameter = offsetof(ActivityData, reason)},
    {.name = "Options",
     .type = "Integer",
     .getter = hostAccessesField,
     .setter = hostAccessesField,
     .parameter = offsetof(ActivityData, options)},
};

constexpr PluginMethodRecord methods[] = {
    {.function = processinfo::activity::Constructor, .declaration = "Constructor", .flags = 0x84},
    {.function = processinfo::activity::Destructor, .declaration = "Destructor"},
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
