#pragma once

#include <QPixmap>
#include <functional>
#include <string>
#include <vector>

namespace tessara {

/// The platform's drive types, by their numbers.
enum class DriveType { Undetermined, NoRoot, Removable, Fixed, Remote, CdRom, RamDisk };

/// A drive as the drive list gives it.
struct Drive {
    std::string key;   ///< "/" or the mount point, without a separator at its end
    std::string line;  ///< the key, and behind it a blank and the label in square brackets where it has one
    DriveType type = DriveType::Fixed;
};

enum class SpecialFolder { Documents = 5, Desktop = 16 };
enum class IconSize { Small = 16, Large = 32 };

/// What the desktop knows of files, drives and folders. Paths are bytes.
class Shell {
  public:
    virtual ~Shell() = default;
    /// "Image (PNG)"; empty where nothing is registered for the file. Never begins with the extension.
    virtual std::string FileTypeName(const std::string& path) = 0;
    /// At the screen's scale; empty for a missing file.
    virtual QPixmap FileTypeIcon(const std::string& path, IconSize size) = 0;
    virtual std::vector<Drive> Drives() = 0;
    virtual std::string SpecialFolderPath(SpecialFolder folder) = 0;
};

/// A shell made of fixed answers.
class ScriptedShell final : public Shell {
  public:
    std::function<std::string(const std::string&)> typeName = [](const std::string&) {
        return std::string();
    };
    std::function<QPixmap(const std::string&, IconSize)> icon = [](const std::string&, IconSize size) {
        return QPixmap(static_cast<int>(size), static_cast<int>(size));
    };
    std::vector<Drive> drives;
    std::string documents;
    std::string desktop;

    std::string FileTypeName(const std::string& path) override { return typeName(path); }
    QPixmap FileTypeIcon(const std::string& path, IconSize size) override { return icon(path, size); }
    std::vector<Drive> Drives() override { return drives; }
    std::string SpecialFolderPath(SpecialFolder folder) override {
        return folder == SpecialFolder::Documents ? documents : desktop;
    }
};

}  // namespace tessara
