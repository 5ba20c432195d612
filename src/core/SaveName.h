#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tessara {

/// A type of file that the save dialog offers.
struct SaveNameFilter {
    std::string_view name;     ///< "GIF Files (*.gif)"
    std::string_view pattern;  ///< "*.gif"
};

/// In an order of their own; the last is for all files.
std::span<const SaveNameFilter> SaveNameFilters();

/// What the save dialog starts with for a file whose target was refused.
struct SaveNameStart {
    int filterIndex = 1;  ///< from 1; 1 also for a suffix that no filter has
    /// With the folder. A suffix of three letters is left out: the dialog shows it as the chosen type.
    std::string path;
};
SaveNameStart StartOfSaveName(const std::string& folder, const std::string& name);

}  // namespace tessara
