#include "desktop/AppFolder.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QStandardPaths>
#include <filesystem>
#include <system_error>

#include "desktop/PathText.h"

namespace tessara {
namespace {

/// A folder of installed packages is not for us to write in, even where root may.
bool IsOfTheSystem(const std::string& folder) {
    return folder.starts_with("/usr/");
}

}  // namespace

std::string AppFolder(const std::string& programFolder, const std::string& userFolder) {
    std::string folder = programFolder;
    if (IsOfTheSystem(folder) || access(folder.c_str(), W_OK | X_OK) != 0) {
        folder = userFolder;
        // Where this fails, so do all writes: the program runs without its settings.
        std::error_code failed;
        std::filesystem::create_directories(folder, failed);
    }
    if (folder.ends_with('/')) folder.pop_back();
    return folder;
}

std::string AppFolder() {
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return AppFolder(BytesOfText(QCoreApplication::applicationDirPath()), BytesOfText(data) + "/tessara");
}

}  // namespace tessara
