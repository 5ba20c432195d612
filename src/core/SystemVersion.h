#pragma once

#include <string_view>

namespace tessara {

/// Which display warning a system gets: `isXP` becomes True where the Desktop lies below a drive's
/// "Documents and Settings" and the version "major.minor", read as a number, is at least 5.1.
void FindXP(int majorVersion, int minorVersion, std::string_view desktopPath, bool& isXP);
/// The answer on this system, which has no such version.
bool IsXP(std::string_view desktopPath);

}  // namespace tessara
