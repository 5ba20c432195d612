#include "core/rastx/codecs/Jpg.h"

#include <algorithm>

#include "core/ByteReader.h"
#include "core/ByteSink.h"
#include "tests/Support.h"

namespace tessara {
namespace {

using test::Encode;
using test::Hex;
using test::Must;

Picture Read(const ByteVector& file) {
    return Must(DecodeJpg(file, {}));
}

/// Where the segment of a marker starts (its 0xff), or 0.
std::size_t FindSegment(Bytes file, std::uint8_t marker) {
    ByteReader reader(file);
    reader.Skip(2);
    while (reader.U8() == 0xff && reader.Left() > 2) {
        const std::size_t start = reader.Position() - 1;
        if (reader.U8() == marker) return start;
        reader.Skip(std::max(reader.U16Be(), std::uint16_t{2}) - 2u);
    }
    return 0;
}

int WhiteRows(const Picture& picture) {
    int rows = 0;
    while (rows < picture.Height() &&
           std::ranges::all_of(picture.Row(picture.Height() - 1 - rows), [](Pixel p) { return p == kWhite; }))
        ++rows;
    return rows;
}

TEST(Jpg, OptionsChooseTheFormOfTheFile) {
    constexpr std::uint8_t kBaseline = 0xc0, kProgressive = 0xc2;
    const struct {
        const char* name;
        EncodeOptions options;
        std::uint8_t frame;
        int components, sampling;
        double leastPsnr;
    } cases[] = {
        {"half the colours below 90", {.quality = 89}, kBaseline, 3, 0x22, 29},
        {"all colours from 90 on", {.quality = 90}, kBaseline, 3, 0x11, 36},
        {"worst", {.quality = 1}, kBaseline, 3, 0x22, 10},
        {"best", {.quality = 100}, kBaseline, 3, 0x11, 40},
        {"progressive", {.quality = 90, .progressive = true}, kProgressive, 3, 0x11, 36},
        {"grey", {.quality = 90, .grey = true}, kBaseline, 1, 0x11, 0},
    };
    const Picture picture = test::PhotoLike(100, 75);
    for (const auto& row : cases) {
        const ByteVector file = Encode(EncodeJpg, picture, row.options);
        const std::size_t frame = FindSegment(file, row.frame);
        ASSERT_NE(frame, 0u) << row.name;
        EXPECT_EQ(file[frame + 9], row.components) << row.name;
        EXPECT_EQ(file[frame + 11], row.sampling) << row.name;
        EXPECT_GE(test::Psnr(Read(file), picture), row.leastPsnr) << row.name;
    }
}

TEST(Jpg, TransparentPixelsAreWrittenOnWhite) {
    const Picture read = Read(Encode(EncodeJpg, test::Draw("........ ........"), {.quality = 100}));
    EXPECT_FALSE(read.HasAlpha());
    EXPECT_EQ(test::LargestDifference(read, test::Draw("WWWWWWWW WWWWWWWW")), 0);
}

TEST(Jpg, ResolutionAndExifAreKept) {
    Picture picture = test::PhotoLike(16, 16);
    const ByteVector exif = Hex("4D4D002A 00000008 0001 0112 0003 00000001 00010000 00000000");
    picture.SetMeta({{300, 150}, std::make_shared<const ByteVector>(exif)});
    const Picture read = Read(Encode(EncodeJpg, picture));
    EXPECT_EQ(read.Meta().resolution.x, 300);
    EXPECT_EQ(read.Meta().resolution.y, 150);
    ASSERT_TRUE(read.Meta().exif);
    EXPECT_EQ(*read.Meta().exif, exif);
}

TEST(Jpg, ThePictureIsTurnedAsExifSays) {
    const ByteVector sideways = Hex("4D4D002A 00000008 0001 0112 0003 00000001 00060000 00000000");
    Picture stored = Must(Picture::Create(48, 40, Alpha::None));
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 48; ++x)
            stored.MutableRow(y)[static_cast<std::size_t>(x)] = x < 24 ? kBlack : kWhite;
    stored.SetMeta({{300, 150}, std::make_shared<const ByteVector>(sideways)});
    const Picture read = Read(Encode(EncodeJpg, stored, {.quality = 100}));
    EXPECT_EQ(read.Width(), 40);
    EXPECT_EQ(read.Height(), 48);
    EXPECT_EQ(read.Meta().resolution.x, 150);
    EXPECT_EQ(read.Meta().exif->at(19), 1) << "what is upright must not be turned again";
    EXPECT_LT(read.At(20, 4).g, 10) << "the left side is on top";
    EXPECT_GT(read.At(20, 44).g, 245);
}

TEST(Jpg, OfACutFileTheRestIsWhite) {
    const Picture picture = test::PhotoLike(160, 160);
    for (const bool progressive : {false, true}) {
        const ByteVector whole = Encode(EncodeJpg, picture, {.quality = 90, .progressive = progressive});
        const std::size_t scan = FindSegment(whole, 0xda);
        // A progressive file begins with a scan of averages, about a tenth of its length.
        const std::size_t length = scan + (whole.size() - scan) / (progressive ? 24 : 2);
        const Picture cut =
            Read(ByteVector(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
        ASSERT_EQ(cut.Height(), 160);
        EXPECT_GE(WhiteRows(cut), 16) << progressive;
        EXPECT_LE(WhiteRows(cut), 144) << progressive;
        const Picture top = Must(cut.Cropped(0, 0, 160, 8));
        EXPECT_GT(test::Psnr(top, Must(picture.Cropped(0, 0, 160, 8))), progressive ? 10 : 36);
    }
}

TEST(Jpg, EndlessScansDoNotKeepTheDecoderBusy) {
    // One refining scan over and over: a file of some hundred kilobytes that would take minutes.
    const ByteVector whole =
        Encode(EncodeJpg, test::PhotoLike(900, 900), {.quality = 10, .progressive = true});
    const std::size_t firstScan = FindSegment(whole, 0xda);
    ByteVector file(whole.begin(), whole.end() - 2);
    const ByteVector emptyScan = Hex("FFDA 0008 01 01 00 01 01 01 00");
    for (int i = 0; i < 20'000; ++i) file.insert(file.end(), emptyScan.begin(), emptyScan.end());
    EXPECT_GT(firstScan, 0u);
    EXPECT_EQ(Read(file).Width(), 900);
}

TEST(Jpg, ASecondFrameDoesNotChangeThePicture) {
    // Both smaller and larger: the rows must fit what was made for the first.
    for (const char* frame :
         {"FFC2 000B 08 0001 0001 01 01 11 00", "FFC2 0014 08 0400 0400 04 01110002110003110004 1100"})
        for (const bool progressive : {false, true}) {
            const Picture picture = test::PhotoLike(60, 40);
            ByteVector file = Encode(EncodeJpg, picture, {.quality = 95, .progressive = progressive});
            const ByteVector second = Hex(frame);
            file.insert(file.end() - 2, second.begin(), second.end());
            EXPECT_GT(test::Psnr(Read(file), picture), 36);
        }
}

TEST(Jpg, FilesWithoutAPictureAreRefused) {
    constexpr std::string_view kStart = "FFD8";
    constexpr std::string_view kFrame = "FFC0 000B 08 0010 0010 01 01 11 00";
    const struct {
        const char* name;
        ByteVector file;
        FailureKind kind;
    } cases[] = {
        {"nothing", {}, FailureKind::Damaged},
        {"no frame", Hex("FFD8 FFD9"), FailureKind::Damaged},
        {"no scan", Hex(std::string(kStart) + std::string(kFrame) + "FFD9"), FailureKind::Damaged},
        {"no width", Hex("FFD8 FFC0 000B 08 0010 0000 01 01 11 00 FFDA 0008 01 01 00 00 3F 00"),
         FailureKind::Damaged},
        {"12 bits", Hex("FFD8 FFC1 000B 0C 0010 0010 01 01 11 00 FFDA 0008 01 01 00 00 3F 00"),
         FailureKind::Unsupported},
        {"lossless", Hex("FFD8 FFC3 000B 08 0010 0010 01 01 11 00"), FailureKind::Unsupported},
        {"larger than the limits", Hex("FFD8 FFC0 000B 08 FFDC FFDC 01 01 11 00 FFDA 0008 01 01 00 00 3F 00"),
         FailureKind::TooBig},
        {"larger than the file can hold",
         Hex("FFD8 FFC0 000B 08 2000 2000 01 01 11 00 FFDA 0008 01 01 00 00 3F 00"), FailureKind::Damaged},
    };
    for (const auto& row : cases) {
        const auto result = DecodeJpg(row.file, {});
        ASSERT_FALSE(result) << row.name;
        EXPECT_EQ(result.Error().kind, row.kind) << row.name << ": " << result.Error().message;
    }
}

}  // namespace
}  // namespace tessara
