#include "core/SaveName.h"

#include <algorithm>

#include "core/Text.h"

namespace tessara {
namespace {

constexpr SaveNameFilter kFilters[] = {
    {"GIF Files (*.gif)", "*.gif"},    {"JPG Files (*.jpg)", "*.jpg"},      {"PNG Files (*.png)", "*.png"},
    {"WBMP Files (*.wbmp)", "*.wbmp"}, {"Windows Bitmap (*.bmp)", "*.bmp"}, {"EMF Files (*.emf)", "*.emf"},
    {"TGA Files (*.tga)", "*.tga"},    {"TIF Files (*.tif)", "*.tif"},      {"WMF Files (*.wmf)", "*.wmf"},
    {"Icon Files (*.ico)", "*.ico"},   {"All Files (*.*)", "*.*"},
};
constexpr int kUsualFilter = 1;

bool Fits(std::string_view name, const SaveNameFilter& filter) {
    const std::string_view suffix = filter.pattern.substr(1);
    return name.size() >= suffix.size() &&
           EqualIgnoringCase(name.substr(name.size() - suffix.size()), suffix);
}

int FilterIndex(std::string_view name) {
    const auto row = std::ranges::find_if(kFilters, [&](const auto& filter) { return Fits(name, filter); });
    return row == std::end(kFilters) ? kUsualFilter : static_cast<int>(row - kFilters) + 1;
}

}  // namespace

std::span<const SaveNameFilter> SaveNameFilters() {
    return kFilters;
}

SaveNameStart StartOfSaveName(const std::string& folder, const std::string& name) {
    constexpr std::size_t kSuffixLength = 4;
    const bool hasSuffix = name.size() >= kSuffixLength && name[name.size() - kSuffixLength] == '.';
    const bool needsSeparator = !folder.empty() && !folder.ends_with('/');
    return {FilterIndex(name), folder + (needsSeparator ? "/" : "") +
                                   name.substr(0, name.size() - (hasSuffix ? kSuffixLength : 0))};
}

}  // namespace tessara
