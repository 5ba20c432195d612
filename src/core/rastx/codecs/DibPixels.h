#pragma once

#include <vector>

#include "core/Result.h"
#include "core/rastx/codecs/DibHeader.h"

/// The pixels of a device independent bitmap behind its header and colour table. Rows that a cut file lacks
/// become white, or transparent where there is alpha.
namespace tessara::dib {

/// Which bits of a pixel are which colour: as the header says, or as is usual. `fourthByteCounts`: 32-bit
/// pixels have alpha without a mask for it.
Masks MasksOf(const DibHeader& header, bool fourthByteCounts);
/// Uncompressed rows of any depth.
Result<Picture> DecodeRows(const DibHeader& header, Bytes bits, const Masks& masks, std::vector<Pixel> colors,
                           const Limits& limits);
/// Run-length coded pixels of 4, 8 or 24 bits. What the runs skip gets the first colour, in 24 bits
/// black.
Result<Picture> DecodeRuns(const DibHeader& header, Bytes bits, std::vector<Pixel> colors,
                           const Limits& limits);

}  // namespace tessara::dib
