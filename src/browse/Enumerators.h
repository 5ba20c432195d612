#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/Paths.h"
#include "core/Result.h"

namespace tessara {

/// The hidden enumerator of a folder's plain files, sorted by name, without hidden ones.
class FileEnumerator {
  public:
    /// Raised when SetPath goes to another folder.
    std::function<void()> PathChange = {};

    const std::string& Path() const { return path_; }
    /// Goes to a folder and reads it; `Path` has no separator at its end. A folder that cannot be read is a
    /// failure and changes nothing.
    Result<void> SetPath(const std::string& path);
    Result<void> Refresh();
    int ListCount() const { return static_cast<int>(names_.size()); }
    /// The name of a file, from 0.
    const std::string& List(int i) const { return names_[static_cast<std::size_t>(i)]; }

  private:
    std::string path_;
    std::vector<std::string> names_;
};

/// The hidden enumerator of a folder's subfolders, sorted by name, without hidden ones. `List` gives full
/// paths. A symbolic link to a folder counts as one.
class FolderEnumerator {
  public:
    const std::string& Path() const { return path_; }
    Result<void> SetPath(const std::string& path);
    Result<void> Refresh();
    int ListCount() const { return static_cast<int>(paths_.size()); }
    const std::string& List(int i) const { return paths_[static_cast<std::size_t>(i)]; }

  private:
    std::string path_;
    std::vector<std::string> paths_;
};

/// A folder and a name joined by exactly one separator.
std::string JoinPath(const std::string& folder, const std::string& name,
                     PathRules rules = PathRules::Native());

}  // namespace tessara
