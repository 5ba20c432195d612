#include "core/rastx/codecs/Bmp.h"

#include "tests/Support.h"

namespace tessara {
namespace {

using test::Draw;
using test::Encode;
using test::Hex;
using test::Must;
using test::Sketch;

// One row of two pixels, 1 bit each: white, red.
constexpr std::string_view kInfo =
    "28000000 02000000 01000000 0100 0100"
    "00000000 00000000 00000000 00000000"
    "02000000 00000000";
constexpr std::string_view kTable = "ffffff00 0000ff00";

ByteVector BitmapFile(std::string_view offset, std::string_view betweenTableAndPixels) {
    return test::Concatenate({Hex("424d 00000000 00000000"), Hex(offset), Hex(kInfo), Hex(kTable),
                              Hex(betweenTableAndPixels), Hex("40000000")});
}

TEST(Bmp, FindsThePixels) {
    const struct {
        const char* name;
        const char* offset;
        const char* gap;
    } cases[] = {
        {"behind the table", "3e000000", ""},        {"behind a gap", "40000000", "0000"},
        {"offset missing", "00000000", ""},          {"offset inside the header", "20000000", ""},
        {"offset before the table", "36000000", ""}, {"offset behind the end", "00100000", ""},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = DecodeBmp(BitmapFile(row.offset, row.gap), {});
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        EXPECT_EQ(Sketch(picture.Value()), "WR") << row.name;
    }
}

TEST(Bmp, TheTableEndsWhereThePixelsBegin) {
    // An OS/2 file of 8 bits with two colours; nothing else tells that there are not 256.
    const ByteVector file =
        Hex("424d 00000000 00000000 20000000"
            "0c000000 0300 0100 0100 0800  ffffff 0000ff  00010200");
    EXPECT_EQ(Sketch(Must(DecodeBmp(file, {}))), "WRK");
}

TEST(Bmp, TakesTheFirstPictureOfAnArray) {
    const ByteVector file =
        Hex("4241 28000000 00000000 0000 0000"
            "424d 00000000 00000000 2e000000"
            "0c000000 0200 0100 0100 0100  ffffff 0000ff  40000000");
    EXPECT_TRUE(RecogniseBmp(file));
    EXPECT_EQ(Sketch(Must(DecodeBmp(file, {}))), "WR");
}

TEST(Bmp, RecognisesABareBitmapOnlyWhereEveryFieldFits) {
    const struct {
        const char* name;
        const char* start;
        bool expected;
    } cases[] = {
        {"bare", "28000000 02000000 01000000 0100 0100 00000000", true},
        {"bare core", "0c000000 0200 0100 0100 1800", true},
        {"two planes", "28000000 02000000 01000000 0200 0100 00000000", false},
        {"7 bits", "28000000 02000000 01000000 0100 0700 00000000", false},
        {"no depth", "28000000 02000000 01000000 0100 0000 00000000", false},
        {"unknown compression", "28000000 02000000 01000000 0100 0100 09000000", false},
        {"no height", "28000000 02000000 00000000 0100 0100 00000000", false},
        {"too wide", "28000000 02000100 01000000 0100 0100 00000000", false},
        {"uncommon size", "2c000000 02000000 01000000 0100 0100 00000000", false},
        {"Targa with an id of 12 bytes", "0c0002 0000000000 00000000 0200 0100 18 00", false},
        {"Targa with an id of 40 bytes", "280002 0000000000 00000000 0200 0100 18 00", false},
        {"wireless bitmap", "0000 28 28 ffff", false},
        {"icon", "00000100 0100 1010 0000 0100 2000 68040000 16000000", false},
    };
    for (const auto& row : cases) {
        ByteVector file = Hex(row.start);
        file.resize(200);
        EXPECT_EQ(RecogniseBmp(file), row.expected) << row.name;
    }
    EXPECT_EQ(Sketch(Must(DecodeBmp(test::Concatenate({Hex(kInfo), Hex(kTable), Hex("40000000")}), {}))),
              "WR");
}

TEST(Bmp, WritesRowsFromTheBottomUpWithPadding) {
    Picture picture = Draw("RG BK");
    picture.SetResolution({96, 72});
    EXPECT_EQ(Encode(EncodeBmp, picture),
              Hex("424d 46000000 00000000 36000000 28000000 02000000 02000000 0100 1800"
                  "00000000 10000000 c40e0000 130b0000 00000000 00000000"
                  "ff0000 000000 0000 0000ff 00ff00 0000"));
}

TEST(Bmp, PicturesOfManyBlocksComeBack) {
    const Picture picture = test::PhotoLikeWithAlpha(301, 600);
    MemorySink sink;
    Must(EncodeBmpWithAlpha(picture, sink));
    EXPECT_EQ(test::LargestDifference(Must(DecodeBmp(sink.Written(), {})), picture), 0);
    const ByteVector flat = Encode(EncodeBmp, picture);
    EXPECT_EQ(test::LargestDifference(Must(DecodeBmp(flat, {})), picture.FlattenedOnWhite()), 0);
}

TEST(Bmp, KeepsAPictureThatIsTransparentEverywhere) {
    Picture picture = Draw("R.");
    picture.MutableRow(0)[0].a = 0;
    MemorySink sink;
    Must(EncodeBmpWithAlpha(picture, sink));
    EXPECT_EQ(test::LargestDifference(Must(DecodeBmp(sink.Written(), {})), picture), 0);
}

}  // namespace
}  // namespace tessara
