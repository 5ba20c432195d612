#include "edit/OwnEffects.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "tests/Support.h"

namespace tessara {
namespace {

/// The target after an effect; it starts as a copy of the source.
Picture Apply(const Picture& source, int code, double depth, OwnEffects::Options options = {}) {
    Picture target = source;
    OwnEffects(source, target, std::move(options)).ApplyOwnEffect(code, depth, [] {
        FAIL() << "not at this depth";
    });
    return target;
}

Picture OnePixel(int red, int green, int blue) {
    Picture picture = test::Must(Picture::Create(1, 1, Alpha::None));
    picture.MutablePixels()[0] = PixelFromColor(RGB(red, green, blue));
    return picture;
}

struct Rgb {
    int r, g, b;
    bool operator==(const Rgb&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Rgb& c) {
    return out << c.r << ' ' << c.g << ' ' << c.b;
}

TEST(OwnEffects, ChannelsFollowTheirFormulasInOrder) {
    struct Case {
        const char* name;
        int code;
        double depth;
        Rgb in, out;
    };
    const Case cases[] = {
        {"heat leaves black", 19, 1, {0, 0, 0}, {0, 0, 0}},
        {"heat of a grey", 19, 1, {100, 100, 100}, {255, 203, 206}},
        {"heat at twice the slider is half as bright", 19, 2, {100, 100, 100}, {255, 101, 103}},
        // R = 128 * 65025 / 10 = 832320, less 25 times 32767 = 13145; B = G = 0
        {"heat wraps at 32767", 19, 100, {255, 0, 0}, {131, 0, 0}},
        {"night", 20, 1, {100, 200, 50}, {39, 156, 10}},
        {"night, darker", 20, 2, {100, 200, 50}, {20, 78, 5}},
        // R = 1.5 |100 - 200 - 50| = 225, G = 1.5 |200 - 50 - 225| = 112.5, B = 1.5 |50 - 225 - 112.5| =
        // 431.25
        {"ice adds a half to the depth and rounds to even", 21, 0.5, {100, 200, 50}, {225, 112, 255}},
        // R = 150^2 / 125 = 180, G = 130^2 / 125 = 135.2, B = 44.8^2 / 125 = 16.06
        {"aqua", 22, 1, {100, 200, 50}, {180, 135, 16}},
        // q = 4: R = 125 * 4 / sqrt(17) + 20 = 141.27; q = 2.825: G = 137.83; q = 1.025: B = 109.47
        {"strange", 23, 1, {100, 200, 50}, {141, 138, 109}},
        // G = B = 1: R = 125 / sqrt(2) + 20 = 108.39; G = 144.99; q = 0.7475: B = 94.84
        {"strange without green sets blue too", 23, 1, {9, 0, 200}, {108, 145, 95}},
        {"darkness looks at red alone", 24, 1, {100, 200, 50}, {36, 28, 28}},
        // R = 200 * 50 / 256 = 39.06, G = 39.06 * 50 / 256 = 7.63, B = 39.06 * 7.63 / 256 = 1.16
        {"africa", 25, 1, {100, 200, 50}, {39, 8, 1}},
        // R = 100 * 450 / 256 = 175.78, G = 175.78 * 75.78 / 256 = 52.03, B = 52.03 * 223.75 / 256 = 45.48
        // rounded 176, 52, 45: their mean is 91
        {"comic ends grey", 28, 1, {100, 200, 50}, {91, 91, 91}},
        {"black only below the threshold on all three", 30, 1.25, {187, 187, 187}, {0, 0, 0}},
        {"white above it on one", 30, 1.25, {0, 188, 0}, {255, 255, 255}},
        {"a code without a rule copies", 26, 1, {1, 2, 3}, {1, 2, 3}},
    };
    for (const Case& row : cases) {
        const Pixel p = Apply(OnePixel(row.in.r, row.in.g, row.in.b), row.code, row.depth).At(0, 0);
        EXPECT_EQ((Rgb{p.r, p.g, p.b}), row.out) << row.name;
    }
}

TEST(OwnEffects, StrangeIsTheSineOfTheArcTangentForEveryColor) {
    for (const double depth : {0.01, 0.37, 1.0, 2.0}) {
        Picture source = test::PhotoLike(300, 200);
        const Picture result = Apply(source, 23, depth);
        for (std::size_t i = 0; i < source.PixelCount(); ++i) {
            double r, g, b;
            SplitColor(ColorFromPixel(source.Pixels()[i]), r, g, b);
            if (g == 0 || b == 0) g = b = 1;
            r = std::abs(std::sin(std::atan(g / b)) * 125 + 20) / depth;
            g = std::abs(std::sin(std::atan(r / b)) * 125 + 20) / depth;
            b = std::abs(std::sin(std::atan(r / g)) * 125 + 20) / depth;
            ClampChannels(r, g, b);
            const Pixel expected{static_cast<std::uint8_t>(std::nearbyint(b)),
                                 static_cast<std::uint8_t>(std::nearbyint(g)),
                                 static_cast<std::uint8_t>(std::nearbyint(r)), 255};
            ASSERT_EQ(result.Pixels()[i], expected) << depth;
        }
    }
}

TEST(OwnEffects, NeighboursOutsideCountAsMinusOne) {
    struct Case {
        const char* name;
        int code;
        double depth;
        int color;
    };
    const Case cases[] = {
        // 1000 - |-4| / 4
        {"rects of a single pixel", 27, 1, 999},
        {"rects at half the depth: 499.5 goes to the even 500", 27, 0.5, 500},
        {"crazy lines of a single pixel: -8 / 8", 29, 1, 0xffffff},
        {"crazy lines at a small depth: the low 24 bits of -100", 29, 0.01, 0x1000000 - 100},
    };
    for (const Case& row : cases) {
        Picture source = OnePixel(0, 0, 0);
        source.MutablePixels()[0] = PixelFromColor(1000);
        EXPECT_EQ(ColorFromPixel(Apply(source, row.code, row.depth).At(0, 0)), row.color) << row.name;
    }
    Picture row = test::Must(Picture::Create(3, 1, Alpha::None));
    for (std::size_t x = 0; x < 3; ++x)
        row.MutablePixels()[x] = PixelFromColor(static_cast<ColorNumber>(100 * (x + 1)));
    const Picture rects = Apply(row, 27, 1);
    EXPECT_EQ(ColorFromPixel(rects.At(0, 0)), 51) << "100 - |200 - 3| / 4 = 50.75";
    EXPECT_EQ(ColorFromPixel(rects.At(1, 0)), 100) << "200 - |300 + 100 - 2| / 4 = 100.5, to even";
    const Picture lines = Apply(row, 29, 1);
    EXPECT_EQ(ColorFromPixel(lines.At(1, 0)), 49) << "(100 + 300 - 6) / 8 = 49.25";
}

/// A column of greys, each row its own.
Picture Column(int height) {
    Picture picture = test::Must(Picture::Create(1, height, Alpha::None));
    for (int y = 0; y < height; ++y) picture.MutableRow(y)[0] = Grey(static_cast<std::uint8_t>(10 * y));
    return picture;
}

std::vector<int> Greys(const Picture& picture) {
    std::vector<int> greys;
    for (const Pixel p : picture.Pixels()) greys.push_back(p.g / 10);
    return greys;
}

TEST(OwnEffects, WaveMovesRowsForwardInWriteOrder) {
    using Rows = std::vector<int>;
    EXPECT_EQ(Greys(Apply(Column(8), 114, 1)), (Rows{3, 4, 5, 6, 7, 5, 6, 7}))
        << "up by 3, the last keep the source";
    // Row y goes to 2 (y - 3): gaps show the source.
    EXPECT_EQ(Greys(Apply(Column(8), 114, 2)), (Rows{3, 1, 4, 3, 5, 5, 6, 7}));
    // Row y goes to (y - 3) / 2: rows -1.5, -1, -0.5, 0, 0.5, 1, 1.5, 2 with ties to even, the later one
    // stays.
    EXPECT_EQ(Greys(Apply(Column(8), 114, 0.5)), (Rows{4, 5, 7, 3, 4, 5, 6, 7}));
    // Column 1 is shifted by sin(1) * 6 = 5.05 more.
    Picture two = test::Must(Picture::Create(2, 12, Alpha::None));
    for (int y = 0; y < 12; ++y) two.MutableRow(y)[1] = Grey(static_cast<std::uint8_t>(10 * y));
    const Picture waved = Apply(two, 114, 1);
    EXPECT_EQ(waved.At(1, 2).g, 0) << "row 0 goes to -3 + 5.05";
    EXPECT_EQ(waved.At(1, 11).g, 90);
}

TEST(OwnEffects, DepthZeroShowsTheSource) {
    const Picture source = test::PhotoLike(5, 4);
    Picture target = source;
    int shown = 0;
    for (const int code : {19, 24, 114})
        OwnEffects(source, target, {}).ApplyOwnEffect(code, 0, [&] { ++shown; });
    EXPECT_EQ(shown, 3);
    EXPECT_EQ(test::LargestDifference(source, target), 0);
}

TEST(OwnEffects, KeepsPixelsOfTheTransparentColor) {
    for (const int code : {19, 20, 27, 29, 30}) {
        const Picture source = test::Draw("W5R 5W5 W55");
        const Picture kept =
            Apply(source, code, 1, {.keepTransparent = true, .TransparentColor = RGB(255, 255, 255)});
        const Picture changed = Apply(source, code, 1);
        for (std::size_t i = 0; i < source.PixelCount(); ++i) {
            const bool white = source.Pixels()[i] == kWhite;
            EXPECT_EQ(kept.Pixels()[i], white ? kWhite : changed.Pixels()[i]) << code << " at " << i;
        }
    }
    // Wave looks at the place it writes to.
    Picture column = Column(6);
    column.MutableRow(1)[0] = kWhite;
    const Picture waved =
        Apply(column, 114, 1, {.keepTransparent = true, .TransparentColor = RGB(255, 255, 255)});
    EXPECT_EQ(waved.At(0, 1), kWhite);
    EXPECT_EQ(waved.At(0, 2).g, 50);
}

TEST(OwnEffects, ReportsEveryRow) {
    struct Case {
        int code;
        std::vector<int> values;
        int max;
    };
    for (const Case& row : {Case{20, {0, 1, 2}, 0}, {27, {0, 1, 2}, 0}, {114, {0, 1, 2, 3, 4, 5}, 6}}) {
        std::vector<int> values;
        int max = 0;
        Apply(test::PhotoLike(4, 3), row.code, 1,
              {.progressMax = [&](int value) { max = value; },
               .progress = [&](int value) { values.push_back(value); }});
        EXPECT_EQ(values, row.values) << row.code;
        EXPECT_EQ(max, row.max) << row.code;
    }
}

}  // namespace
}  // namespace tessara
