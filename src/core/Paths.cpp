#include "core/Paths.h"

namespace tessara {
namespace {

constexpr std::string_view kSeparators = "/\\";

bool EndsInSeparator(std::string_view path) {
    return !path.empty() && kSeparators.find(path.back()) != std::string_view::npos;
}

/// Whether a dot stands `fromEnd` characters from the end, the last character counting as 1.
bool DotAt(std::string_view name, std::size_t fromEnd) {
    return name.size() >= fromEnd && name[name.size() - fromEnd] == '.';
}

}  // namespace

void SplitPath(std::string_view path, std::string& folder, std::string& name, PathRules rules) {
    // The arguments may be the very texts that are split.
    const std::string whole(path);
    if (const std::size_t last = whole.find_last_of(kSeparators); last != std::string::npos) {
        folder = whole.substr(0, last + 1);
        name = whole.substr(last + 1);
    } else if (rules.driveLetters && whole.size() >= 2 && whole[1] == ':') {
        folder = whole.substr(0, 2) + rules.separator;
        name = whole.substr(2);
    } else {
        name = whole;
    }
}

void TrimSpaces(std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return;
    text = text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void GetFileWeb(std::string_view path, std::string& folder, std::string& baseName, std::string& extension,
                PathRules rules) {
    std::string name;
    SplitPath(path, folder, name, rules);
    if (!EndsInSeparator(folder)) folder += rules.separator;
    for (const std::size_t length : {std::size_t{3}, std::size_t{4}}) {
        if (!DotAt(name, length + 1)) continue;
        extension = name.substr(name.size() - length);
        baseName = name.substr(0, name.size() - length - 1);
        return;
    }
}

std::string_view ExtensionOf(std::string_view path) {
    const std::size_t separator = path.find_last_of(kSeparators);
    const std::string_view name = separator == std::string_view::npos ? path : path.substr(separator + 1);
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view{} : name.substr(dot + 1);
}

}  // namespace tessara
