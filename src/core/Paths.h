#pragma once

#include <string>
#include <string_view>

namespace tessara {

/// How paths look on a system.
struct PathRules {
    char separator = '/';
    bool driveLetters = false;  ///< "c:name" has the folder "c:\"

    static constexpr PathRules Native() { return {}; }
    static constexpr PathRules WithDriveLetters() { return {'\\', true}; }
};

/// Splits at the last separator, of either kind, which stays with the folder. A path without one leaves
/// `folder` as it was and is all name; where there are drive letters "c:name" splits into "c:\" and "name".
void SplitPath(std::string_view path, std::string& folder, std::string& name,
               PathRules rules = PathRules::Native());

/// Removes blanks (and no other white space) from both ends, in place. A text of blanks only stays as it is.
void TrimSpaces(std::string& text);

/// SplitPath with a folder that always ends in a separator, and the name split at the dot before an extension
/// of three or four characters. Of a name without such an extension `baseName` and `extension` stay
/// untouched.
void GetFileWeb(std::string_view path, std::string& folder, std::string& baseName, std::string& extension,
                PathRules rules = PathRules::Native());

/// The text behind the last dot of a path's name, of any length; empty where there is none.
std::string_view ExtensionOf(std::string_view path);

}  // namespace tessara
