// The fast loops against plain slow ones, and what single effects promise beyond their pixels.

#include <gtest/gtest.h>

#include <cmath>

#include "core/rastx/effects/Buttons.h"
#include "core/rastx/effects/Convolution.h"
#include "core/rastx/effects/Displacement.h"
#include "core/rastx/effects/Edges.h"
#include "core/rastx/effects/Geometry.h"
#include "core/rastx/effects/Mosaic.h"
#include "core/rastx/effects/Noise.h"
#include "core/rastx/effects/Point.h"
#include "tests/Support.h"

namespace tessara::test {
namespace {

using effects::EffectRun;

int Channel(Pixel pixel, int index) {
    return index == 0 ? pixel.b : index == 1 ? pixel.g : pixel.r;
}

int Clamped(const Picture& picture, int x, int y, int index) {
    return Channel(picture.At(std::clamp(x, 0, picture.Width() - 1), std::clamp(y, 0, picture.Height() - 1)),
                   index);
}

/// A 3x3 kernel by the book.
int Weighted(const Picture& picture, int x, int y, int index, const int (&weights)[9], int divisor) {
    int sum = 0;
    for (int k = 0; k < 9; ++k) sum += weights[k] * Clamped(picture, x + k % 3 - 1, y + k / 3 - 1, index);
    return std::clamp(static_cast<int>(std::floor(sum / static_cast<double>(divisor) + 0.5)), 0, 255);
}

struct KernelCase {
    const char* name;
    Picture (*effect)(Picture, const EffectRun&);
    int weights[9];
    int divisor;
};

TEST(Effect, ConvolutionsAreThoseOfTheirKernels) {
    const KernelCase cases[] = {
        {"blur", effects::Blur, {1, 1, 1, 1, 1, 1, 1, 1, 1}, 9},
        {"soften", effects::Soften, {1, 2, 1, 2, 20, 2, 1, 2, 1}, 32},
        {"sharpen", effects::Sharpen, {-1, -2, -1, -2, 28, -2, -1, -2, -1}, 16},
        {"enhance edge", effects::EnhanceEdge, {-1, -1, -1, -1, 12, -1, -1, -1, -1}, 4},
    };
    const Picture source = PhotoLike(67, 31);
    for (const KernelCase& row : cases) {
        SCOPED_TRACE(row.name);
        const Picture result = row.effect(source, {.threads = 2});
        for (int y = 0; y < source.Height(); ++y)
            for (int x = 0; x < source.Width(); ++x)
                for (int c = 0; c < 3; ++c)
                    ASSERT_EQ(Channel(result.At(x, y), c),
                              Weighted(source, x, y, c, row.weights, row.divisor))
                        << x << ", " << y;
    }
}

// Hidden greens beside a visible pixel; nothing of them may show.
TEST(Effect, WindowsTakeNoColourFromTransparentPixels) {
    const Pixel grey{100, 100, 100, 255};
    Picture source = Must(Picture::Create(5, 4, Pixel{0, 255, 0, 0}, Alpha::Straight));
    source.MutableRow(1)[1] = source.MutableRow(1)[2] = grey;
    for (const auto& effect : {effects::Blur, effects::Soften, effects::Sharpen, effects::AntiAlias,
                               effects::EnhanceEdge, effects::EmbossColor}) {
        const Picture result = effect(source, {});
        EXPECT_EQ(result.At(1, 1), grey);
        EXPECT_EQ(result.At(2, 1), grey);
    }
    EXPECT_EQ(Must(effects::BoxBlur(source, 2, {})).At(1, 1), grey);
    EXPECT_EQ(Must(effects::HighPass(source, {})).At(1, 1), Grey(128));
    EXPECT_EQ(effects::FindEdges(source, {}).At(1, 1), kWhite);
}

TEST(Effect, WindowsTakeTheColourOfHalfTransparentPixelsByTheirAlpha) {
    Picture source = Must(Picture::Create(2, 1, Alpha::Straight));
    source.MutableRow(0)[0] = {100, 100, 100, 255};
    source.MutableRow(0)[1] = {190, 190, 190, 128};
    const Picture blurred = effects::Blur(source, {});
    // Six times 100, and three times 100 + 90 * 128 / 255; three times 100 and six times 190.
    EXPECT_EQ(blurred.At(0, 0), (Pixel{115, 115, 115, 255}));
    EXPECT_EQ(blurred.At(1, 0), (Pixel{160, 160, 160, 128}));
    const Picture boxed = Must(effects::BoxBlur(source, 1, {}));
    // (6 * 255 * 100 + 3 * 128 * 190) / (6 * 255 + 3 * 128) and the other way round.
    EXPECT_EQ(boxed.At(0, 0), (Pixel{118, 118, 118, 255}));
    EXPECT_EQ(boxed.At(1, 0), (Pixel{145, 145, 145, 128}));
}

TEST(Effect, ReliefsRaiseEdgesAndLeaveGrainAlone) {
    struct Case {
        std::uint8_t left, right, grey, newLeft, newRight;
    };
    // A step of 60 has a slope of 180: 180 * 180 / 204 / 2 = 79.4 in grey, 180 * 180 / 276 / 4 = 29.3 in
    // colour.
    for (const Case& row :
         {Case{60, 120, 207, 89, 149}, {120, 60, 49, 91, 31}, {60, 64, 130, 60, 64}, {7, 7, 128, 7, 7}}) {
        Picture step = Must(Picture::Create(2, 1, Alpha::None));
        step.MutableRow(0)[0] = Grey(row.left);
        step.MutableRow(0)[1] = Grey(row.right);
        const Picture grey = effects::Emboss(step), colored = effects::EmbossColor(step);
        for (const int x : {0, 1}) EXPECT_EQ(grey.At(x, 0), Grey(row.grey));
        EXPECT_EQ(colored.At(0, 0), Grey(row.newLeft));
        EXPECT_EQ(colored.At(1, 0), Grey(row.newRight));
    }
}

TEST(Effect, BoxBlurIsTheMeanOfItsWindow) {
    const Picture source = PhotoLike(40, 33);
    for (const int radius : {1, 4, 60}) {
        const Picture result = Must(effects::BoxBlur(source, radius, {.threads = 2}));
        for (const auto& [x, y] : {std::pair{0, 0}, {39, 0}, {20, 16}, {3, 32}}) {
            double sum = 0;
            for (int v = -radius; v <= radius; ++v)
                for (int u = -radius; u <= radius; ++u) sum += Clamped(source, x + u, y + v, 1);
            EXPECT_NEAR(result.At(x, y).g, sum / std::pow(2 * radius + 1, 2), 0.51) << radius;
        }
    }
}

TEST(Effect, MosaicCellsAreTheirMeans) {
    const Picture source = PhotoLike(50, 41);
    const Picture result = effects::Mosaic(source, 7, 5, {.threads = 3});
    for (const auto& [left, top] : {std::pair{0, 0}, {49, 40}, {14, 20}}) {
        double sum = 0;
        int count = 0;
        for (int y = top; y < std::min(top + 5, 41); ++y)
            for (int x = left; x < std::min(left + 7, 50); ++x, ++count) sum += source.At(x, y).r;
        EXPECT_NEAR(result.At(left, top).r, sum / count, 0.51);
    }
}

TEST(Effect, PointOperationsFollowTheirFormulas) {
    Picture ramp = Must(Picture::Create(256, 1, Alpha::None));
    for (int i = 0; i < 256; ++i)
        ramp.MutableRow(0)[static_cast<std::size_t>(i)] = Grey(static_cast<std::uint8_t>(i));
    const Picture darker = effects::Gamma(ramp, 0.5f), flat = effects::Contrast(ramp, -50),
                  strong = effects::Contrast(ramp, 50), four = effects::Posterize(ramp, 3),
                  sun = effects::Solarize(ramp, 100), light = effects::Brightness(ramp, 50);
    for (int i = 0; i < 256; ++i) {
        const auto rounded = [](double value) { return std::clamp(value, 0.0, 255.0); };
        EXPECT_NEAR(darker.At(i, 0).g, i * i / 255.0, 0.51);
        EXPECT_NEAR(flat.At(i, 0).g, 127.5 + (i - 127.5) / 2, 1);
        EXPECT_NEAR(strong.At(i, 0).g, rounded(127.5 + (i - 127.5) * 2), 1);
        EXPECT_NEAR(four.At(i, 0).g, (i >> 5) * 255 / 7.0, 0.51);
        EXPECT_EQ(sun.At(i, 0).g, i > 100 ? 255 - i : i);
        EXPECT_EQ(light.At(i, 0).g, std::min(255, i + 64));
    }
}

TEST(Effect, ColorizeAtNothingButATraceStaysClose) {
    const Picture photo = PhotoLike(90, 70);
    EXPECT_LE(LargestDifference(effects::Colorize(photo, 0, 0, 1), photo), 2);
    EXPECT_LE(LargestDifference(effects::Colorize(effects::Colorize(photo, 100, 0, 0), -100, 0, 0), photo),
              3);
}

TEST(Effect, NoiseStaysWithinItsPercentAndHasNoBias) {
    const Picture grey = Must(Picture::Create(300, 200, Grey(128), Alpha::None));
    const Picture noisy = effects::AddNoise(grey, 20, false, {.threads = 1, .seed = 3});
    double sum = 0;
    int most = 0;
    for (const Pixel pixel : noisy.Pixels()) {
        sum += pixel.g - 128;
        most = std::max({most, std::abs(pixel.b - 128), std::abs(pixel.g - 128), std::abs(pixel.r - 128)});
    }
    EXPECT_NEAR(sum / static_cast<double>(noisy.PixelCount()), 0, 0.5);
    EXPECT_LE(most, 51);
    EXPECT_GE(most, 49);
    const Picture even = effects::AddNoise(grey, 20, true, {.threads = 1, .seed = 3});
    for (const Pixel pixel : even.Pixels()) EXPECT_TRUE(pixel.b == pixel.g && pixel.g == pixel.r);
}

TEST(Effect, RotationHoldsTheWholePictureOnTheBackground) {
    const Picture red = Must(Picture::Create(40, 20, PixelFromColor(RGB(255, 0, 0)), Alpha::None));
    const Picture turned = Must(effects::Rotate(red, 30, RGB(0, 0, 255), {}));
    EXPECT_EQ(turned.Width(), 45);
    EXPECT_EQ(turned.Height(), 38);
    EXPECT_EQ(turned.At(0, 0), PixelFromColor(RGB(0, 0, 255)));
    EXPECT_EQ(turned.At(22, 19), PixelFromColor(RGB(255, 0, 0)));
    double area = 0;
    for (const Pixel pixel : turned.Pixels()) area += pixel.r / 255.0;
    EXPECT_NEAR(area, 800, 8);
}

TEST(Effect, MappingsMoveTheContentWhereTheirNamesSay) {
    Picture spot = Must(Picture::Create(101, 101, kBlack, Alpha::None));
    for (int y = 58; y < 63; ++y)
        for (int x = 58; x < 63; ++x) spot.MutableRow(y)[static_cast<std::size_t>(x)] = kWhite;
    const auto middle = [](const Picture& picture) {
        double x = 0, y = 0, sum = 0;
        for (int v = 0; v < picture.Height(); ++v)
            for (int u = 0; u < picture.Width(); ++u) {
                const double light = picture.At(u, v).g;
                x += light * u, y += light * v, sum += light;
            }
        return std::pair{x / sum, y / sum};
    };
    EXPECT_GT(middle(Must(effects::StretchDownRight(spot))).first, 75);
    EXPECT_LT(middle(Must(effects::StretchUpLeft(spot))).second, 57);
    EXPECT_GT(middle(Must(effects::FishEye(spot, 1.0f))).first, 65);
    const auto [x, y] = middle(Must(effects::Swirl(spot, 300)));
    EXPECT_NEAR(std::hypot(x - 50, y - 50), std::hypot(10, 10), 2.5);
    const Picture photo = PhotoLike(60, 40);
    EXPECT_LE(LargestDifference(Must(effects::FishEye(photo, 0.0f)), photo), 1);
    EXPECT_EQ(Must(effects::StretchDownRight(photo)).At(0, 0), photo.At(0, 0));
}

TEST(Effect, AnEllipseIsMaskedWithAnAntialiasedRim) {
    const Picture white = Must(Picture::Create(100, 60, kWhite, Alpha::None));
    const Picture masked = effects::MaskEllipse(white, RGB(0, 0, 0));
    EXPECT_EQ(masked.At(0, 0), kBlack);
    EXPECT_EQ(masked.At(50, 30), kWhite);
    double area = 0;
    for (const Pixel pixel : masked.Pixels()) area += pixel.g / 255.0;
    EXPECT_NEAR(area, 3.14159 * 50 * 30, 10);
}

TEST(Effect, ButtonsAreLitFromTheUpperLeft) {
    const Picture grey = Must(Picture::Create(80, 80, Grey(128), Alpha::None));
    for (const Picture& raised :
         {effects::ButtonSimple(grey, 40, 40), effects::ButtonSmooth(grey, 40),
          effects::ButtonEllipse1(grey, 40, 40), effects::ButtonEllipse2(grey, 40, 40)}) {
        EXPECT_GT(raised.At(40, 2).g, 150);
        EXPECT_LT(raised.At(40, 77).g, 110);
        EXPECT_EQ(raised.At(40, 40).g, 128);
    }
    EXPECT_LT(effects::ButtonEllipse3(grey, 40, 40).At(40, 2).g, 110);
}

TEST(Effect, AntiAliasSoftensStairStepsAndNothingElse) {
    const Picture upright = Draw("KKWWKK KKWWKK KKWWKK KKWWKK");
    EXPECT_EQ(LargestDifference(effects::AntiAlias(upright), upright), 0);
    const Picture steps = effects::AntiAlias(Draw("KKKKKK KKKKKK KKKWWW WWWWWW WWWWWW"));
    EXPECT_GT(steps.At(2, 2).g, 20);
    EXPECT_EQ(steps.At(0, 0), kBlack);
}

TEST(Effect, NeonLinesGlowInTheColourOfAShapeNotOfTheWhiteAroundIt) {
    const Picture traced = Must(effects::NeonTrace(Draw("WWWRRR WWWRRR WWWRRR")));
    for (const int x : {2, 3}) {
        EXPECT_GT(traced.At(x, 1).r, 250);
        EXPECT_EQ(traced.At(x, 1).g, 0);
    }
    EXPECT_EQ(traced.At(0, 1), kBlack);
}

TEST(Effect, WindBlowsToTheRight) {
    Picture bar = Must(Picture::Create(120, 60, kBlack, Alpha::None));
    for (int y = 0; y < 60; ++y)
        for (int x = 40; x < 60; ++x) bar.MutableRow(y)[static_cast<std::size_t>(x)] = kWhite;
    const Picture blown = effects::Wind(bar, 30, {.threads = 1, .seed = 4});
    int left = 0, right = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 40; ++x) left += blown.At(x, y).g;
        for (int x = 60; x < 120; ++x) right += blown.At(x, y).g;
    }
    EXPECT_EQ(left, 0);
    EXPECT_GT(right, 5000);
}

}  // namespace
}  // namespace tessara::test
