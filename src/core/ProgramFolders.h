#pragma once

#include <filesystem>
#include <string>

namespace tessara {

/// The folder of the executable; empty where the system does not tell.
std::filesystem::path ExecutableFolder();

/// The folder of the help pages: "help" beside the executable, as in the build tree, else where an
/// installation puts it. Empty where there is neither.
std::string HelpFolder();

}  // namespace tessara
