#pragma once

#include <vector>

#include "core/rastx/codecs/PsdColors.h"
#include "core/rastx/codecs/PsdLayers.h"

namespace tessara {

/// The picture that the layers make. Fails where none of them has pixels to show. Layers that have no pixels
/// of their own (adjustments, fills, text that was never drawn) leave no trace.
Result<Picture> ComposePsdLayers(const std::vector<PsdLayerRecord>& records, const PsdHeader& header,
                                 const PsdColors& colors, const Limits& limits);

}  // namespace tessara
