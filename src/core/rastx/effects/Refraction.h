#pragma once

#include "core/rastx/effects/Kernel.h"

/// Operations that show a picture as through water or glass: each pixel is interpolated at a place nearby,
/// alpha with it. The random ones take their numbers from the seed.
namespace tessara::effects {

/// Rows and columns displaced by a wave 100 pixels long and `depth` pixels high, on a picture of 500.
Result<Picture> RippleSine(const Picture& picture, int depth, const EffectRun& run = {});
Result<Picture> RippleTooth(const Picture& picture, int depth, const EffectRun& run = {});
Result<Picture> RippleTriangle(const Picture& picture, int depth, const EffectRun& run = {});
Result<Picture> RippleRandom(const Picture& picture, int depth, const EffectRun& run = {});

/// Square glass bricks, each refracting its piece; `depth` from 1 to 100 is the strength.
Result<Picture> Tile2(const Picture& picture, int depth, const EffectRun& run = {});
/// Rippled glass: `scale` is the size of the ripples, `chaos` how far they refract, each from 1 to 20.
Result<Picture> TexturedGlass(const Picture& picture, float scale, int chaos, const EffectRun& run = {});

}  // namespace tessara::effects
