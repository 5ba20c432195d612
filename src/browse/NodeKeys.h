#pragma once

#include <string>
#include <string_view>

#include "browse/TreePictures.h"
#include "core/Paths.h"
#include "desktop/Shell.h"

namespace tessara {

/// The keys of the two nodes of the tree that are no paths. Keys that begin with the second are virtual: they
/// stand for the documents folder and what is in it.
inline constexpr std::string_view kComputerKey = "mycomputer";
inline constexpr std::string_view kDocumentsKey = "My Documents";

bool IsVirtualKey(std::string_view key);
/// The path that a key stands for.
std::string RealPath(const std::string& key, const std::string& documentsPath);

/// A drive as the tree shows it.
struct DriveNode {
    std::string key;
    std::string text;
    TreePicture picture = TreePicture::UnknownDrive;
    bool lookAhead = true;  ///< False for what spins or blinks when it is read
};
DriveNode DriveNodeFor(const Drive& drive, PathRules rules = PathRules::Native());

}  // namespace tessara
