#include "desktop/DesktopShell.h"

#include <unistd.h>

#include <QGuiApplication>
#include <QStandardPaths>

#include "core/Paths.h"
#include "core/Text.h"
#include "desktop/Drives.h"
#include "desktop/FileTypes.h"
#include "desktop/PathText.h"

namespace tessara {

// By its name alone: opening the files of a large folder takes long.
QMimeType DesktopShell::TypeOf(const std::string& path) const {
    const std::string name = path.substr(path.rfind('/') + 1);
    return types_.mimeTypeForFile(ShownText(name), QMimeDatabase::MatchExtension);
}

std::string DesktopShell::FileTypeName(const std::string& path) {
    const std::string_view extension = ExtensionOf(path);
    const auto known = typeNames_.find(extension);
    if (known != typeNames_.end()) return known->second;
    const QMimeType type = TypeOf(path);
    const std::string name = type.isDefault() ? "" : TypeNameFrom(BytesOfText(type.comment()), extension);
    // Names without an extension have their types one by one ("README", "Makefile").
    if (!extension.empty()) typeNames_.emplace(extension, name);
    return name;
}

QPixmap DesktopShell::FileTypeIcon(const std::string& path, IconSize size) {
    if (access(path.c_str(), F_OK) != 0) return {};
    const double ratio = qGuiApp->devicePixelRatio();
    const int side = qRound(static_cast<int>(size) * ratio);
    QPixmap icon;
    if (EqualIgnoringCase(ExtensionOf(path), "ico")) icon = IconOfIconFile(path, side);
    if (icon.isNull()) icon = IconOfType(TypeOf(path), side);
    icon.setDevicePixelRatio(ratio);
    return icon;
}

std::vector<Drive> DesktopShell::Drives() {
    return MountedDrives();
}

std::string DesktopShell::SpecialFolderPath(SpecialFolder folder) {
    const auto location = folder == SpecialFolder::Desktop ? QStandardPaths::DesktopLocation
                                                           : QStandardPaths::DocumentsLocation;
    std::string path = BytesOfText(QStandardPaths::writableLocation(location));
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    return path;
}

}  // namespace tessara
