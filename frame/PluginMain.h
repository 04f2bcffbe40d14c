#pragma once

#include "frame/ClassRecords.h"

#include <array>
#include <cstdint>

/// The interface version that this plug-in speaks with the host, 9 to 13. Set at start-up.
inline constinit std::int64_t CurrentREALControlVersion = 13;

/// What the plug-in registers, in this order; defined by the floor above (processinfo/).
extern const std::array<PluginClassRecord *, 2> pluginClasses;
