#include "core/rastx/Picture.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <random>

#include "core/rastx/Rastx.h"
#include "core/rastx/Rows.h"
#include "core/rastx/effects/Resample.h"
#include "tests/Support.h"

namespace tessara {
namespace {

TEST(Picture, CopiesShareUntilOneIsWrittenTo) {
    const Picture first = test::Draw("KW WK");
    Picture second = first;
    EXPECT_EQ(second.Pixels().data(), first.Pixels().data());
    second.MutableRow(1)[0] = PixelFromColor(RGB(255, 0, 0));
    EXPECT_EQ(test::Sketch(first), "KW WK");
    EXPECT_EQ(test::Sketch(second), "KW RK");
}

TEST(Picture, RefusesSizesOutsideOfTheLimits) {
    struct Case {
        std::int64_t width, height;
        FailureKind kind;
    };
    const Case cases[] = {
        {0, 5, FailureKind::Damaged},        {5, -1, FailureKind::Damaged},
        {65536, 1, FailureKind::TooBig},     {std::int64_t{1} << 40, 1, FailureKind::TooBig},
        {32768, 16385, FailureKind::TooBig},
    };
    for (const Case& row : cases) {
        const Result<Picture> made = Picture::Create(row.width, row.height, Alpha::None);
        ASSERT_FALSE(made) << row.width << 'x' << row.height;
        EXPECT_EQ(made.Error().kind, row.kind) << row.width << 'x' << row.height;
    }
    EXPECT_FALSE(Picture::Create(100, 100, Alpha::None, Limits{.side = 99}));
    EXPECT_TRUE(Limits{}.Check(32768, 16384));
}

TEST(Picture, FlattensOnABackground) {
    Picture picture = test::Must(Picture::Create(3, 1, Alpha::Straight));
    const auto row = picture.MutablePixels();
    row[0] = {0, 100, 200, 0};
    row[1] = {0, 100, 200, 128};
    row[2] = {0, 100, 200, 255};
    const Picture flat = picture.FlattenedOnWhite();
    EXPECT_FALSE(flat.HasAlpha());
    EXPECT_EQ(flat.At(0, 0), kWhite);
    EXPECT_EQ(flat.At(1, 0), (Pixel{127, 177, 227, 255}));
    EXPECT_EQ(flat.At(2, 0), (Pixel{0, 100, 200, 255}));
    EXPECT_TRUE(picture.HasAlpha());
}

// The loops are compiled for several instruction sets and work on many pixels at once; every length has its
// own tail.
TEST(Rows, EveryLengthIsConvertedLikePixelByPixel) {
    std::minstd_rand random(5);
    for (std::size_t count = 0; count < 140; ++count) {
        ByteVector samples(count * 4);
        for (auto& sample : samples) sample = static_cast<std::uint8_t>(random() >> 8);
        std::vector<Pixel> bgr(count), rgb(count), rgba(count), flat(count);
        BgrToPixels(samples, bgr);
        RgbToPixels(samples, rgb);
        RgbaToPixels(samples, rgba);
        FlattenRow(rgba, {10, 20, 30, 255}, flat);
        ByteVector backBgr(count * 3), backRgb(count * 3), backRgba(count * 4), luma(count);
        PixelsToBgr(bgr, backBgr);
        PixelsToRgb(rgb, backRgb);
        PixelsToRgba(rgba, backRgba);
        PixelsToLuma(rgba, luma);
        EXPECT_EQ(backBgr,
                  ByteVector(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(count * 3)));
        EXPECT_EQ(backRgb, backBgr);
        EXPECT_EQ(backRgba, samples);
        for (std::size_t i = 0; i < count; ++i) {
            const Pixel p{samples[4 * i + 2], samples[4 * i + 1], samples[4 * i], samples[4 * i + 3]};
            ASSERT_EQ(rgba[i], p);
            ASSERT_EQ(luma[i], Luma(p));
            const auto over = [&](int c, int background) {
                return static_cast<std::uint8_t>((c * p.a + background * (255 - p.a) + 127) / 255);
            };
            ASSERT_EQ(flat[i], (Pixel{over(p.b, 10), over(p.g, 20), over(p.r, 30), 255}));
        }
    }
}

TEST(Rows, SmallSamplesAreScaledAndUnpacked) {
    ByteVector samples(10);
    UnpackBits(test::Hex("b1 c0"), 1, samples);
    EXPECT_EQ(samples, test::Hex("01 00 01 01 00 00 00 01 01 01"));
    samples.resize(5);
    UnpackBits(test::Hex("1b 80"), 2, samples);
    EXPECT_EQ(samples, test::Hex("00 01 02 03 02"));
    samples.resize(3);
    UnpackBits(test::Hex("f1 a0"), 4, samples);
    EXPECT_EQ(samples, test::Hex("0f 01 0a"));
    EXPECT_EQ(ScaleTo8Bits(1, 3), 85);
    EXPECT_EQ(ScaleTo8Bits(9, 7), 255);
    for (unsigned value = 0; value < 65536; ++value)
        ASSERT_EQ(Narrow16(value), static_cast<int>(value / 257.0 + 0.5)) << value;
}

TEST(Rastx, TheRubberBandIsTheRectangleBetweenTwoPositions) {
    Rastx pane;
    pane.MoveMouse(3, 3);
    pane.BeginSelect();
    EXPECT_FALSE(pane.HasSelection()) << "there is no picture yet";
    pane.SetImage(test::PhotoLike(20, 10));
    pane.MoveMouse(12, 7);
    pane.BeginSelect();
    pane.MoveMouse(4, 2);
    EXPECT_EQ(pane.SelLeft(), 4);
    EXPECT_EQ(pane.SelRight(), 12);
    EXPECT_EQ(pane.SelTop(), 2);
    EXPECT_EQ(pane.SelBottom(), 7);
    pane.MoveMouse(99, -5);
    EXPECT_EQ(pane.SelRight(), 19);
    EXPECT_EQ(pane.SelTop(), 0);
    EXPECT_EQ(pane.MouseX(), 99);
    pane.EndSelect();
    pane.MoveMouse(0, 0);
    EXPECT_EQ(pane.SelRight(), 19);
    pane.ClearSelect();
    EXPECT_FALSE(pane.HasSelection());
    EXPECT_EQ(pane.SelRight(), 0);
}

TEST(Rastx, MovesPicturesOverTheCarrier) {
    MemoryCarrier carrier;
    Rastx import({.carrier = &carrier});
    Rastx exported({.carrier = &carrier});
    EXPECT_FALSE(exported.PasteClip()) << "nothing has been copied";
    import.SetImage(test::Draw("KRG WBY CMK"));
    import.MoveMouse(1, 1);
    import.BeginSelect();
    import.MoveMouse(2, 2);
    test::Must(import.CopySelection());
    test::Must(exported.PasteClip());
    EXPECT_EQ(test::Sketch(exported.Image()), "BY MK");
    test::Must(import.CopyClip());
    test::Must(exported.PasteClip());
    EXPECT_EQ(exported.Image().Pixels().data(), import.Image().Pixels().data()) << "a move copies no pixels";
}

TEST(Rastx, AFastResampleIsOnlyPutOff) {
    MemoryCarrier carrier;
    Rastx pane({.carrier = &carrier});
    const Picture original = test::PhotoLike(60, 40);
    const Picture larger = test::Must(Resample(original, 150, 90, ResampleQuality::Fast));
    pane.SetImage(original);
    test::Must(pane.Resample(150, 90, true));
    EXPECT_EQ(pane.ImageWidth(), 150);
    pane.MoveMouse(20, 10);
    pane.BeginSelect();
    pane.MoveMouse(149, 89);
    test::Must(pane.CopySelection());
    EXPECT_TRUE(pane.ImagePutOff());
    EXPECT_EQ(
        test::LargestDifference(test::Must(carrier.Take()), test::Must(larger.Cropped(20, 10, 130, 80))), 0);

    EXPECT_FALSE(pane.Resample(70000, 1, true)) << "above the limits";
    EXPECT_EQ(pane.ImageWidth(), 150);
    test::Must(pane.Resample(30, 20, true));
    test::Must(pane.FxFlipVertical());
    Rastx expected;
    expected.SetImage(test::Must(Resample(larger, 30, 20, ResampleQuality::Fast)));
    test::Must(expected.FxFlipVertical());
    EXPECT_EQ(test::LargestDifference(pane.Image(), expected.Image()), 0) << "one upon the other";
}

TEST(Rastx, AFailingLoadOrSaveChangesNothing) {
    const test::TemporaryFolder folder;
    test::WriteWhole(folder.File("text.png"), AsBytes("this is no picture"));
    Rastx pane;
    EXPECT_FALSE(pane.SavePng(folder.File("none.png")));
    pane.SetImage(test::Draw("KW"));
    EXPECT_FALSE(pane.LoadImage(folder.File("text.png")));
    EXPECT_EQ(test::Sketch(pane.Image()), "KW");
    EXPECT_FALSE(pane.SavePng(folder.File("no/such/folder.png")));
}

TEST(Rastx, EachSaveWritesItsFormat) {
    const test::TemporaryFolder folder;
    Rastx pane;
    pane.SetImage(test::Draw("KW RG"));
    const std::string path = folder.File("a");
    const std::pair<std::string, Result<void>> saves[] = {
        {"BMP", pane.SaveBmp(path + "BMP")},
        {"GIF", pane.SaveGif(path + "GIF", true, RGB(255, 0, 0))},
        {"JPG", pane.SaveJpg(path + "JPG", 90, false, true)},
        {"PNG", pane.SavePng(path + "PNG")},
        {"WBMP", pane.SaveWbmp(path + "WBMP")},
        {"EMF", pane.SaveEmf(path + "EMF")},
        {"TGA", pane.SaveTga(path + "TGA")},
        {"TIF", pane.SaveTif(path + "TIF")},
        {"WMF", pane.SaveWmf(path + "WMF")},
        {"ICO", pane.SaveIco(path + "ICO", true, RGB(255, 0, 0))},
    };
    for (const auto& [format, saved] : saves) {
        ASSERT_TRUE(saved) << format;
        const Codec* codec = FindCodec(test::ReadWhole(path + format), format);
        EXPECT_EQ(codec ? codec->name : "none", format);
    }
    for (const char* format : {"GIF", "ICO"}) {
        test::Must(pane.LoadImage(path + format));
        EXPECT_EQ(test::Sketch(pane.Image()), "KW .G") << format;
    }
}

// Under the address sanitizer there is no end to the memory that a process may want.
#ifndef __SANITIZE_ADDRESS__
/// Takes a step while the process may not become larger by more than a few megabytes.
Result<void> WithoutMemory(const std::function<Result<void>()>& step) {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit usual{};
    getrlimit(RLIMIT_AS, &usual);
    rlimit small = usual;
    small.rlim_cur = pages * static_cast<rlim_t>(getpagesize()) + (rlim_t{4} << 20);
    setrlimit(RLIMIT_AS, &small);
    const Result<void> result = step();
    setrlimit(RLIMIT_AS, &usual);
    return result;
}

TEST(Rastx, AnEffectWithoutMemoryChangesNothing) {
    constexpr int kSide = 4096;
    Rastx pane;
    pane.SetImage(test::Must(Picture::Create(kSide, kSide, Grey(100), Alpha::None)));
    const Picture shared = pane.Image();
    const Result<void> done[] = {WithoutMemory([&] { return pane.FxNegative(); }),
                                 WithoutMemory([&] { return pane.FxBlur(); }),
                                 WithoutMemory([&] { return pane.FxRotate(30, 0); }),
                                 WithoutMemory([&] { return pane.Resample(kSide / 2, kSide, false); })};
    for (const Result<void>& result : done) {
        ASSERT_FALSE(result);
        EXPECT_EQ(result.Error().kind, FailureKind::TooBig);
    }
    EXPECT_EQ(pane.Image().Pixels().data(), shared.Pixels().data());
    test::Must(pane.FxNegative());
    EXPECT_EQ(pane.Image().At(0, 0), Grey(155));
}
#endif

}  // namespace
}  // namespace tessara
