#pragma once

#include <string>

namespace tessara {

/// What a text is meant to name.
enum class PathNameKind {
    F,  ///< a file or folder within another one
    P,  ///< a whole path of a folder
};

/// Whether the file system takes a name, found out by trying: a folder of that name is made and removed at
/// once, for `F` below `appPath`, so that it does no harm where the name is to be used. What exists already
/// is valid.
bool CheckPathNameValid(const std::string& appPath, const std::string& text, PathNameKind kind);

}  // namespace tessara
