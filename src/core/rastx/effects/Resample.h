#pragma once

#include "core/Result.h"
#include "core/rastx/Picture.h"

namespace tessara {

enum class ResampleQuality {
    Best,  ///< enlarges by Lanczos-3 without ringing
    Fast,  ///< enlarges linearly: for viewers, which ask at every step of the zoom
};

/// The picture at a new size; a side below 1 becomes 1. Shrinking takes the mean of the covered area.
Result<Picture> Resample(const Picture& picture, int width, int height, ResampleQuality quality,
                         int threads = 1, const Limits& limits = {});

struct PicturePart {
    int x = 0, y = 0, width = 0, height = 0;
};
/// A part of the picture that Resample makes, pixel for pixel, at the cost of the part alone. `part` must lie
/// inside of the new size.
Result<Picture> ResamplePart(const Picture& picture, int width, int height, const PicturePart& part,
                             ResampleQuality quality, int threads = 1);

}  // namespace tessara
