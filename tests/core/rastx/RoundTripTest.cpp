#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "core/rastx/Codec.h"
#include "tests/Support.h"

/// Every format that is written, over several kinds of pictures.
namespace tessara {
namespace {

enum class AlphaKept { No, OneBit, Fully };

/// What a format promises; a format without a row fails the sweep.
struct Promise {
    std::string_view suffix;
    AlphaKept alpha;
    int colors;       ///< exact up to this many colours
    int longestSide;  ///< larger pictures are fitted into this
    bool keepsResolution;
};
constexpr int kAnyNumber = 1 << 24;
constexpr int kNone = 0;  // lossy
constexpr Promise kPromises[] = {
    {".bmp", AlphaKept::No, kAnyNumber, 65535, true},
    {".gif", AlphaKept::OneBit, 256, 65535, false},
    {".jpg", AlphaKept::No, kNone, 65500, true},
    {".png", AlphaKept::Fully, kAnyNumber, 65535, true},
    {".wbmp", AlphaKept::No, 2, 65535, false},
    {".emf", AlphaKept::No, kAnyNumber, 65535, true},
    {".tga", AlphaKept::Fully, kAnyNumber, 65535, false},
    {".tif", AlphaKept::Fully, kAnyNumber, 65535, true},
    {".wmf", AlphaKept::No, kAnyNumber, 32767, true},
    {".ico", AlphaKept::Fully, kAnyNumber, 256, false},
};

/// A picture of `colors` different colours in a small repeating pattern.
Picture FewColors(int width, int height, int colors) {
    Picture picture = test::Must(Picture::Create(width, height, Alpha::None));
    const auto pixels = picture.MutablePixels();
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const auto value = static_cast<std::uint8_t>(i * 7 % static_cast<std::size_t>(colors));
        pixels[i] = {value, static_cast<std::uint8_t>(255 - value), static_cast<std::uint8_t>(value * 5),
                     255};
    }
    return picture;
}

struct Case {
    const char* name;
    Picture picture;
    int colors;
};

std::vector<Case> Cases() {
    using namespace test;
    return {
        {"one pixel", Draw("R"), 1},
        {"one white pixel", Draw("W"), 1},
        {"one column", PhotoLike(1, 37), kAnyNumber},
        {"one row", PhotoLike(41, 1), kAnyNumber},
        {"black and white, width no multiple of 8", Draw("KWKWWKKWK WWKKWWKKW KKKKWWWWK"), 2},
        {"flat", FewColors(40, 30, 1), 1},
        {"16 colours", FewColors(33, 17, 16), 16},
        {"256 colours", FewColors(64, 40, 256), 256},
        {"grey", Draw("0123456789 9876543210"), 10},
        {"photograph", PhotoLike(149, 83), kAnyNumber},
        {"wider than an icon", PhotoLike(400, 100), kAnyNumber},
        {"one bit of alpha", Draw("R.G .B. W.K"), 6},
        {"all transparent", Draw(".. .."), 1},
        {"soft alpha", PhotoLikeWithAlpha(67, 31), kAnyNumber},
    };
}

bool HasSoftAlpha(const Picture& picture) {
    return picture.HasAlpha() &&
           std::ranges::any_of(picture.Pixels(), [](Pixel p) { return p.a != 0 && p.a != 255; });
}

TEST(RoundTrip, EveryFormatKeepsWhatItCanHold) {
    const DecodeOptions defaults;
    for (const ExportFormat& format : ExportFormatTable()) {
        const auto promise = std::ranges::find(kPromises, format.suffix, &Promise::suffix);
        ASSERT_NE(promise, std::end(kPromises)) << format.suffix;
        for (const Case& row : Cases()) {
            SCOPED_TRACE(std::string(format.suffix) + ": " + row.name);
            const ByteVector file = test::Encode(*format.codec, row.picture);
            const Result<Picture> read = format.codec->decode(file, defaults);
            if (!read) {
                ADD_FAILURE() << read.Error().message;
                continue;
            }
            const Picture& picture = read.Value();
            const int side = std::max(row.picture.Width(), row.picture.Height());
            if (side > promise->longestSide) {
                EXPECT_EQ(std::max(picture.Width(), picture.Height()), promise->longestSide);
                continue;
            }
            const bool keepsAlpha = promise->alpha == AlphaKept::Fully ||
                                    (promise->alpha == AlphaKept::OneBit && !HasSoftAlpha(row.picture));
            const Picture expected = keepsAlpha ? row.picture : row.picture.FlattenedOnWhite();
            const bool isBlackAndWhite =
                std::ranges::all_of(expected.Pixels(), [](Pixel p) { return p == kBlack || p == kWhite; });
            if (row.colors <= promise->colors && (promise->colors > 2 || isBlackAndWhite)) {
                EXPECT_EQ(test::LargestDifference(picture, expected), 0);
            } else {
                EXPECT_EQ(picture.Width(), expected.Width());
                EXPECT_EQ(picture.Height(), expected.Height());
                if (promise->colors != 2 && row.colors == kAnyNumber && side > 50 &&
                    !row.picture.HasAlpha()) {
                    EXPECT_GT(test::Psnr(picture.FlattenedOnWhite(), expected.FlattenedOnWhite()), 26);
                }
            }
        }
    }
}

TEST(RoundTrip, ResolutionIsKeptWhereTheFormatHoldsIt) {
    for (const ExportFormat& format : ExportFormatTable()) {
        const auto promise = std::ranges::find(kPromises, format.suffix, &Promise::suffix);
        ASSERT_NE(promise, std::end(kPromises));
        if (!promise->keepsResolution) continue;
        SCOPED_TRACE(format.suffix);
        Picture picture = test::PhotoLike(30, 20);
        picture.SetResolution({300, 300});
        const Picture read = test::Must(format.codec->decode(test::Encode(*format.codec, picture), {}));
        EXPECT_NEAR(read.Meta().resolution.x, 300, 0.5);
        EXPECT_NEAR(read.Meta().resolution.y, 300, 0.5);
    }
}

TEST(RoundTrip, AMetafileOfSixteenBitsRefusesALongerSide) {
    const Picture wide = test::Must(Picture::Create(40000, 1, kWhite, Alpha::None));
    const auto wmf = std::ranges::find(ExportFormatTable(), ".wmf", &ExportFormat::suffix);
    MemorySink sink;
    EXPECT_FALSE(wmf->codec->encode(wide, {}, sink));
}

}  // namespace
}  // namespace tessara
