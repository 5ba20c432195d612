#pragma once

#include <QImage>
#include <cstdint>
#include <span>

/// What the parts of the canvas have in common.
namespace tessara::metafile {

// What drawing costs, in units of the work budget.
constexpr double kCall = 500;
constexpr double kPerLayerPixel = 8;

inline double AreaOf(const QRect& box) {
    return static_cast<double>(box.width()) * box.height();
}

inline std::span<std::uint32_t> RowOf(QImage& image, int y) {
    return {reinterpret_cast<std::uint32_t*>(image.scanLine(y)), static_cast<std::size_t>(image.width())};
}
inline std::span<const std::uint32_t> RowOf(const QImage& image, int y) {
    return {reinterpret_cast<const std::uint32_t*>(image.constScanLine(y)),
            static_cast<std::size_t>(image.width())};
}

}  // namespace tessara::metafile
