#include "core/rastx/effects/Resample.h"

#include "tests/Support.h"

namespace tessara::test {
namespace {

struct ResampleCase {
    const char* name;
    const char* source;
    int width, height;
    const char* result;
};

class ResampledPicture : public testing::TestWithParam<ResampleCase> {};

TEST_P(ResampledPicture, IsAsWorkedOutByHand) {
    const ResampleCase& row = GetParam();
    const Picture picture = Draw(row.source);
    EXPECT_EQ(Sketch(Must(Resample(picture, row.width, row.height, ResampleQuality::Best))), row.result);
}

INSTANTIATE_TEST_SUITE_P(Cases, ResampledPicture,
                         testing::Values(ResampleCase{"HalfTakesMeans", "0246 2468", 2, 1, "26"},
                                         ResampleCase{"SameSizeIsUntouched", "KW RG", 2, 2, "KW RG"},
                                         ResampleCase{"AThirdOfAPixelCountsAThird", "066", 2, 1, "26"},
                                         ResampleCase{"NarrowerAndHigher", "04 04", 1, 4, "2 2 2 2"},
                                         ResampleCase{"OnePixelSpreads", "5", 3, 2, "555 555"},
                                         ResampleCase{"SizesBelowOneAreOne", "2446", -5, 0, "4"},
                                         ResampleCase{"TransparentPixelsLendNoColour", "R. R.", 1, 2, "? ?"}),
                         [](const auto& tested) { return tested.param.name; });

TEST(Resample, MeansOfTransparentPixelsKeepTheVisibleColour) {
    const Picture half = Must(Resample(Draw("R."), 1, 1, ResampleQuality::Best));
    EXPECT_EQ(half.At(0, 0), (Pixel{0, 0, 255, 128}));
}

TEST(Resample, EnlargesAnEdgeWithoutRinging) {
    for (const char* edge : {"2222288888", "888882222288888"}) {
        const Picture large = Must(Resample(Draw(edge), 83, 7, ResampleQuality::Best));
        for (const Pixel pixel : large.Pixels()) {
            EXPECT_GE(pixel.g, 56);
            EXPECT_LE(pixel.g, 224);
        }
    }
}

TEST(Resample, AConstantPictureStaysConstantAtEverySize) {
    for (const Pixel color : {Pixel{1, 127, 254, 255}, Pixel{200, 100, 3, 77}}) {
        const Picture picture = Must(Picture::Create(7, 5, color, Alpha::Straight));
        for (const int width : {1, 2, 6, 8, 29})
            for (const int height : {1, 3, 5, 11})
                for (const auto quality : {ResampleQuality::Best, ResampleQuality::Fast}) {
                    const Picture expected = Must(Picture::Create(width, height, color, Alpha::Straight));
                    EXPECT_EQ(LargestDifference(Must(Resample(picture, width, height, quality)), expected), 0)
                        << width << "x" << height;
                }
    }
}

TEST(Resample, FollowsASmoothPicture) {
    const Picture small = PhotoLike(200, 150);
    const Picture large = Must(Resample(small, 600, 450, ResampleQuality::Best));
    EXPECT_GT(Psnr(Must(Resample(large, 200, 150, ResampleQuality::Best)), small), 38);
}

TEST(Resample, DoesNotDependOnTheNumberOfThreads) {
    const Picture picture = PhotoLikeWithAlpha(700, 500);
    for (const auto& [width, height] : {std::pair{301, 1207}, {1400, 999}, {350, 250}})
        EXPECT_EQ(LargestDifference(Must(Resample(picture, width, height, ResampleQuality::Best, 1)),
                                    Must(Resample(picture, width, height, ResampleQuality::Best, 5))),
                  0);
}

TEST(Resample, APartIsAsItIsInTheWhole) {
    for (const Picture& picture : {PhotoLike(61, 47), PhotoLikeWithAlpha(61, 47)})
        for (const auto& [width, height] : {std::pair{183, 141}, {92, 20}, {13, 60}, {61, 47}, {3, 2}})
            for (const auto quality : {ResampleQuality::Best, ResampleQuality::Fast}) {
                const Picture whole = Must(Resample(picture, width, height, quality));
                const int x = width / 3, y = height / 2;
                for (const PicturePart& part :
                     {PicturePart{0, 0, x, y}, PicturePart{x, y, width - x, height - y},
                      PicturePart{x, 0, 1, height}, PicturePart{width - 1, height - 1, 1, 1}}) {
                    const Picture expected = Must(whole.Cropped(part.x, part.y, part.width, part.height));
                    EXPECT_EQ(LargestDifference(Must(ResamplePart(picture, width, height, part, quality)),
                                                expected),
                              0)
                        << width << "x" << height << " from " << part.x << "," << part.y;
                }
            }
    EXPECT_FALSE(ResamplePart(Draw("KW"), 4, 4, {3, 0, 2, 1}, ResampleQuality::Fast));
}

TEST(Resample, RefusesSizesAboveTheLimits) {
    const Picture picture = Draw("KW");
    EXPECT_EQ(Resample(picture, 65536, 1, ResampleQuality::Best).Error().kind, FailureKind::TooBig);
    EXPECT_EQ(Resample(picture, 65000, 65000, ResampleQuality::Best).Error().kind, FailureKind::TooBig);
    EXPECT_EQ(Resample(Picture(), 1, 1, ResampleQuality::Best).Error().kind, FailureKind::BadArgument);
}

}  // namespace
}  // namespace tessara::test
