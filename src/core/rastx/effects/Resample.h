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

}  // namespace tessara
