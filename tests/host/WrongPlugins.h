#pragma once

// The plug-ins of images/wrong, as the build left them: one for each fault, for both systems.

#include <filesystem>
#include <string>

inline constexpr const char *wrongPluginSystems[] = {"macos", "linux"};

inline std::filesystem::path wrongPlugin(const std::string &system, const std::string &fault) {
    return std::filesystem::path(WRONG_PLUGINS) / system / fault;
}
