#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/Bytes.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"

namespace tessara {

/// What an EXIF block says about showing its picture.
struct ExifFields {
    int orientation = 1;  ///< 1 to 8 as in TIFF 6.0; 1 is upright
    Resolution resolution;
};

/// Reads an EXIF block, from its TIFF header on. A damaged one gives what can be read.
ExifFields ReadExif(Bytes block);

/// The block for a picture that has been turned upright: orientation 1, and without the thumbnail, which
/// would still lie on its side. Empty where the block is none.
ByteVector UprightExif(Bytes block);

/// The block that a picture carries, as large in it as the picture is now: it may have been turned or
/// resized. Empty where there is none.
ByteVector ExifOf(const Picture& picture);

/// An entry of a directory, with its values in little endian.
struct ExifEntry {
    std::uint16_t tag, type;
    std::uint32_t count;
    ByteVector values;
};

/// What a block tells of a picture apart from how to show it; for a format with directories of its own.
struct ExifDirectories {
    std::vector<ExifEntry> image;  ///< maker, model, date, author and the like
    std::vector<ExifEntry> photo;  ///< how it was taken
    std::vector<ExifEntry> place;  ///< where
};
/// Entries whose values lie outside of the block are left out, and those for which a megabyte is not enough.
ExifDirectories ReadExifDirectories(Bytes block);

/// Whether showing a picture of this orientation upright swaps its width and height.
constexpr bool SwapsSides(int orientation) {
    return orientation >= 5 && orientation <= 8;
}

/// Turns a picture upright that is stored in the given orientation, with its resolution.
Result<Picture> ApplyOrientation(Picture picture, int orientation);

/// The same piece by piece, for decoders that go through the file in bands: puts rows `firstRow` and
/// following of a stored picture of `width` by `height` where they belong in the upright one.
void PlaceOriented(std::span<const Pixel> rows, int firstRow, int width, int height, int orientation,
                   std::span<Pixel> upright);

}  // namespace tessara
