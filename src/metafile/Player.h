#pragma once

#include "core/ByteReader.h"
#include "core/rastx/Codec.h"
#include "metafile/Canvas.h"
#include "metafile/Objects.h"

namespace tessara::metafile {

/// Draws a whole Windows metafile.
Result<Picture> PlayWmf(Bytes file, const DecodeOptions& options);
/// Draws a whole enhanced metafile.
Result<Picture> PlayEmf(Bytes file, const DecodeOptions& options);
/// Draws an enhanced metafile that another carries, so that its picture fills the canvas; whether it drew
/// anything.
bool PlayEmfOn(Canvas& canvas, Bytes file, const DecodeOptions& options);
/// The same for a Windows metafile.
bool PlayWmfOn(Canvas& canvas, Bytes file, const DecodeOptions& options);

/// The size in pixels of a picture that should measure `width` by `height`: rounded, and shrunk in proportion
/// where the limits, or those of drawing, require it. A file of few bytes makes no enormous picture.
QSize PictureSize(double width, double height, std::size_t fileBytes, const Limits& limits);

/// Colours as records hold them: red, green, blue, and a flag that may make them an index into the palette.
QRgb ColorOf(std::uint32_t value, const Palette& palette);

/// As many of the colours as there are, each in four bytes: red, green, blue and a flag.
std::vector<Pixel> ReadPaletteColors(ByteReader& reader, std::size_t count);

/// What both kinds of font records have alike, from the flags of style to the family.
void ReadFontStyle(ByteReader& reader, Font& font);

}  // namespace tessara::metafile
