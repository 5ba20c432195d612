#pragma once

#include "core/rastx/effects/Kernel.h"

/// Raised looks, lit from the upper left, and the mask of an ellipse. Depth is the strength of light and
/// shade, weight the width of the rim, both from 0 to 100. Alpha stays.
namespace tessara::effects {

/// A straight bevel.
Picture ButtonSimple(Picture picture, int depth, int weight, const EffectRun& run = {});
/// Rounded towards all four sides.
Picture ButtonSmooth(Picture picture, int depth, const EffectRun& run = {});
/// Oval buttons: a flat top with a rim, a dome, a sunken dish.
Picture ButtonEllipse1(Picture picture, int depth, int weight, const EffectRun& run = {});
Picture ButtonEllipse2(Picture picture, int depth, int weight, const EffectRun& run = {});
Picture ButtonEllipse3(Picture picture, int depth, int weight, const EffectRun& run = {});

/// Paints everything outside of the inscribed ellipse in `color`; the rim is antialiased.
Picture MaskEllipse(Picture picture, ColorNumber color, const EffectRun& run = {});

}  // namespace tessara::effects
