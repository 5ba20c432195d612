#pragma once

#include <string>

#include "core/Bytes.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"

namespace tessara {

/// The private file with the 24-bit copy of an icon that has alpha; the last one stays until the end.
inline constexpr const char* kScratchIcon = "Xptemp.ico";

/// Sizes in bytes of the parts of an icon's image. `height` is twice the image's: the colours and the mask
/// under them.
struct IconSizes {
    int rowSize = 0;
    int pixelBytes = 0;
    int maskRowSize = 0;
    int maskBytes = 0;
    int paletteBytes = 0;
    int total = 0;  ///< with the 40 bytes of the image header
};
IconSizes IconImageSizes(int width, int height, int bits);
/// The size of a bitmap's pixels within data that begin with its palette; of an icon less the image header
/// too.
int BitmapImageSize(int size, int bits, const std::string& kind);

/// Makes a 24-bit icon of one of 32 bits by dropping alpha. None where the icon has another depth. Image and
/// pixels are taken from fixed places behind a single directory entry; the entry's offset is not followed.
Result<ByteVector> AlphaIconTo24(Bytes icon);

/// Where the icon route keeps its scratch files, and what it needs to draw.
struct IconRoute {
    std::string scratchIcon;
    ColorNumber backColor;  ///< what transparent parts of small icons show
};

/// Prepares an icon as a bitmap file. An icon of 32 x 32 and not 32 bits is left alone (`converted` False).
/// One of 97 pixels and more is copied byte by byte, any other one is drawn on the back colour. An icon with
/// alpha goes by way of the scratch icon, which stays after drawing and goes after copying; `source` is
/// changed to it.
Result<void> PrepareIconBitmap(std::string& source, const std::string& bitmap, bool& converted,
                               const IconRoute& route);

}  // namespace tessara
