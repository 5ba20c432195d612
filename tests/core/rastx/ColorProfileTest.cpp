#include "core/rastx/ColorProfile.h"

#include <array>

#include "tests/Support.h"
#include "tests/core/rastx/Profiles.h"

namespace tessara {
namespace {

using test::GreyProfile;
using test::SaveAndClose;

ByteVector RgbProfile(double gamma, cmsCIExyYTRIPLE primaries) {
    const cmsCIExyY white{0.3127, 0.3290, 1};
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve* const curves[] = {curve, curve, curve};
    const ByteVector bytes = SaveAndClose(cmsCreateRGBProfile(&white, &primaries, curves));
    cmsFreeToneCurve(curve);
    return bytes;
}

constexpr cmsCIExyYTRIPLE kSrgbPrimaries{{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
constexpr cmsCIExyYTRIPLE kWidePrimaries{{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};

/// The four bytes of the header from `offset` damaged.
ByteVector Damaged(ByteVector icc, std::size_t offset) {
    std::fill_n(icc.begin() + static_cast<std::ptrdiff_t>(offset), 4, std::uint8_t{0xfe});
    return icc;
}

TEST(ColorProfile, IsOpenedOnlyWhereItChangesTheSamples) {
    const struct {
        const char* name;
        ByteVector icc;
        SampleColors colors;
        bool opened;
    } cases[] = {
        {"sRGB itself", SaveAndClose(cmsCreate_sRGBProfile()), SampleColors::Rgb, false},
        {"primaries of sRGB, linear", RgbProfile(1, kSrgbPrimaries), SampleColors::Rgb, true},
        {"wider primaries", RgbProfile(2.2, kWidePrimaries), SampleColors::Rgb, true},
        {"RGB profile in a grey file", RgbProfile(1, kSrgbPrimaries), SampleColors::Grey, false},
        {"RGB profile in a CMYK file", RgbProfile(1, kSrgbPrimaries), SampleColors::Cmyk, false},
        {"linear grey", GreyProfile(1), SampleColors::Grey, true},
        {"nothing", {}, SampleColors::Rgb, false},
        {"no profile", ByteVector(200, 0x41), SampleColors::Rgb, false},
        {"a class that there is not", Damaged(GreyProfile(1), 12), SampleColors::Grey, false},
        {"colours that there are not", Damaged(GreyProfile(1), 16), SampleColors::Grey, false},
        {"a connection that there is not", Damaged(GreyProfile(1), 20), SampleColors::Grey, false},
        {"colours of ink limits", SaveAndClose(cmsCreateInkLimitingDeviceLink(cmsSigCmykData, 200)),
         SampleColors::Cmyk, false},
    };
    for (const auto& row : cases)
        EXPECT_EQ(ColorProfile::Open(row.icc, row.colors).has_value(), row.opened) << row.name;
}

TEST(ColorProfile, BrightensLinearSamplesAndLeavesAlpha) {
    for (const SampleColors colors : {SampleColors::Rgb, SampleColors::Grey}) {
        const ByteVector icc = colors == SampleColors::Rgb ? RgbProfile(1, kSrgbPrimaries) : GreyProfile(1);
        const auto profile = ColorProfile::Open(icc, colors);
        ASSERT_TRUE(profile);
        std::array<Pixel, 3> pixels{Pixel{0, 0, 0, 7}, Pixel{55, 55, 55, 128}, kWhite};
        profile->ConvertPixels(pixels);
        EXPECT_EQ(pixels[0], (Pixel{0, 0, 0, 7}));
        // 55/255 of the light of white is encoded as 128/255 by IEC 61966-2-1.
        EXPECT_NEAR(pixels[1].g, 128, 1);
        EXPECT_EQ(pixels[1].a, 128);
        EXPECT_EQ(pixels[2], kWhite);
    }
}

TEST(ColorProfile, ConvertsLabSamplesThroughAProfile) {
    const auto profile = ColorProfile::Open(SaveAndClose(cmsCreateLab2Profile(nullptr)), SampleColors::Lab);
    ASSERT_TRUE(profile);
    const ByteVector lab{0, 128, 128, 255, 128, 128, 136, 209, 195};
    std::array<Pixel, 3> pixels;
    profile->ConvertLab(lab, pixels);
    EXPECT_NEAR(pixels[0].g, 0, 1);
    EXPECT_NEAR(pixels[1].g, 255, 1);
    EXPECT_EQ(pixels[1].a, 255);
    const Pixel red = LabToPixel(136 / 2.55, 81, 67);
    EXPECT_NEAR(pixels[2].r, red.r, 2);
    EXPECT_NEAR(pixels[2].g, red.g, 4);
    EXPECT_NEAR(pixels[2].b, red.b, 4);
}

TEST(ColorProfile, ConvertsInksThroughAProfile) {
    const auto profile = ColorProfile::Open(test::CmykProfile(), SampleColors::Cmyk);
    ASSERT_TRUE(profile);
    Picture pixels = test::Draw("KKKKK");
    profile->ConvertCmyk(test::Hex("00000000 FF000000 00FF0000 0000FF00 000000FF"), pixels.MutablePixels());
    EXPECT_LE(test::LargestDifference(pixels, test::Draw("WCMYK")), 3) << test::Sketch(pixels);
}

TEST(CmykToPixels, MultipliesInkAndBlack) {
    std::array<Pixel, 5> pixels;
    CmykToPixels(test::Hex("00000000 FF000000 00FF0000 00000080 4080C080"), pixels);
    EXPECT_EQ(pixels[0], kWhite);
    EXPECT_EQ(pixels[1], (Pixel{255, 255, 0, 255}));
    EXPECT_EQ(pixels[2], (Pixel{255, 0, 255, 255}));
    EXPECT_EQ(pixels[3], Grey(127));
    EXPECT_EQ(pixels[4], (Pixel{31, 63, 95, 255}));
}

TEST(LabToPixel, MeetsThePrimariesOfSrgb) {
    // The corners of the sRGB cube in Lab under D50.
    const struct {
        double lightness, a, b;
        Pixel pixel;
    } cases[] = {
        {0, 0, 0, kBlack},
        {100, 0, 0, kWhite},
        {54.29, 80.81, 69.89, {0, 0, 255, 255}},
        {87.82, -79.29, 80.99, {0, 255, 0, 255}},
        {29.57, 68.30, -112.03, {255, 0, 0, 255}},
    };
    for (const auto& row : cases) {
        const Pixel pixel = LabToPixel(row.lightness, row.a, row.b);
        EXPECT_NEAR(pixel.r, row.pixel.r, 2) << row.lightness;
        EXPECT_NEAR(pixel.g, row.pixel.g, 2) << row.lightness;
        EXPECT_NEAR(pixel.b, row.pixel.b, 2) << row.lightness;
    }
}

}  // namespace
}  // namespace tessara
