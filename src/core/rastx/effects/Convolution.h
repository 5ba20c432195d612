#pragma once

#include "core/rastx/effects/Kernel.h"

/// Smoothing and sharpening over small windows. All leave alpha alone; what is
/// transparent lends its colour to no neighbour.
namespace tessara::effects {

/// The mean of the 3x3 window.
Picture Blur(Picture picture, const EffectRun& run = {});
/// A light blur: half the pixel, half a soft 3x3 window.
Picture Soften(Picture picture, const EffectRun& run = {});
/// Adds what a soft 3x3 window takes away.
Picture Sharpen(Picture picture, const EffectRun& run = {});
/// Smooths hard slanted edges, where stair-steps stand; flat areas and upright strokes stay.
Picture AntiAlias(Picture picture, const EffectRun& run = {});
/// Fine detail on mid grey: what differs from the mean of the wide surroundings.
Result<Picture> HighPass(const Picture& picture, const EffectRun& run = {});

/// The mean of the window that reaches `radius` pixels to each side; its cost does not grow with the radius.
Result<Picture> BoxBlur(const Picture& picture, int radius, const EffectRun& run = {});

}  // namespace tessara::effects
