#include "core/SystemVersion.h"

#include <cstdlib>
#include <string>

namespace tessara {

void FindXP(int majorVersion, int minorVersion, std::string_view desktopPath, bool& isXP) {
    constexpr std::string_view kSettingsFolder = ":\\Documents and Settings";
    constexpr double kFirstVersion = 5.1;
    const std::string version = std::to_string(majorVersion) + "." + std::to_string(minorVersion);
    isXP = desktopPath.size() > 1 && desktopPath.substr(1).starts_with(kSettingsFolder) &&
           std::strtod(version.c_str(), nullptr) >= kFirstVersion;
}

bool IsXP(std::string_view desktopPath) {
    bool isXP = false;
    FindXP(0, 0, desktopPath, isXP);
    return isXP;
}

}  // namespace tessara
