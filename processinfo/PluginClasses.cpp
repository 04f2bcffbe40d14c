#include "frame/PluginMain.h"

#include "processinfo/Classes.h"

constinit const std::array<PluginClassRecord *, 2> pluginClasses{&processInfoClass,
                                                                 &processActivityClass};
