#pragma once

#include <QMimeDatabase>
#include <map>
#include <string>

#include "desktop/Shell.h"

namespace tessara {

/// The desktop's own database of types, its icon theme, its mounts and its folders.
class DesktopShell final : public Shell {
  public:
    std::string FileTypeName(const std::string& path) override;
    QPixmap FileTypeIcon(const std::string& path, IconSize size) override;
    std::vector<Drive> Drives() override;
    std::string SpecialFolderPath(SpecialFolder folder) override;

  private:
    QMimeType TypeOf(const std::string& path) const;

    QMimeDatabase types_;
    std::map<std::string, std::string, std::less<>> typeNames_;  ///< by extension
};

}  // namespace tessara
