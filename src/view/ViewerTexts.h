#pragma once

#include <string>

namespace tessara {

inline constexpr char kDragToSelect[] = "Drag out a rectangle to select";

/// The window's caption: the file and its position in the list.
inline std::string CaptionText(const std::string& path, int ListIndex, int count) {
    return path + "   [" + std::to_string(ListIndex) + "/" + std::to_string(count) + "]";
}
inline std::string SizeText(int width, int height) {
    return "Size: " + std::to_string(width) + " x " + std::to_string(height);
}
inline std::string ZoomText(int percent) {
    return "Zoom: " + std::to_string(percent) + "%";
}

}  // namespace tessara
