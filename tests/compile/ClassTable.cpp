// Rows of a class table; with a macro defined, one whose type is not that of its accessors.

#include "frame/ClassRecords.h"

using namespace hostType;

double uptime(REALobjectStruct *, std::intptr_t);
REALstringStruct *name(REALobjectStruct *, std::intptr_t);
void setName(REALobjectStruct *, std::intptr_t, REALstringStruct *);
std::int32_t enabled(REALobjectStruct *, std::intptr_t);
void enable(REALobjectStruct *, std::intptr_t, std::int8_t);

constexpr PluginPropertyRecord properties[] = {
    property("uptime", Double, uptime),
    property("name", String, name, setName),
    property("enabled", Boolean, enabled, enable),
#ifdef WRONG_GETTER
    property("uptime", Integer, uptime),
#endif
#ifdef WRONG_SETTER
    property("enabled", Boolean, enabled, setName),
#endif
};
static_assert(properties[1].type == String.name);
