#pragma once

#include <string>

namespace tessara {

/// The folder of the program's private files, without a separator at its end: the program's own where files
/// can be made in it and no package manager does, else `userFolder`, which is made where it is missing, for
/// the user alone.
std::string AppFolder(const std::string& programFolder, const std::string& userFolder);

/// The same for this program and the user who runs it.
std::string AppFolder();

}  // namespace tessara
