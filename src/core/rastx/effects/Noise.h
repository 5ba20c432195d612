#pragma once

#include "core/rastx/effects/Kernel.h"

namespace tessara::effects {

/// Adds a random value of up to `percent` of the range to each channel, the same to all where monochromatic.
/// Alpha stays.
Picture AddNoise(Picture picture, int percent, bool monochromatic, const EffectRun& run = {});

}  // namespace tessara::effects
