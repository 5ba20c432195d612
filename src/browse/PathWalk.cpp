#include "browse/PathWalk.h"

#include <algorithm>
#include <filesystem>

#include "browse/Enumerators.h"
#include "core/Text.h"

namespace tessara {
namespace {

std::string OnDriveWithLetter(std::string path, const std::string& drive, char separator) {
    std::ranges::replace(path, '/', separator);
    if (path.starts_with(separator)) path.erase(0, 1);
    const bool hasDrive = path.size() >= 2 && path[1] == ':';
    if (!hasDrive) return drive + separator + path;
    if (path.size() == 2 || path[2] != separator) path.insert(2, 1, separator);
    return path;
}

/// Without doubled separators and without "." and "..".
std::string Absolute(const std::string& path, const std::string& drive, const std::string& home) {
    const bool inHome = path == "~" || path.starts_with("~/");
    const std::string whole = path.starts_with('/') ? path
                              : inHome              ? home + path.substr(1)
                                                    : JoinPath(drive, path);
    return std::filesystem::path(whole).lexically_normal().string();
}

bool IsHead(std::string_view key, std::string_view path, PathRules rules) {
    const std::string_view begin = path.substr(0, key.size());
    if (rules.driveLetters ? !EqualIgnoringCase(begin, key) : begin != key) return false;
    return key.ends_with(rules.separator) || path.size() == key.size() || path[key.size()] == rules.separator;
}

std::optional<std::size_t> PositionOf(const std::string& wanted, const std::vector<std::string>& keys) {
    auto found = std::ranges::find(keys, wanted);
    if (found == keys.end())
        found = std::ranges::find_if(keys, [&](const auto& key) { return EqualIgnoringCase(key, wanted); });
    if (found == keys.end()) return std::nullopt;
    return static_cast<std::size_t>(found - keys.begin());
}

}  // namespace

void PathHead(std::string& head, std::string& path, PathRules rules) {
    const std::size_t end = path.find(rules.separator);
    head = path.substr(0, end);
    path = end == std::string::npos ? std::string() : path.substr(end + 1);
}

// Not SplitPath: what is a separator elsewhere may be part of a folder's name.
void GetPath(std::string& path, PathRules rules) {
    path.erase(0, path.rfind(rules.separator) + 1);
}

std::string AbsolutePath(std::string_view typed, const std::string& drive, const std::string& home,
                         PathRules rules) {
    std::string path(typed);
    path = rules.driveLetters ? OnDriveWithLetter(path, drive, rules.separator) : Absolute(path, drive, home);
    if (!path.ends_with(rules.separator)) path += rules.separator;
    return path;
}

std::optional<std::size_t> DriveOfPath(std::span<const std::string> keys, std::string_view path,
                                       PathRules rules) {
    std::optional<std::size_t> longest;
    for (std::size_t i = 0; i < keys.size(); ++i)
        if (IsHead(keys[i], path, rules) && (!longest || keys[i].size() > keys[*longest].size())) longest = i;
    return longest;
}

void WalkDown(TreeWalker& walker, std::string path, PathRules rules) {
    std::vector<std::string> keys = walker.KeysBelow();
    std::optional<std::size_t> next = DriveOfPath(keys, path, rules);
    if (!next) return;
    path.erase(0, keys[*next].size());
    if (path.starts_with(rules.separator)) path.erase(0, 1);
    while (next) {
        const std::string place = keys[*next];
        walker.Enter(*next);
        if (path.empty()) return;
        std::string name;
        PathHead(name, path, rules);
        keys = walker.KeysBelow();
        next = PositionOf(JoinPath(place, name, rules), keys);
    }
}

}  // namespace tessara
