#pragma once

// The plug-ins of images/wrong, as the build left them, for both systems.

#include <cstdlib>
#include <filesystem>
#include <string>

#ifdef __APPLE__
inline constexpr const char *wrongPluginSystems[] = {"macos"};
#else
inline constexpr const char *wrongPluginSystems[] = {"macos", "linux"};
#endif

/// The image that has the fault once it is loaded, by this process or one that it starts.
inline std::filesystem::path wrongPlugin(const std::string &system, const std::string &fault) {
    setenv("WRONG_PLUGIN_FAULT", fault.c_str(), 1);
    return std::filesystem::path(WRONG_PLUGINS) / system /
           (fault == "noEntryPoint" ? "noEntryPoint" : "plugin");
}
