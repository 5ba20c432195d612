#include "core/rastx/effects/EffectTable.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/Support.h"

namespace tessara::effects {

void PrintTo(const Effect& effect, std::ostream* out) {
    *out << effect.name;
}

}  // namespace tessara::effects

namespace tessara::test {
namespace {

using effects::ArgumentValues;
using effects::Effect;
using effects::EffectRun;

/// Every argument at its usual value, all at the lowest, all at the highest.
std::vector<ArgumentValues> UsualAndBothEnds(const Effect& effect) {
    std::vector<ArgumentValues> values{effect.Usual()};
    if (effect.arguments.empty()) return values;
    ArgumentValues lowest{}, highest{};
    for (std::size_t i = 0; i < effect.arguments.size(); ++i) {
        lowest[i] = effect.arguments[i].lowest;
        highest[i] = effect.arguments[i].highest;
    }
    values.push_back(lowest);
    values.push_back(highest);
    if (effect.name == "FxRotate")
        for (const double degrees : {-90.0, 1.0, 45.0, 90.0, 180.0, 222.0, 270.0})
            values.push_back({degrees, double(RGB(1, 2, 3)), 0});
    return values;
}

std::vector<std::uint8_t> AlphaOf(const Picture& picture) {
    std::vector<std::uint8_t> alpha;
    for (const Pixel pixel : picture.Pixels()) alpha.push_back(pixel.a);
    return alpha;
}

class EveryEffect : public testing::TestWithParam<Effect> {};

TEST_P(EveryEffect, TakesEverySizeAtBothEndsAndKeepsAlpha) {
    const Effect& effect = GetParam();
    const std::pair<int, int> sizes[] = {{1, 1}, {1, 2}, {2, 1},  {1, 9},  {9, 1},
                                         {2, 2}, {3, 5}, {64, 3}, {71, 53}};
    for (const ArgumentValues& values : UsualAndBothEnds(effect)) {
        for (const auto& [width, height] : sizes) {
            for (const bool alpha : {false, true}) {
                SCOPED_TRACE(testing::Message()
                             << width << "x" << height << " alpha " << alpha << " first value " << values[0]);
                const Picture source = alpha ? PhotoLikeWithAlpha(width, height) : PhotoLike(width, height);
                const Picture result = Must(effect.apply(source, values, {.threads = 2, .seed = 5}));
                if (effect.name != "FxRotate") {
                    EXPECT_EQ(result.Width(), width);
                    EXPECT_EQ(result.Height(), height);
                }
                EXPECT_EQ(result.HasAlpha(), alpha);
                if (!effect.movesPixels) {
                    EXPECT_EQ(AlphaOf(result), AlphaOf(source));
                }
                if (!alpha) {
                    EXPECT_EQ(AlphaOf(result), std::vector<std::uint8_t>(result.PixelCount(), 255));
                }
            }
        }
    }
}

TEST_P(EveryEffect, IsTheSameOnOneThreadAndManyInPlaceAndNot) {
    const Effect& effect = GetParam();
    for (const ArgumentValues& values : UsualAndBothEnds(effect)) {
        for (const Picture& source : {PhotoLike(700, 400), PhotoLikeWithAlpha(700, 400)}) {
            const Picture once = Must(effect.apply(source, values, {.threads = 1, .seed = 5}));
            EXPECT_EQ(LargestDifference(once, Must(effect.apply(source, values, {.threads = 4, .seed = 5}))),
                      0);
            Picture own = source;
            own.MutablePixels();
            EXPECT_EQ(LargestDifference(
                          once, Must(effect.apply(std::move(own), values, {.threads = 3, .seed = 5}))),
                      0);
        }
    }
}

TEST_P(EveryEffect, LeavesThePictureThatItWasGivenAlone) {
    const Picture source = PhotoLike(50, 40);
    Must(GetParam().apply(source, UsualAndBothEnds(GetParam()).back(), {.threads = 2, .seed = 1}));
    EXPECT_EQ(LargestDifference(source, PhotoLike(50, 40)), 0);
}

TEST_P(EveryEffect, DependsOnTheSeedExactlyWhereItIsRandom) {
    const Effect& effect = GetParam();
    const Picture source = PhotoLike(200, 150);
    const ArgumentValues values = UsualAndBothEnds(effect).back();
    const Picture one = Must(effect.apply(source, values, {.threads = 1, .seed = 1}));
    const Picture two = Must(effect.apply(source, values, {.threads = 1, .seed = 2}));
    EXPECT_EQ(LargestDifference(one, two) != 0, effect.random);
}

INSTANTIATE_TEST_SUITE_P(Table, EveryEffect, testing::ValuesIn(effects::EffectTable()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(EffectTable, HoldsEachOperationOfThePaneOnce) {
    EXPECT_EQ(effects::EffectTable().size(), 52u);
    for (const Effect& effect : effects::EffectTable()) EXPECT_EQ(effects::FindEffect(effect.name), &effect);
    EXPECT_EQ(effects::FindEffect("FxNothing"), nullptr);
}

// ---- pixels worked out by hand

struct PixelCase {
    const char* effect;
    ArgumentValues values;
    const char* source;
    const char* result;
};

void PrintTo(const PixelCase& row, std::ostream* out) {
    *out << row.effect << " of " << row.source;
}

class EffectPixels : public testing::TestWithParam<PixelCase> {};

TEST_P(EffectPixels, AreAsWorkedOutByHand) {
    const PixelCase& row = GetParam();
    EXPECT_EQ(Sketch(Must(effects::FindEffect(row.effect)->apply(Draw(row.source), row.values, {}))),
              Sketch(Draw(row.result)));
}

// Digits are greys in steps of 28.
INSTANTIATE_TEST_SUITE_P(
    Point, EffectPixels,
    testing::Values(
        PixelCase{"FxNegative", {}, "KWRGB", "WKCMY"}, PixelCase{"FxSwapRedBlue", {}, "RGBY", "BGRC"},
        PixelCase{"FxSwapRedGreen", {}, "RGBC", "GRBM"}, PixelCase{"FxSwapGreenBlue", {}, "RGBY", "RBGM"},
        PixelCase{"FxBrightness", {100}, "5W", "WW"}, PixelCase{"FxBrightness", {-100}, "K4", "KK"},
        PixelCase{"FxBrightness", {22}, "024", "135"}, PixelCase{"FxContrast", {100}, "037W", "K0WW"},
        PixelCase{"FxGamma", {1}, "0123456789RGB", "0123456789RGB"},
        PixelCase{"FxPosterize", {1}, "04W", "KKW"}, PixelCase{"FxPosterize", {2}, "0W", "KW"},
        PixelCase{"FxSolarize", {112}, "34W", "34K"}, PixelCase{"FxColorBalance", {255, 0, -255}, "KM", "RR"},
        PixelCase{"FxColorize", {250, 0, 0}, "RGB5", "CMY5"},
        PixelCase{"FxColorize", {0, -250, 0}, "KW5", "KW5"},
        PixelCase{"FxColorize", {0, 0, -250}, "RGBW", "KKKK"},
        PixelCase{"FxColorize", {0, 0, 250}, "0124", "0248"}));

INSTANTIATE_TEST_SUITE_P(Moving, EffectPixels,
                         testing::Values(PixelCase{"FxFlipHorizontal", {}, "012 345", "210 543"},
                                         PixelCase{"FxFlipVertical", {}, "01 23 45", "45 23 01"},
                                         PixelCase{"FxReflectLeftRight", {}, "01234 5678R", "01210 56765"},
                                         PixelCase{"FxReflectUpDown", {}, "01 23 45", "01 23 01"},
                                         PixelCase{"FxRotate", {90}, "012 345", "25 14 03"},
                                         PixelCase{"FxRotate", {-90}, "012 345", "30 41 52"},
                                         PixelCase{"FxRotate", {270}, "012 345", "30 41 52"},
                                         PixelCase{"FxRotate", {180}, "012 345", "543 210"},
                                         PixelCase{"FxRotate", {360}, "012 345", "012 345"},
                                         PixelCase{"FxMosaic", {2, 2}, "02135 24135", "22225 22225"},
                                         PixelCase{"FxMosaic", {20, 20}, "0246", "3333"},
                                         PixelCase{"FxDiffuse", {0}, "0123", "0123"}));

INSTANTIATE_TEST_SUITE_P(Window, EffectPixels,
                         testing::Values(PixelCase{"FxBlur", {}, "000 090 000", "111 111 111"},
                                         PixelCase{"FxBlur", {}, "099", "369"},
                                         PixelCase{"FxFindEdges", {}, "000W 000W", "WWKK WWKK"},
                                         PixelCase{"FxEnhanceEdge", {}, "020 020 020", "050 050 050"},
                                         PixelCase{"FxEnhanceEdge", {}, "6266", "9096"}));

INSTANTIATE_TEST_SUITE_P(
    Constant, EffectPixels,
    testing::Values(
        PixelCase{"FxBlur", {}, "RR RR", "RR RR"}, PixelCase{"FxSoften", {}, "RR RR", "RR RR"},
        PixelCase{"FxSharpen", {}, "RR RR", "RR RR"}, PixelCase{"FxAntiAlias", {}, "RR RR", "RR RR"},
        PixelCase{"FxEnhanceEdge", {}, "RR RR", "RR RR"}, PixelCase{"FxEmbossColor", {}, "RR RR", "RR RR"},
        PixelCase{"FxFindEdges", {}, "RR RR", "WW WW"}, PixelCase{"FxNeonTrace", {}, "RR RR", "KK KK"},
        PixelCase{"FxWind", {50}, "RR RR", "RR RR"}, PixelCase{"FxTexturedGlass", {20, 20}, "RR RR", "RR RR"},
        PixelCase{"FxSwirl", {300}, "RRR RRR", "RRR RRR"}, PixelCase{"FxTile2", {100}, "RR RR", "RR RR"}));

INSTANTIATE_TEST_SUITE_P(Identity, EffectPixels,
                         testing::Values(PixelCase{"FxAddNoise", {0, 0}, "0RG5", "0RG5"},
                                         PixelCase{"FxButtonSimple", {0, 40}, "0R 5W", "0R 5W"},
                                         PixelCase{"FxButtonSimple", {100, 0}, "0R 5W", "0R 5W"},
                                         PixelCase{"FxButtonSmooth", {0}, "0R 5W", "0R 5W"},
                                         PixelCase{"FxButtonEllipse1", {0, 40}, "0R 5W", "0R 5W"},
                                         PixelCase{"FxButtonEllipse2", {100, 0}, "0R 5W", "0R 5W"},
                                         PixelCase{"FxContrast", {0}, "01R9W", "01R9W"},
                                         PixelCase{"FxBrightness", {0}, "01R9W", "01R9W"},
                                         PixelCase{"FxColorize", {0, 0, 0}, "05RGBCMY", "05RGBCMY"},
                                         PixelCase{"FxColorBalance", {0, 0, 0}, "05R", "05R"}));

TEST(Effect, AppliedTwiceIsTheIdentity) {
    const Picture photo = PhotoLike(61, 47);
    for (const char* name : {"FxNegative", "FxFlipHorizontal", "FxFlipVertical", "FxSwapRedBlue",
                             "FxSwapRedGreen", "FxSwapGreenBlue"}) {
        const Effect& effect = *effects::FindEffect(name);
        EXPECT_EQ(LargestDifference(Must(effect.apply(Must(effect.apply(photo, {}, {})), {}, {})), photo), 0)
            << name;
    }
}

}  // namespace
}  // namespace tessara::test
