#pragma once

#include <optional>
#include <vector>

#include "core/Bytes.h"
#include "core/rastx/Compositor.h"
#include "core/rastx/codecs/PsdFormat.h"

namespace tessara {

/// A layer as the document records it; the samples are still packed.
struct PsdLayerRecord {
    /// Two records enclose the members of a group: the end mark lies below them, the group itself above.
    enum class Divider { None, Group, End };

    struct Channel {
        static constexpr int kAlpha = -1, kMask = -2;  ///< the others, from 0, are colours
        int id = 0;
        Bytes samples;
    };
    struct Mask {
        Box box;
        std::uint8_t outside = 0;
        bool disabled = false, inverted = false;
    };

    Box box;
    std::vector<Channel> channels;
    std::uint32_t blendKey = 0;
    std::uint8_t opacity = 255;
    std::uint8_t fill = 255;  ///< a second opacity, that of the pixels without effects
    bool clipped = false, hidden = false;
    Divider divider = Divider::None;
    std::optional<Mask> mask;

    Bytes Samples(int id) const;
};

struct PsdLayers {
    /// The first channel behind the colours of the merged picture is its transparency.
    bool mergedHasAlpha = false;
    std::vector<PsdLayerRecord> records;  ///< the lowest first
};

/// Reads the layer and mask section as far as it goes; a damaged one gives the layers before the damage.
PsdLayers ReadPsdLayers(Bytes section, const PsdHeader& header);

}  // namespace tessara
