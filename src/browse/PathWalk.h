#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/Paths.h"

namespace tessara {

/// Cuts the first component off a path: `head` is what stands before the first separator, `path` what stands
/// behind it.
void PathHead(std::string& head, std::string& path, PathRules rules = PathRules::Native());

/// Leaves the last component of a path. One without a separator stays as it is.
void GetPath(std::string& path, PathRules rules = PathRules::Native());

/// A typed path, absolute and with a separator at its end. What is relative begins at `drive`.
std::string AbsolutePath(std::string_view typed, const std::string& drive, const std::string& home,
                         PathRules rules = PathRules::Native());

/// The position of the drive whose key is the longest head of a path.
std::optional<std::size_t> DriveOfPath(std::span<const std::string> keys, std::string_view path,
                                       PathRules rules = PathRules::Native());

/// A place in a tree of folders that can be left downwards.
class TreeWalker {
  public:
    virtual ~TreeWalker() = default;
    /// The keys below this place: at the start those of the drives.
    virtual std::vector<std::string> KeysBelow() = 0;
    /// Goes to the one at a position of KeysBelow.
    virtual void Enter(std::size_t position) = 0;
};

/// Walks from the computer to the deepest place on an absolute path that the tree has. A name that matches
/// exactly goes before one that matches in capitals.
void WalkDown(TreeWalker& walker, std::string path, PathRules rules = PathRules::Native());

}  // namespace tessara
