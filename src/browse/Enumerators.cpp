#include "browse/Enumerators.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

namespace tessara {
namespace {

enum class EntryKind { File, Folder };

/// A link counts as what it leads to; one that leads nowhere is a file, so that it can be seen and deleted.
EntryKind KindOf(const std::string& folder, const dirent& entry) {
    if (entry.d_type == DT_DIR) return EntryKind::Folder;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return EntryKind::File;
    struct stat status {};
    const bool isFolder =
        stat(JoinPath(folder, entry.d_name).c_str(), &status) == 0 && S_ISDIR(status.st_mode);
    return isFolder ? EntryKind::Folder : EntryKind::File;
}

/// The names of one kind in a folder, sorted.
Result<std::vector<std::string>> NamesIn(const std::string& folder, EntryKind wanted) {
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(folder.c_str()), closedir);
    if (!stream) return CannotRead(std::generic_category().message(errno));
    std::vector<std::string> names;
    while (const dirent* entry = readdir(stream.get()))
        if (entry->d_name[0] != '.' && KindOf(folder, *entry) == wanted) names.emplace_back(entry->d_name);
    std::ranges::sort(names);
    return names;
}

std::string WithoutEndSeparator(std::string path) {
    while (path.size() > 1 && path.ends_with('/')) path.pop_back();
    return path;
}

}  // namespace

std::string JoinPath(const std::string& folder, const std::string& name, PathRules rules) {
    return folder.ends_with(rules.separator) ? folder + name : folder + rules.separator + name;
}

Result<void> FileEnumerator::SetPath(const std::string& path) {
    TRY_ASSIGN(names_, NamesIn(path, EntryKind::File));
    const std::string plain = WithoutEndSeparator(path);
    const bool changed = plain != path_;
    path_ = plain;
    if (changed && PathChange) PathChange();
    return {};
}

Result<void> FileEnumerator::Refresh() {
    Result<std::vector<std::string>> names = NamesIn(path_, EntryKind::File);
    // A folder that has gone has no files any more.
    names_ = names ? std::move(names).Value() : std::vector<std::string>();
    if (!names) return names.Error();
    return {};
}

Result<void> FolderEnumerator::SetPath(const std::string& path) {
    TRY_ASSIGN(std::vector<std::string> names, NamesIn(path, EntryKind::Folder));
    path_ = path;
    paths_.clear();
    for (const std::string& name : names) paths_.push_back(JoinPath(path, name));
    return {};
}

Result<void> FolderEnumerator::Refresh() {
    return SetPath(std::string(path_));
}

}  // namespace tessara
