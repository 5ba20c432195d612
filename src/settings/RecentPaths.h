#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/Result.h"

namespace tessara {

/// Its name among the private files.
inline constexpr char kRecentPathsName[] = "Recentlyused.src";

/// The file of recent paths: records of 100 bytes, each a path and its terminator. Records without a path or
/// without a terminator are passed over; an incomplete last record is ignored.
std::vector<std::string> ReadRecentPaths(const std::string& file);
/// Writes the paths from the file's beginning on. Records of a longer former list stay behind them. A path of
/// more than 97 bytes loses its terminator and will not be read again.
Result<void> WriteRecentPaths(const std::string& file, const std::vector<std::string>& paths);

/// An entry of the list that former settings files held.
struct FormerPath {
    std::string path;
    int icon = 0;
};
/// The list of a former settings file: a count at position 1000, records of 200 bytes from position 1201.
/// Empty in files of today.
std::vector<FormerPath> ReadFormerPaths(const std::string& settingsFile);

}  // namespace tessara
