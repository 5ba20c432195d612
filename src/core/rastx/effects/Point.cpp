#include "core/rastx/effects/Point.h"

#include <array>
#include <cmath>

#include "core/rastx/effects/LookUp.h"

namespace tessara::effects {
namespace {

constexpr std::size_t kBlock = 64;

constexpr auto kColorMask = [] {
    std::array<std::uint8_t, kBlock> mask{};
    for (std::size_t i = 0; i < kBlock; ++i) mask[i] = i % 4 == 3 ? 0 : 255;
    return mask;
}();

/// rule(value) for each channel, the same for all. Alpha goes through the rule too and is masked out: that is
/// how the loop runs over plain bytes. Only one pointer, so that the compiler sees that the work is in place.
template <typename Rule>
TESSARA_ALWAYS_INLINE void ChangeChannels(std::uint8_t* bytes, std::size_t length, Rule rule) {
    const auto change = [&](std::size_t start, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint8_t value = bytes[start + i];
            const auto changed = static_cast<std::uint8_t>(rule(value));
            bytes[start + i] = static_cast<std::uint8_t>(value ^ ((changed ^ value) & kColorMask[i]));
        }
    };
    std::size_t start = 0;
    for (; start + kBlock <= length; start += kBlock) change(start, kBlock);
    change(start, length - start);
}

/// rule(pixel) for each pixel as one word; alpha stays.
template <typename Rule>
TESSARA_ALWAYS_INLINE void ChangePixels(std::uint8_t* bytes, std::size_t length, Rule rule) {
    for (std::size_t i = 0; i < length; i += 4) {
        const std::uint32_t pixel = LoadPixel(bytes + i);
        StorePixel(bytes + i, (pixel & kAlphaBits) | (rule(pixel) & kColorBits));
    }
}

/// rule(blue, green, red) for each pixel, which gives them as one word.
template <typename Rule>
TESSARA_ALWAYS_INLINE void ChangeColors(std::uint8_t* bytes, std::size_t length, Rule rule) {
    ChangePixels(bytes, length, [rule](std::uint32_t pixel) {
        return rule(static_cast<int>(pixel & 255), static_cast<int>((pixel >> 8) & 255),
                    static_cast<int>((pixel >> 16) & 255));
    });
}
TESSARA_ALWAYS_INLINE std::uint32_t Pack(int blue, int green, int red) {
    return static_cast<std::uint32_t>(blue | (green << 8) | (red << 16));
}

TESSARA_MULTIVERSION void NegateRow(std::uint8_t* bytes, std::size_t length) {
    ChangePixels(bytes, length, [](std::uint32_t pixel) { return ~pixel; });
}

TESSARA_MULTIVERSION void ShiftRow(std::uint8_t* bytes, std::size_t length, int shift) {
    ChangeChannels(bytes, length, [shift](std::uint8_t value) { return ToByte(value + shift); });
}

/// value * factor / 256 + offset / 256
TESSARA_MULTIVERSION void ScaleRow(std::uint8_t* bytes, std::size_t length, int factor, int offset) {
    ChangeChannels(bytes, length, [=](std::uint8_t value) { return ToByte((value * factor + offset) >> 8); });
}

TESSARA_MULTIVERSION void BalanceRow(std::uint8_t* bytes, std::size_t length, int blue, int green, int red) {
    ChangeColors(bytes, length, [=](int b, int g, int r) {
        return Pack(ToByte(b + blue), ToByte(g + green), ToByte(r + red));
    });
}

TESSARA_MULTIVERSION void GreyRow(std::uint8_t* bytes, std::size_t length) {
    ChangeColors(bytes, length, [](int b, int g, int r) {
        return ((static_cast<std::uint32_t>(19595 * r + 38470 * g + 7471 * b) + 32768u) >> 16) * 0x010101u;
    });
}

TESSARA_MULTIVERSION void SwapRedBlueRow(std::uint8_t* bytes, std::size_t length) {
    ChangePixels(bytes, length, [](std::uint32_t pixel) {
        return (pixel & 0xff00) | ((pixel >> 16) & 0xff) | (pixel << 16);
    });
}
TESSARA_MULTIVERSION void SwapRedGreenRow(std::uint8_t* bytes, std::size_t length) {
    ChangePixels(bytes, length, [](std::uint32_t pixel) {
        return (pixel & 0xff) | ((pixel >> 8) & 0xff00) | ((pixel << 8) & 0xff0000);
    });
}
TESSARA_MULTIVERSION void SwapGreenBlueRow(std::uint8_t* bytes, std::size_t length) {
    ChangePixels(bytes, length, [](std::uint32_t pixel) {
        return (pixel & 0xff0000) | ((pixel >> 8) & 0xff) | ((pixel << 8) & 0xff00);
    });
}

/// The upper bits of each value times `spread` / 256.
TESSARA_MULTIVERSION void PosterizeRow(std::uint8_t* bytes, std::size_t length, int bits, int spread) {
    const auto shift = static_cast<std::uint16_t>(8 - bits);
    const auto factor = static_cast<std::uint16_t>(spread);
    ChangeChannels(bytes, length, [=](std::uint8_t value) {
        const auto level = static_cast<std::uint16_t>(value >> shift);
        return static_cast<std::uint16_t>(level * factor + 128) >> 8;
    });
}

TESSARA_MULTIVERSION void SolarizeRow(std::uint8_t* bytes, std::size_t length, int threshold) {
    // The sign of the difference spreads over all bits; a comparison keeps the loop from vectorising.
    ChangeChannels(bytes, length,
                   [threshold](int value) { return value ^ (((threshold - value) >> 31) & 255); });
}

struct ColorizeFactors {
    float turn;  ///< of the hue, in twelfths of the circle
    float saturation;
    float luminance;
};

/// One channel of a colour in hue, saturation and luminance: `place` is its place on the circle, `chroma`
/// half the spread of the channels.
TESSARA_ALWAYS_INLINE int ChannelOfHue(float place, float hue, float luminance, float chroma) {
    float k = place + hue;
    k = k >= 12.0f ? k - 12.0f : k;
    float slope = k - 3 < 9 - k ? k - 3 : 9 - k;
    slope = slope < 1.0f ? slope : 1.0f;
    slope = slope > -1.0f ? slope : -1.0f;
    return ToByte(luminance - chroma * slope);
}

TESSARA_MULTIVERSION void ColorizeRow(std::uint8_t* bytes, std::size_t length,
                                      const ColorizeFactors& factors) {
    const ColorizeFactors by = factors;
    ChangeColors(bytes, length, [by](int blue, int green, int red) {
        const auto b = static_cast<float>(blue);
        const auto g = static_cast<float>(green);
        const auto r = static_cast<float>(red);
        const float highGreenBlue = g > b ? g : b;
        const float lowGreenBlue = g > b ? b : g;
        const float high = r > highGreenBlue ? r : highGreenBlue;
        const float low = r < lowGreenBlue ? r : lowGreenBlue;
        const float spread = high - low;
        const float perSpread = spread > 0 ? 2 / spread : 0.0f;
        // The hue in twelfths: red at 0, green at 4, blue at 8.
        const float fromRed = (g - b) * perSpread;
        const float fromGreen = 4 + (b - r) * perSpread;
        const float fromBlue = 8 + (r - g) * perSpread;
        float hue = high == g ? fromGreen : fromBlue;
        hue = high == r ? fromRed : hue;
        hue += by.turn;
        hue = hue < 0 ? hue + 12 : hue;
        hue = hue >= 12 ? hue - 12 : hue;
        const float luminance = (high + low) * 0.5f;
        const float room = luminance < 127.5f ? luminance : 255 - luminance;
        float saturation = room > 0 ? spread * 0.5f / room * by.saturation : 0.0f;
        saturation = saturation < 1 ? saturation : 1.0f;
        float newLuminance = luminance * by.luminance;
        newLuminance = newLuminance < 255 ? newLuminance : 255.0f;
        const float newRoom = newLuminance < 127.5f ? newLuminance : 255 - newLuminance;
        const float chroma = saturation * newRoom;
        return Pack(ChannelOfHue(4, hue, newLuminance, chroma), ChannelOfHue(8, hue, newLuminance, chroma),
                    ChannelOfHue(0, hue, newLuminance, chroma));
    });
}

/// Runs a row function with its settings over the picture.
template <typename RowFunction, typename... Settings>
Picture ChangeBytes(Picture picture, const EffectRun& run, RowFunction function,
                    const Settings&... settings) {
    return ChangeRows(std::move(picture), run, [&](std::span<Pixel> row, int) {
        function(BytesOf(row), 4 * row.size(), settings...);
    });
}

}  // namespace

Picture Negative(Picture picture, const EffectRun& run) {
    return ChangeBytes(std::move(picture), run, NegateRow);
}

Picture Brightness(Picture picture, int percent, const EffectRun& run) {
    const int shift = static_cast<int>(std::lround(std::clamp(percent, -100, 100) * 1.28));
    return ChangeBytes(std::move(picture), run, ShiftRow, shift);
}

Picture Contrast(Picture picture, int percent, const EffectRun& run) {
    percent = std::clamp(percent, -100, 100);
    const double factor = 1 + (percent < 0 ? percent / 100.0 : percent / 50.0);
    const int fixed = static_cast<int>(std::lround(256 * factor));
    // Around 127.5; the last 128 rounds.
    return ChangeBytes(std::move(picture), run, ScaleRow, fixed, (256 - fixed) * 255 / 2 + 128);
}

Picture Gamma(Picture picture, float gamma, const EffectRun& run) {
    ByteTable table;
    const double exponent = 1.0 / std::max(0.01, static_cast<double>(gamma));
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] =
            static_cast<std::uint8_t>(std::lround(255 * std::pow(static_cast<double>(i) / 255, exponent)));
    return ChangeRows(std::move(picture), run, [&](std::span<Pixel> row, int) { LookUpColors(table, row); });
}

Picture Colorize(Picture picture, int hue, int saturation, int luminance, const EffectRun& run) {
    if (hue == 0 && saturation == 0 && luminance == 0) return picture;
    const auto share = [](int value) { return static_cast<float>(std::clamp(value, -250, 250)) / 250; };
    const ColorizeFactors factors{6 * share(hue), 1 + share(saturation), 1 + share(luminance)};
    return ChangeBytes(std::move(picture), run, ColorizeRow, factors);
}

Picture ColorBalance(Picture picture, int red, int green, int blue, const EffectRun& run) {
    const auto shift = [](int amount) { return std::clamp(amount, -255, 255); };
    return ChangeBytes(std::move(picture), run, BalanceRow, shift(blue), shift(green), shift(red));
}

Picture GrayScale(Picture picture, const EffectRun& run) {
    return ChangeBytes(std::move(picture), run, GreyRow);
}

Picture SwapRedBlue(Picture picture, const EffectRun& run) {
    return ChangeBytes(std::move(picture), run, SwapRedBlueRow);
}
Picture SwapRedGreen(Picture picture, const EffectRun& run) {
    return ChangeBytes(std::move(picture), run, SwapRedGreenRow);
}
Picture SwapGreenBlue(Picture picture, const EffectRun& run) {
    return ChangeBytes(std::move(picture), run, SwapGreenBlueRow);
}

Picture Posterize(Picture picture, int bits, const EffectRun& run) {
    bits = std::clamp(bits, 1, 8);
    const int highest = (1 << bits) - 1;
    return ChangeBytes(std::move(picture), run, PosterizeRow, bits, (255 * 256 + highest / 2) / highest);
}

Picture Solarize(Picture picture, int threshold, const EffectRun& run) {
    return ChangeBytes(std::move(picture), run, SolarizeRow, std::clamp(threshold, 0, 255));
}

}  // namespace tessara::effects
