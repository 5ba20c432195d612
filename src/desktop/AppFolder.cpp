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

/// Steps of the user's work lie in it: nobody else reads them. Where it cannot be made, so fail all writes:
/// the program runs without its settings.
void MakePrivateFolder(const std::string& folder) {
    std::error_code failed;
    if (std::filesystem::create_directories(folder, failed))
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, failed);
}

}  // namespace

std::string AppFolder(const std::string& programFolder, const std::string& userFolder) {
    std::string folder = programFolder;
    if (IsOfTheSystem(folder) || access(folder.c_str(), W_OK | X_OK) != 0) {
        folder = userFolder;
        MakePrivateFolder(folder);
    }
    if (folder.ends_with('/')) folder.pop_back();
    return folder;
}

std::string AppFolder() {
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return AppFolder(BytesOfText(QCoreApplication::applicationDirPath()), BytesOfText(data) + "/tessara");
}

}  // namespace tessara
