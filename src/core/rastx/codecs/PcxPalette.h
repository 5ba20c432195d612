#pragma once

#include "core/rastx/codecs/PcxHeader.h"

namespace tessara::pcx {

using Palette = std::array<Pixel, 256>;

/// The colours of a picture that has up to 16: those of its header, or of the graphics adapter that it was
/// made on.
Palette SmallPalette(const Header& header);

}  // namespace tessara::pcx
