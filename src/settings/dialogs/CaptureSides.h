#pragma once

#include <algorithm>
#include <array>

namespace tessara {

/// Width and height of the area that a screen capture takes, in pixels. Index 0 is the width.
struct CaptureSides {
    std::array<int, 2> largest{};  ///< the screen's
    std::array<int, 2> size{};
    bool square = false;

    /// Cuts the value to what the screen holds; of a square the other side follows.
    void Set(std::size_t index, int value) {
        const int side = std::clamp(value, 0, square ? std::min(largest[0], largest[1]) : largest[index]);
        size[index] = side;
        if (square) size[1 - index] = side;
    }
};

}  // namespace tessara
