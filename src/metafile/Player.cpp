#include "metafile/Player.h"

#include <algorithm>
#include <cmath>

#include "core/rastx/MetafileModule.h"

namespace tessara::metafile {

QSize PictureSize(double width, double height, std::size_t fileBytes, const Limits& limits) {
    // The rasteriser's coordinates end a little behind this.
    const double longest = std::min(limits.side, 32000);
    constexpr double kAlwaysAllowed = 64e6;
    constexpr double kMostPixelsPerByte = 8;
    const double mostPixels =
        std::min(static_cast<double>(limits.decodedBytes / sizeof(Pixel)),
                 std::max(kAlwaysAllowed, kMostPixelsPerByte * static_cast<double>(fileBytes)));
    width = std::max(width, 1.0);
    height = std::max(height, 1.0);
    double scale = std::min(1.0, longest / std::max(width, height));
    scale = std::min(scale, std::sqrt(0.999 * mostPixels / (width * height)));
    const auto pixels = [&](double length) {
        return std::max(1, static_cast<int>(std::lround(length * scale)));
    };
    return {pixels(width), pixels(height)};
}

QRgb ColorOf(std::uint32_t value, const Palette& palette) {
    constexpr std::uint32_t kIndexFlag = 1;
    const std::size_t index = value & 0xFFFF;
    if (value >> 24 == kIndexFlag && index < palette.colors->size()) {
        const Pixel color = (*palette.colors)[index];
        return qRgb(color.r, color.g, color.b);
    }
    return qRgb(static_cast<int>(value & 0xFF), static_cast<int>((value >> 8) & 0xFF),
                static_cast<int>((value >> 16) & 0xFF));
}

std::vector<Pixel> ReadPaletteColors(ByteReader& reader, std::size_t count) {
    std::vector<Pixel> colors(std::min(count, reader.Left() / 4));
    for (Pixel& color : colors) {
        color.r = reader.U8();
        color.g = reader.U8();
        color.b = reader.U8();
        reader.Skip(1);
    }
    return colors;
}

void ReadFontStyle(ByteReader& reader, Font& font) {
    font.italic = reader.U8() != 0;
    font.underline = reader.U8() != 0;
    font.strikeOut = reader.U8() != 0;
    font.charset = reader.U8();
    reader.Skip(3);
    font.pitchAndFamily = reader.U8();
}

}  // namespace tessara::metafile

/// The entry of the module.
extern "C" __attribute__((visibility("default"))) void TessaraPlayMetafile(
    tessara::MetafileKind kind, tessara::Bytes file, const tessara::DecodeOptions& options,
    tessara::Result<tessara::Picture>& played) {
    using namespace tessara::metafile;
    played = kind == tessara::MetafileKind::Windows ? PlayWmf(file, options) : PlayEmf(file, options);
}
