#pragma once

#include <string>

namespace tessara {

/// The window's caption: the file and its position in the list.
inline std::string CaptionText(const std::string& path, int ListIndex, int count) {
    return path + "   [" + std::to_string(ListIndex) + "/" + std::to_string(count) + "]";
}
inline std::string PictureSizeText(int width, int height) {
    return "Size: " + std::to_string(width) + " x " + std::to_string(height);
}
inline std::string ZoomText(int percent) {
    return "Zoom: " + std::to_string(percent) + "%";
}
/// A delay, to the nearest second; none is told as 0.
inline std::string SecondsText(int milliseconds) {
    const int seconds = (milliseconds + 500) / 1000;
    return seconds == 1 ? "(1 Second)" : "(" + std::to_string(seconds) + " Seconds)";
}

}  // namespace tessara
