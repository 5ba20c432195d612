#pragma once

#include "core/rastx/effects/Kernel.h"

namespace tessara::effects {

/// Cells of the given size, each in its mean colour; alpha stays.
Picture Mosaic(Picture picture, int cellWidth, int cellHeight, const EffectRun& run = {});

}  // namespace tessara::effects
