#pragma once

#include <span>

#include "core/Bytes.h"

/// A Photo CD picture before it has colours: planes of samples.
namespace tessara::pcd {

/// One component of a picture.
struct Plane {
    std::size_t width = 0;
    std::size_t height = 0;
    ByteVector samples;

    Plane() = default;
    Plane(std::size_t w, std::size_t h) : width(w), height(h), samples(w * h) {}
    std::span<std::uint8_t> Row(std::size_t y) { return std::span(samples).subspan(y * width, width); }
    Bytes Row(std::size_t y) const { return Bytes(samples).subspan(y * width, width); }
};

/// Luma and two chroma planes of half its width and height, whose samples lie on every second of luma.
struct Components {
    Plane luma, blue, red;
};

/// A plane of twice the width and height. The writer predicted the next larger size in exactly this way.
Plane Doubled(const Plane& plane);

}  // namespace tessara::pcd
