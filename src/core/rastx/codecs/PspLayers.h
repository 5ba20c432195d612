#pragma once

#include <vector>

#include "core/rastx/Compositor.h"
#include "core/rastx/codecs/PspBitmap.h"
#include "core/rastx/codecs/PspBlocks.h"

namespace tessara {

/// A layer as the file records it; the samples are still packed. The boxes are on the canvas and may stick
/// out.
struct PspLayer {
    enum class Type { Undefined, Raster, Floating, Vector, Adjustment, Group, Mask, ArtMedia };

    Type type = Type::Raster;
    Box box;
    Box maskBox;
    std::uint8_t opacity = 255;
    std::uint8_t blend = 0;
    bool visible = true;
    bool maskDisabled = false, maskInverted = false;
    std::vector<PspChannel> channels;
    std::uint32_t memberCount = 0;  ///< of a group: how many of the layers that follow belong to it
    std::vector<PspLayer> members;

    bool HasPixels() const { return type <= Type::Floating; }
    const PspChannel* Channel(PspChannel::Use use) const;
};

/// Reads the layers of a bank, the lowest first, as far as they go. Hidden ones are left out, with their
/// members.
Result<std::vector<PspLayer>> ReadPspLayers(PspContent bank, int version);

/// Whether everything that these layers show can be drawn from their pixels.
bool CanDrawAll(const std::vector<PspLayer>& layers);
/// Whether the lowest layer leaves nothing transparent.
bool HasOpaqueGround(const std::vector<PspLayer>& layers, const Box& canvas);

/// The picture that the layers make; those without pixels of their own are passed over. Fails where nothing
/// is left.
Result<Picture> ComposePspLayers(const std::vector<PspLayer>& layers, const PspLayout& layout,
                                 const Box& canvas, const Limits& limits);

}  // namespace tessara
