#include "core/rastx/codecs/PcxPalette.h"

#include <algorithm>
#include <span>

#include "core/rastx/Rows.h"

namespace tessara::pcx {
namespace {

/// The colours of the graphics adapters of 1984: intensity, red, green and blue as one bit each.
Pixel AdapterColor(unsigned index) {
    const std::uint8_t base = index & 8 ? 0x55 : 0;
    const auto channel = [&](unsigned bit) {
        return static_cast<std::uint8_t>(base + (index & bit ? 0xaa : 0));
    };
    if (index == 6) return {0x00, 0x55, 0xaa, 255};  // their screens show dark yellow as brown
    return {channel(1), channel(2), channel(4), 255};
}

Palette HeaderPalette(const Header& header) {
    Palette palette;
    RgbToPixels(header.palette, std::span(palette).first(16));
    return palette;
}

/// The four colours that a program for the CGA screen chose: the background in byte 16 of the file, the other
/// three by the bits of byte 19.
Palette CgaPalette(const Header& header) {
    const std::uint8_t choice = header.palette[3];
    const unsigned bright = choice & 0x20 ? 8 : 0;
    const bool cyan = choice & 0x40;
    const bool burst = choice & 0x80;
    Palette palette;
    palette[0] = AdapterColor(header.palette[0] >> 4);
    palette[1] = AdapterColor(bright + (cyan ? 3 : 2));
    palette[2] = AdapterColor(bright + (cyan && burst ? 5 : 4));
    palette[3] = AdapterColor(bright + (cyan ? 7 : 6));
    return palette;
}

/// Whether four colours of the header are meant for a picture of two bits. Programs for the CGA screen leave
/// there what they had in memory, and give the size of their screen as the dots per inch.
bool IsFourColorPalette(const Header& header, const Palette& palette) {
    for (unsigned i = 0; i < 4; ++i)
        for (unsigned k = i + 1; k < 4; ++k)
            if (palette[i] == palette[k]) return false;
    return !header.cgaScreen;
}

/// Most readers take one bit as black and white, because old programs left the colours of the screen in the
/// header. Two greys there are believed all the same: they are how an inverted picture says so.
Palette TwoColorPalette(const Palette& palette) {
    const auto grey = [](Pixel pixel) { return pixel.b == pixel.g && pixel.g == pixel.r; };
    if (grey(palette[0]) && grey(palette[1]) && palette[0] != palette[1]) return palette;
    return Palette{kBlack, kWhite};
}

}  // namespace

// Version 3 says that there is no palette, but other readers and writers go by what stands there.
Palette SmallPalette(const Header& header) {
    Palette palette = HeaderPalette(header);
    if (header.bits == 1 && header.planes == 1) return TwoColorPalette(palette);
    if (header.bits == 2) return IsFourColorPalette(header, palette) ? palette : CgaPalette(header);
    if (std::ranges::all_of(header.palette, [](std::uint8_t value) { return value == 0; }))
        for (unsigned i = 0; i < 16; ++i) palette[i] = AdapterColor(i);
    return palette;
}

}  // namespace tessara::pcx
