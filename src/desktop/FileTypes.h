#pragma once

#include <QMimeType>
#include <QPixmap>
#include <string>

#include "desktop/Shell.h"

namespace tessara {

/// The name of a type as the file list shows it, from the description in the desktop's database and a file's
/// extension. "PNG image" becomes "Image (PNG)": a name that begins like the extension stands for a type that
/// nobody knows.
std::string TypeNameFrom(const std::string& description, std::string_view extension);

/// The icon of a type: the icon theme's, or one of our own drawing where the theme has none. `side` is in
/// pixels.
QPixmap IconOfType(const QMimeType& type, int side);
/// The icon that an icon file holds; empty where it cannot be read.
QPixmap IconOfIconFile(const std::string& path, int side);

}  // namespace tessara
