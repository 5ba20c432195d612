#pragma once

#include <vector>

#include "core/rastx/effects/Resample.h"

/// Which samples of the source make each position of a resampled row or column, and by what weights.
namespace tessara::resample {

/// The source positions that make one position of the result: `count` of them from `first`. They may lie up
/// to kMargin outside of the source, where its outermost sample goes on.
struct Window {
    int first = 0;
    int count = 0;
};
inline constexpr int kMargin = 3;

/// The windows and weights of one axis.
struct Axis {
    std::vector<Window> windows;
    std::vector<float> weights;  ///< `stride` for each window
    int stride = 0;
    bool lanczos = false;
    int sourceFirst = 0;  ///< where the windows count from
    int sourceCount = 0;

    const float* WeightsOf(int position) const {
        return &weights[static_cast<std::size_t>(position) * static_cast<std::size_t>(stride)];
    }
};

/// Enlarging, the windows of Lanczos have six positions, those of the linear kernel two.
Axis ChooseAxis(int source, int target, ResampleQuality quality);

/// The windows of a stretch of the result, and as much of the source as they need.
void CutOut(Axis& axis, int begin, int count);

}  // namespace tessara::resample
