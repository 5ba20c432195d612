#pragma once

#include "core/rastx/effects/Kernel.h"

/// Operations that move the pixels of the whole picture, alpha with them.
namespace tessara::effects {

Picture FlipHorizontal(Picture picture, const EffectRun& run = {});
Picture FlipVertical(Picture picture, const EffectRun& run = {});
/// The left half mirrored onto the right; the upper onto the lower.
Picture ReflectLeftRight(Picture picture, const EffectRun& run = {});
Picture ReflectUpDown(Picture picture, const EffectRun& run = {});

/// Counter-clockwise for positive angles. Quarter turns are exact; others enlarge the picture to hold the
/// whole turned one on `background`.
Result<Picture> Rotate(const Picture& picture, int degrees, ColorNumber background,
                       const EffectRun& run = {});

/// Pulls the picture out over one corner, as far as a third of it; the other three corners stay.
Result<Picture> StretchUpLeft(const Picture& picture, const EffectRun& run = {});
Result<Picture> StretchUpRight(const Picture& picture, const EffectRun& run = {});
Result<Picture> StretchDownLeft(const Picture& picture, const EffectRun& run = {});
Result<Picture> StretchDownRight(const Picture& picture, const EffectRun& run = {});

/// Turns the middle by `degrees`, less and less towards the rim of the inscribed ellipse.
Result<Picture> Swirl(const Picture& picture, int degrees, const EffectRun& run = {});
/// Bulges the picture like a wide-angle lens: the middle is enlarged to 1 + `strength` times, the corners
/// stay.
Result<Picture> FishEye(const Picture& picture, float strength, const EffectRun& run = {});

}  // namespace tessara::effects
