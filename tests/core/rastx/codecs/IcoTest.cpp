#include "core/rastx/codecs/Ico.h"

#include <string>
#include <vector>

#include "core/ByteSink.h"
#include "tests/Support.h"

namespace tessara {
namespace {

using test::Draw;
using test::Encode;
using test::Hex;
using test::LargestDifference;
using test::Must;
using test::Sketch;

ByteVector Bitmap(const char* width, const char* doubleHeight, const char* bits, std::string_view rest) {
    return test::Concatenate(
        {Hex("28000000"), Hex(width), Hex(doubleHeight), Hex("0100"), Hex(bits), ByteVector(24), Hex(rest)});
}
// Pictures of which each has one colour, so that the sketch tells which was taken.
const ByteVector kBlackOne = Bitmap("01000000", "02000000", "0100", "00000000 ffffff00 00000000 00000000");
const ByteVector kRedOne = Bitmap("01000000", "02000000", "1800", "0000ff00 00000000");
const ByteVector kGreenTwo = Bitmap("02000000", "02000000", "1800", "00ff00 00ff00 0000 00000000");
const ByteVector kBlueTwoCut = Bitmap("02000000", "02000000", "1800", "ff0000");
const ByteVector kDamagedPng =
    Hex("89504e470d0a1a0a 0000000d 49484452 00000010 00000010 08060000 00 00000000");

ByteVector Icon(const std::vector<ByteVector>& pictures, std::uint32_t height = 1, std::uint32_t type = 1) {
    ByteWriter writer;
    writer.U16Le(0).U16Le(type).U16Le(static_cast<std::uint32_t>(pictures.size()));
    std::size_t offset = 6 + 16 * pictures.size();
    for (const ByteVector& picture : pictures) {
        // The width, depth and length are wrong: those of the picture itself count.
        writer.U8(99).U8(height).U8(0).U8(0).U16Le(7).U16Le(9).U32Le(3);
        writer.U32Le(static_cast<std::uint32_t>(offset));
        offset += picture.size();
    }
    for (const ByteVector& picture : pictures) writer.Append(picture);
    return writer.TakeBytes();
}

TEST(Ico, TakesTheLargestThenDeepestPictureThatIsWhole) {
    const struct {
        const char* name;
        std::vector<ByteVector> pictures;
        const char* expected;
    } cases[] = {
        {"larger first", {kGreenTwo, kRedOne}, "GG"},
        {"larger last", {kRedOne, kGreenTwo}, "GG"},
        {"deeper", {kBlackOne, kRedOne, kBlackOne}, "R"},
        {"the larger is cut", {kRedOne, kBlueTwoCut}, "R"},
        {"the larger is damaged", {kDamagedPng, kRedOne, kBlackOne}, "R"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(Sketch(Must(DecodeIco(Icon(row.pictures), {}))), row.expected) << row.name;
        EXPECT_EQ(Sketch(Must(DecodeIco(Icon(row.pictures, 1, 2), {}))), row.expected)
            << row.name << ", cursor";
    }
    EXPECT_FALSE(DecodeIco(Icon({kBlueTwoCut}), {}));
    EXPECT_FALSE(DecodeIco(Icon({kRedOne}), {.limits = {}, .nestingLeft = 0}));
}

TEST(Ico, KnowsAForgottenMaskFromAWrongHeight) {
    const ByteVector noMask = Bitmap("01000000", "02000000", "1800", "0000ff00 ff000000");
    EXPECT_EQ(Sketch(Must(DecodeIco(Icon({noMask}, 2), {}))), "B R");
    const ByteVector wideMask = Bitmap("01000000", "04000000", "1800", "0000ff00 ff000000 80000000 00000000");
    EXPECT_EQ(Sketch(Must(DecodeIco(Icon({wideMask}, 2), {}))), "B .");
}

TEST(Ico, RecognisesDirectoriesThatLeadToAPicture) {
    EXPECT_TRUE(RecogniseIco(Icon({kDamagedPng})));
    EXPECT_TRUE(RecogniseIco(Icon({Hex("00"), kBlackOne})));
    EXPECT_FALSE(RecogniseIco(Icon({})));
    EXPECT_FALSE(RecogniseIco(Icon({kRedOne}, 1, 3)));
    EXPECT_FALSE(RecogniseIco(Icon({ByteVector(60)})));
    // A Targa file of 16 by 1 pixels begins like a cursor.
    EXPECT_FALSE(
        RecogniseIco(test::Concatenate({Hex("000002 0000000000 00000000 1000 0100 1800"), ByteVector(48)})));
}

TEST(Ico, WritesPixelsWithAlphaAndAMask) {
    EXPECT_EQ(Encode(EncodeIco, Draw("R. WB")), Hex("0000 0100 0100 02 02 00 00 0100 2000 40000000 16000000"
                                                    "28000000 02000000 04000000 0100 2000 00000000 18000000"
                                                    "00000000 00000000 00000000 00000000"
                                                    "ffffffff ff0000ff 0000ffff 00000000 00000000 40000000"));
}

TEST(Ico, MakesTheChosenColorTransparent) {
    const struct {
        const char* name;
        EncodeOptions options;
        const char* expected;
    } cases[] = {
        {"none", {}, "RWK"},
        {"red", {.transparent = true, .color = RGB(255, 0, 0)}, ".WK"},
        {"only the low 24 bits count", {.transparent = true, .color = -1}, "R.K"},
        {"not asked for", {.transparent = false, .color = RGB(255, 0, 0)}, "RWK"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Sketch(Must(DecodeIco(Encode(EncodeIco, Draw("RWK"), row.options), {}))), row.expected)
            << row.name;
}

TEST(Ico, KeepsAlphaOfEverySize) {
    for (const auto& [width, height] :
         {std::pair{1, 1}, {32, 32}, {33, 7}, {255, 255}, {256, 10}, {256, 256}}) {
        const Picture picture = test::PhotoLikeWithAlpha(width, height);
        EXPECT_EQ(LargestDifference(Must(DecodeIco(Encode(EncodeIco, picture), {})), picture), 0)
            << width << "x" << height;
    }
}

TEST(Ico, PngFilesInItHaveFourChannels) {
    constexpr std::size_t kPng = 22;
    const struct {
        const char* name;
        Picture picture;
    } cases[] = {
        {"one colour", Must(Picture::Create(256, 3, Pixel{0, 0, 255, 255}, Alpha::None))},
        {"transparent", Must(Picture::Create(256, 3, kTransparent, Alpha::Straight))},
        {"photograph", test::PhotoLike(256, 256)},
    };
    for (const auto& row : cases) {
        const ByteVector file = Encode(EncodeIco, row.picture);
        EXPECT_EQ(Hex("08 06"), ByteVector(file.begin() + kPng + 24, file.begin() + kPng + 26)) << row.name;
        EXPECT_EQ(LargestDifference(Must(DecodeIco(file, {})), row.picture), 0) << row.name;
    }
}

TEST(Ico, ShrinksWhatIsTooLarge) {
    // Pairs of columns become one; the transparent half of a pair has no colour to give.
    Picture picture = Must(Picture::Create(512, 4, Pixel{0, 0, 255, 255}, Alpha::Straight));
    for (int y = 0; y < 4; ++y) picture.MutableRow(y)[0] = kTransparent;
    const Picture small = Must(DecodeIco(Encode(EncodeIco, picture), {}));
    EXPECT_EQ(small.Width(), 256);
    EXPECT_EQ(small.Height(), 2);
    EXPECT_EQ(small.At(0, 0), (Pixel{0, 0, 255, 128}));
    EXPECT_EQ(small.At(255, 1), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(Must(DecodeIco(Encode(EncodeIco, test::PhotoLike(1000, 1)), {})).Height(), 1);
}

}  // namespace
}  // namespace tessara
