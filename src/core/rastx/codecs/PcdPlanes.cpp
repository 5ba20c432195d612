#include "core/rastx/codecs/PcdPlanes.h"

#include <algorithm>

namespace tessara::pcd {
namespace {

/// The samples between those of a row, and of the row below where there is one: the mean of their neighbours,
/// rounded. The last column stands in for the one behind it.
void InterpolateRow(Bytes row, Bytes below, std::span<std::uint8_t> even, std::span<std::uint8_t> odd) {
    const std::size_t last = row.size() - 1;
    for (std::size_t x = 0; x <= last; ++x) {
        const std::size_t next = std::min(x + 1, last);
        const unsigned a = row[x], b = row[next], c = below[x], d = below[next];
        even[2 * x] = row[x];
        even[2 * x + 1] = static_cast<std::uint8_t>((a + b + 1) >> 1);
        odd[2 * x] = static_cast<std::uint8_t>((a + c + 1) >> 1);
        odd[2 * x + 1] = static_cast<std::uint8_t>((a + b + c + d + 2) >> 2);
    }
}

}  // namespace

Plane Doubled(const Plane& plane) {
    Plane large(2 * plane.width, 2 * plane.height);
    for (std::size_t y = 0; y < plane.height; ++y)
        InterpolateRow(plane.Row(y), plane.Row(std::min(y + 1, plane.height - 1)), large.Row(2 * y),
                       large.Row(2 * y + 1));
    return large;
}

}  // namespace tessara::pcd
