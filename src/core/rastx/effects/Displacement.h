#pragma once

#include "core/rastx/effects/Kernel.h"

/// Operations that shift pixels locally, alpha with them. The random ones take their numbers from the seed.
namespace tessara::effects {

/// Rows and columns displaced by a wave 100 pixels long and `depth` pixels high, on a picture of 500.
Result<Picture> RippleSine(const Picture& picture, int depth, const EffectRun& run = {});
Result<Picture> RippleTooth(const Picture& picture, int depth, const EffectRun& run = {});
Result<Picture> RippleTriangle(const Picture& picture, int depth, const EffectRun& run = {});
Result<Picture> RippleRandom(const Picture& picture, int depth, const EffectRun& run = {});

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
/// Square glass bricks, each refracting its piece; `depth` from 1 to 100 is the strength.
Result<Picture> Tile2(const Picture& picture, int depth, const EffectRun& run = {});
/// Rippled glass: `scale` is the size of the ripples, `chaos` how far they refract, each from 1 to 20.
Result<Picture> TexturedGlass(const Picture& picture, float scale, int chaos, const EffectRun& run = {});

}  // namespace tessara::effects
