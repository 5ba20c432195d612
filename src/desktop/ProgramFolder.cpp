#include "desktop/ProgramFolder.h"

#include <unistd.h>

#include <filesystem>

namespace tessara {
namespace {

/// Root may write there too, and still the folder belongs to the system's packages.
bool IsOfTheSystem(const std::string& folder) {
    return folder.starts_with("/usr/");
}

}  // namespace

std::string ProgramFolder(const std::string& executableFolder, const std::string& userFolder) {
    if (!IsOfTheSystem(executableFolder) && access(executableFolder.c_str(), W_OK) == 0)
        return executableFolder;
    std::error_code ignored;
    std::filesystem::create_directories(userFolder, ignored);
    return userFolder;
}

}  // namespace tessara
