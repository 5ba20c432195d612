#pragma once

#include <QImage>
#include <optional>

#include "core/Bytes.h"
#include "core/rastx/Codec.h"
#include "metafile/Objects.h"
#include "metafile/WorkBudget.h"

/// The bitmaps that records carry.
namespace tessara::metafile {

/// What the colour table of a bitmap in a record holds.
enum class ColorUsage : std::uint32_t { Colors = 0, PaletteIndexes = 1, None = 2 };

struct RecordBitmap {
    Bytes header;               ///< with masks and colour table
    std::optional<Bytes> bits;  ///< not given: they follow the table
    ColorUsage usage = ColorUsage::Colors;
    bool premultipliedAlpha = false;

    bool BottomUp() const;
};

/// An image on the pixels of a picture, which it keeps.
QImage ImageOf(Picture picture);

/// Decodes a bitmap; a null image where that fails: a drawing goes on without it.
QImage DecodeBitmap(const RecordBitmap& bitmap, const Palette& palette, const DecodeOptions& options,
                    WorkBudget& budget);

/// A device dependent bitmap: u16 type, width, height, bytes per row, u8 planes, u8 bits per pixel; its rows
/// begin at `bitsOffset`, from the top down. One of a single bit has the two colours black and white.
struct DeviceBitmap {
    QImage image;
    bool monochrome = false;
};
DeviceBitmap DecodeDeviceBitmap(Bytes bitmap, std::size_t bitsOffset, WorkBudget& budget);

}  // namespace tessara::metafile
