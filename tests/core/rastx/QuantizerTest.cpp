#include "core/rastx/Quantizer.h"

#include <algorithm>

#include "tests/Support.h"

namespace tessara::test {
namespace {

/// The picture that the indexes stand for.
Picture Quantized(const Picture& picture, std::optional<ColorNumber> transparent = std::nullopt) {
    Quantizer quantizer(picture, transparent);
    EXPECT_LE(quantizer.Palette().size(), kMaximumColors);
    Picture result = Must(Picture::Create(picture.Width(), picture.Height(), Alpha::Straight));
    ByteVector indexes(static_cast<std::size_t>(picture.Width()));
    for (int y = 0; y < picture.Height(); ++y) {
        quantizer.NextRow(indexes);
        std::ranges::transform(indexes, result.MutableRow(y).begin(), [&](std::uint8_t index) {
            return index == quantizer.TransparentIndex() ? kTransparent : quantizer.Palette()[index];
        });
    }
    return result;
}

/// Colours 0 to `count` - 1, a pixel each, then `transparent` transparent pixels.
Picture Colors(int count, int transparent) {
    Picture picture = Must(Picture::Create(count + transparent, 1, Alpha::Straight));
    for (int i = 0; i < count; ++i)
        picture.MutablePixels()[static_cast<std::size_t>(i)] = {static_cast<std::uint8_t>(i), 100,
                                                                static_cast<std::uint8_t>(i / 256), 255};
    return picture;
}

TEST(Quantizer, IsExactAsLongAsAllColoursFit) {
    const struct {
        int colors, transparent;
        bool exact;
    } kCases[] = {{1, 0, true},    {256, 0, true},  {255, 3, true},
                  {256, 1, false}, {257, 0, false}, {0, 4, true}};
    for (const auto& [colors, transparent, exact] : kCases) {
        const Picture picture = Colors(colors, transparent);
        EXPECT_EQ(LargestDifference(Quantized(picture), picture) == 0, exact)
            << colors << " + " << transparent;
    }
}

TEST(Quantizer, ReducesTransparencyToYesOrNo) {
    Picture picture = Must(Picture::Create(4, 1, Alpha::Straight));
    const auto pixels = picture.MutablePixels();
    pixels[0] = {0, 0, 0, 127};
    pixels[1] = {0, 0, 0, 128};
    pixels[2] = {9, 8, 7, 255};
    pixels[3] = {127, 127, 127, 255};
    const Picture plain = Quantized(picture);
    EXPECT_EQ(plain.At(0, 0), kTransparent);
    EXPECT_EQ(plain.At(1, 0), Grey(127)) << "composed on white";
    EXPECT_EQ(plain.At(2, 0), pixels[2]);
    // What is seen is compared: the composed grey, too, is the named colour.
    const Picture named = Quantized(picture, RGB(127, 127, 127));
    EXPECT_EQ(named.At(1, 0), kTransparent);
    EXPECT_EQ(named.At(2, 0), pixels[2]);
    EXPECT_EQ(named.At(3, 0), kTransparent);
}

TEST(Quantizer, LeavesFlatAreasClean) {
    // A drawing with a photograph in it: its own colours get entries, and no error crosses their borders.
    constexpr Pixel kPaper{231, 240, 253, 255};
    constexpr Pixel kInk{77, 31, 3, 255};
    Picture picture = PhotoLike(200, 150);
    const auto isDrawing = [](int x, int y) { return x < 60 || y > 100; };
    const auto drawn = [](int x, int y) { return x % 23 < 3 && y % 11 < 7 ? kInk : kPaper; };
    for (int y = 0; y < 150; ++y)
        for (int x = 0; x < 200; ++x)
            if (isDrawing(x, y)) picture.MutableRow(y)[static_cast<std::size_t>(x)] = drawn(x, y);
    const Picture result = Quantized(picture);
    int wrong = 0;
    for (int y = 0; y < 150; ++y)
        for (int x = 0; x < 200; ++x) wrong += isDrawing(x, y) && result.At(x, y) != drawn(x, y);
    EXPECT_EQ(wrong, 0);
}

TEST(Quantizer, LetsNoErrorCrossTransparentPixels) {
    // A transparent column parts two photographs. Mirroring the left one changes no colour of the palette,
    // only the errors that are left over beside the column.
    const auto parted = [](bool mirrored) {
        Picture picture = PhotoLikeWithAlpha(121, 40);
        for (int y = 0; y < 40; ++y) {
            const auto row = picture.MutableRow(y);
            for (Pixel& pixel : row) pixel.a = 255;
            row[60] = kTransparent;
            if (mirrored) std::reverse(row.begin(), row.begin() + 60);
        }
        return Quantized(picture);
    };
    const Picture one = parted(false);
    const Picture other = parted(true);
    EXPECT_GT(LargestDifference(one, other), 0);
    EXPECT_EQ(LargestDifference(Must(one.Cropped(60, 0, 61, 40)), Must(other.Cropped(60, 0, 61, 40))), 0);
}

TEST(Quantizer, DithersToTheMeanOfEachShade) {
    // 600 shades between two colours that no palette of 256 holds one by one.
    Picture ramp = Must(Picture::Create(600, 32, Alpha::None));
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 600; ++x)
            ramp.MutableRow(y)[static_cast<std::size_t>(x)] = {
                static_cast<std::uint8_t>(x * 255 / 600), static_cast<std::uint8_t>(255 - x * 200 / 600),
                static_cast<std::uint8_t>(30 + (x * 7 + y * 3) % 60), 255};
    const Picture result = Quantized(ramp);
    for (int x = 0; x + 20 <= 600; x += 20) {
        int difference = 0;
        for (int y = 0; y < 32; ++y)
            for (int i = 0; i < 20; ++i) difference += result.At(x + i, y).b - ramp.At(x + i, y).b;
        EXPECT_LT(std::abs(difference) / 640.0, 1.5) << x;
    }
}

TEST(PaletteChoice, KeepsFixedColoursAndReachesTheExtremes) {
    std::vector<WeightedColor> colors;
    for (float value = 0; value < 256; value += 2) colors.push_back({{value, value, value}, 10});
    const Pixel fixed[] = {{1, 200, 3, 255}};
    const std::vector<Pixel> palette = ChoosePalette(colors, fixed, 9);
    ASSERT_EQ(palette.size(), 9u);
    EXPECT_EQ(palette[0], fixed[0]);
    const auto [least, most] =
        std::minmax_element(palette.begin() + 1, palette.end(), [](Pixel a, Pixel b) { return a.g < b.g; });
    EXPECT_LE(least->g, 4) << "a palette of means would begin at 16";
    EXPECT_GE(most->g, 250);
}

TEST(NearestColor, FindsTheFirstOfTheNearest) {
    const Pixel colors[] = {{0, 0, 0, 255}, {255, 255, 255, 255}, {10, 0, 0, 255}, {0, 10, 0, 255}};
    const NearestColor nearest(colors);
    EXPECT_EQ(nearest.Find({6, 0, 0, 255}), 2);
    EXPECT_EQ(nearest.Find({10, 10, 0, 255}), 2);
    EXPECT_EQ(nearest.Find({200, 90, 130, 255}), 1);
    EXPECT_EQ(nearest.Find({1, 1, 1, 255}), 0);
}

}  // namespace
}  // namespace tessara::test
