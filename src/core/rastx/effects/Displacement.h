#pragma once

#include "core/rastx/effects/Kernel.h"

/// Operations that move whole pixels, alpha with them. They are random and take their numbers from the seed.
namespace tessara::effects {

/// Bands displaced at random by up to `amount` of the side; what leaves the picture comes back mirrored.
Result<Picture> ShakeUpDown(const Picture& picture, float amount, const EffectRun& run = {});
Result<Picture> ShakeLeftRight(const Picture& picture, float amount, const EffectRun& run = {});

/// Streaks blown to the right from edges, up to `depth` pixels long on a picture of 500. Alpha stays.
Picture Wind(Picture picture, int depth, const EffectRun& run = {});
/// Each pixel becomes a random one within `depth` pixels.
Result<Picture> Diffuse(const Picture& picture, int depth, const EffectRun& run = {});

/// Tiles shifted at random by up to `depth` percent of half their side. In the gaps the background shows:
/// nothing where there is alpha, else white.
Result<Picture> Tile1(const Picture& picture, int depth, const EffectRun& run = {});

}  // namespace tessara::effects
