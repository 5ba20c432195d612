#include "core/rastx/codecs/PcdColors.h"

#include <algorithm>

namespace tessara::pcd {
namespace {

/// Brightness to tones of sRGB, as a curve that is straight between these points.
struct Knot {
    int in, out;
};
/// White of the scene is near 247, highlights reach 346 and are bent rather than cut.
constexpr Knot kFilmTones[] = {{0, 0},     {61, 64},   {130, 139}, {194, 201},
                               {241, 236}, {270, 249}, {304, 254}, {350, 255}};
/// White is the largest luma, 346.
constexpr Knot kFullRangeTones[] = {{0, 0}, {346, 255}, {350, 255}};

constexpr ToneTable MakeToneTable(std::span<const Knot> knots) {
    ToneTable table{};
    for (std::size_t k = 1; k < knots.size(); ++k) {
        const Knot from = knots[k - 1];
        const Knot to = knots[k];
        const int width = to.in - from.in;
        for (int i = 0; i <= width; ++i)
            table[static_cast<std::size_t>(from.in + i)] =
                static_cast<std::uint8_t>(from.out + ((to.out - from.out) * i + width / 2) / width);
    }
    return table;
}

std::uint8_t Tone(const ToneTable& tones, int fixed) {
    constexpr int kFraction = 20;
    const int value = (fixed + (1 << (kFraction - 1))) >> kFraction;
    return tones[static_cast<std::size_t>(std::clamp(value, 0, kBrightest))];
}

}  // namespace

constexpr ToneTable kFilmToneTable = MakeToneTable(kFilmTones);
constexpr ToneTable kFullRangeToneTable = MakeToneTable(kFullRangeTones);

// The factors are fixed point numbers of 20 bits.
void ComponentsToPixels(Bytes luma, Bytes blue, Bytes red, const ToneTable& tones, std::span<Pixel> pixels) {
    constexpr int kNeutralBlue = 156, kNeutralRed = 137;
    for (std::size_t x = 0; x < pixels.size(); ++x) {
        const int y = 1424386 * luma[x];
        const int b = blue[x] - kNeutralBlue;
        const int r = red[x] - kNeutralRed;
        pixels[x] = {Tone(tones, y + 2325637 * b), Tone(tones, y - 451174 * b - 972180 * r),
                     Tone(tones, y + 1909981 * r), 255};
    }
}

}  // namespace tessara::pcd
