#pragma once

#include "core/rastx/effects/Kernel.h"

/// Edges and reliefs. All leave alpha alone; what is
/// transparent lends its colour to no neighbour.
namespace tessara::effects {

/// Dark lines on white.
Picture FindEdges(Picture picture, const EffectRun& run = {});
/// Darkens and lightens both sides of every edge; much stronger than sharpening.
Picture EnhanceEdge(Picture picture, const EffectRun& run = {});
/// Edges glow in the picture's colours on black.
Result<Picture> NeonTrace(const Picture& picture, const EffectRun& run = {});
/// A grey relief, lit from the upper left.
Picture Emboss(Picture picture, const EffectRun& run = {});
/// The relief in the picture's colours.
Picture EmbossColor(Picture picture, const EffectRun& run = {});

}  // namespace tessara::effects
