#include "core/rastx/codecs/Dib.h"

#include <string>

#include "core/ByteSink.h"
#include "core/rastx/codecs/Png.h"
#include "tests/Support.h"

namespace tessara {
namespace {

using test::Concatenate;
using test::Draw;
using test::Hex;
using test::Must;
using test::Sketch;

struct Header {
    std::uint32_t size = 40;
    std::int32_t width = 1, height = 1;
    std::uint32_t bits = 24;
    std::uint32_t compression = 0;
    std::uint32_t colorsUsed = 0;
    std::uint32_t masks[4] = {};
};

ByteVector Write(const Header& header) {
    ByteWriter writer;
    writer.U32Le(header.size);
    if (header.size == 12) {
        writer.U16Le(static_cast<std::uint32_t>(header.width));
        writer.U16Le(static_cast<std::uint32_t>(header.height)).U16Le(1).U16Le(header.bits);
        return writer.TakeBytes();
    }
    writer.I32Le(header.width).I32Le(header.height).U16Le(1).U16Le(header.bits).U32Le(header.compression);
    writer.U32Le(0).U32Le(3780).U32Le(3780).U32Le(header.colorsUsed).U32Le(0);
    if (header.size != 64)
        for (const std::uint32_t mask : header.masks) writer.U32Le(mask);
    ByteVector bytes = writer.TakeBytes();
    bytes.resize(header.size);
    return bytes;
}

Result<Picture> Decode(const Header& header, std::string_view rest, const DibOptions& options = {}) {
    return DecodeDib(Concatenate({Write(header), Hex(rest)}), std::nullopt, options, {});
}

TEST(Dib, ReadsHeadersOfEverySize) {
    for (const std::uint32_t size : {12, 16, 20, 33, 40, 44, 52, 56, 60, 64, 108, 124, 200}) {
        const std::string table = size == 12 ? "000000 ffffff" : "00000000 ffffff00";
        const Picture picture =
            Must(Decode({.size = size, .width = 3, .height = 2, .bits = 1}, table + "40000000 a0000000"));
        EXPECT_EQ(Sketch(picture), "WKW KWK") << size;
        EXPECT_EQ(picture.Meta().resolution.x, size >= 33 ? 96 : 0) << size;
    }
}

TEST(Dib, ReadsEveryLayoutOfRows) {
    const std::string fourColors = "00000000 0000ff00 00ff0000 ff000000";  // K R G B
    const struct {
        const char* name;
        Header header;
        std::string rest;
        const char* expected;
    } cases[] = {
        {"2 bits", {.width = 5, .height = 1, .bits = 2}, fourColors + "1b400000", "KRGBR"},
        {"4 bits, short table",
         {.width = 4, .height = 1, .bits = 4, .colorsUsed = 4},
         fourColors + "12340000",
         "RGBK"},
        {"8 bits, index behind the table",
         {.width = 2, .height = 1, .bits = 8, .colorsUsed = 4},
         fourColors + "01ff0000",
         "RK"},
        {"24 bits, the first row in the file is the lowest",
         {.width = 1, .height = 2},
         "0000ff00 ff000000",
         "B R"},
        {"24 bits, top-down", {.width = 1, .height = -2}, "0000ff00 ff000000", "R B"},
        {"24 bits, a table as a hint", {.colorsUsed = 1}, "12345678 ff000000", "B"},
        {"16 bits", {.width = 2, .bits = 16}, "007c e003", "RG"},
        {"16 bits, masks behind the header",
         {.width = 2, .bits = 16, .compression = 3},
         "00f80000 e0070000 1f000000 00f8 e007",
         "RG"},
        {"16 bits, masks of 0 are the usual ones",
         {.size = 52, .width = 2, .bits = 16, .compression = 3},
         "007c e003",
         "RG"},
        {"32 bits, the fourth byte is padding", {.width = 2, .bits = 32}, "0000ff80 00ff0000", "RG"},
        {"32 bits, red and blue exchanged",
         {.size = 56, .width = 2, .bits = 32, .compression = 3, .masks = {0xff, 0xff00, 0xff0000, 0}},
         "ff000000 0000ff00",
         "RB"},
        {"32 bits, alpha",
         {.size = 56,
          .width = 2,
          .bits = 32,
          .compression = 3,
          .masks = {0xff0000, 0xff00, 0xff, 0xff000000}},
         "0000ffff 00000000",
         "R."},
        {"32 bits, alpha left empty by its writer",
         {.size = 56,
          .width = 2,
          .bits = 32,
          .compression = 3,
          .masks = {0xff0000, 0xff00, 0xff, 0xff000000}},
         "0000ff00 ff000000",
         "RB"},
        {"the last row without padding", {.width = 1, .height = 2}, "0000ff00 ff0000", "B R"},
        {"missing rows are white", {.width = 1, .height = 3}, "0000ff00 ff", "W W R"},
        {"a count of colours beyond the file",
         {.width = 1, .height = 1, .colorsUsed = 1u << 31},
         "0000ff00",
         "R"},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = Decode(row.header, row.rest);
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        EXPECT_EQ(Sketch(picture.Value()), row.expected) << row.name;
    }
}

TEST(Dib, ScalesBitFieldsToTheFullRange) {
    const struct {
        Header header;
        std::string pixel;
        Pixel expected;
    } cases[] = {
        {{.size = 56, .bits = 16, .compression = 3, .masks = {0x8000, 0x6000, 0x1c00, 0x03ff}},
         "ff a9",
         {73, 85, 255, 127}},  // 1, 1 of 3, 2 of 7, 511 of 1023
        {{.size = 56, .bits = 32, .compression = 3, .masks = {0x3ff00000, 0xffc00, 0x3ff, 0xc0000000}},
         "00020860",
         {128, 128, 128, 85}},
        {{.size = 52, .bits = 32, .compression = 3, .masks = {0xfffff000, 0xfff, 0, 0}},
         "ff0f0080",
         {0, 255, 128, 255}},
        {{.bits = 16}, "0f40", {123, 0, 132, 255}},  // 15 and 16 of 31
    };
    for (const auto& row : cases)
        EXPECT_EQ(Must(Decode(row.header, row.pixel + "0000")).At(0, 0), row.expected) << row.pixel;
}

TEST(Dib, DecodesRuns) {
    const std::string colors = "00000000 0000ff00 00ff0000 ff000000";  // K R G B
    const struct {
        const char* name;
        Header header;
        std::string runs;
        const char* expected;
    } cases[] = {
        {"runs and literals", {.width = 5, .height = 2}, "0201 0003 010203 00 0000 0502 0001", "GGGGG RRRGB"},
        {"top-down", {.width = 2, .height = -2}, "0201 0000 0202 0001", "RR GG"},
        {"the delta leaves the first colour",
         {.width = 3, .height = 3},
         "0101 0002 0102 0103 0001",
         "KKB KKK RKK"},
        {"an early end leaves the first colour", {.width = 2, .height = 2}, "0201 0001", "KK RR"},
        {"a cut file leaves rows white", {.width = 2, .height = 3}, "0201 0000 0102 00", "WW GK RR"},
        {"runs are clipped, not wrapped",
         {.width = 2, .height = 2},
         "ff01 0004 02020202 0000 0103 0001",
         "BK RR"},
        {"rows behind the last are dropped", {.width = 1, .height = 1}, "0101 0000 0102", "R"},
        {"cut literals", {.width = 4, .height = 1}, "0004 0101", "RRKK"},
    };
    for (const auto& row : cases) {
        Header header = row.header;
        header.bits = 8;
        header.compression = 1;
        header.colorsUsed = 4;
        EXPECT_EQ(Sketch(Must(Decode(header, colors + row.runs))), row.expected) << row.name;
    }
    const Header nibbles{.width = 9, .height = 1, .bits = 4, .compression = 2, .colorsUsed = 4};
    EXPECT_EQ(Sketch(Must(Decode(nibbles, colors + "0312 0005 123100 00 0130 0001"))), "RGRRGBRKB");
    const Header threeBytes{.size = 64, .width = 5, .height = 1, .compression = 4};
    EXPECT_EQ(Sketch(Must(Decode(threeBytes, "02 0000ff 0003 ff0000 00ff00 ff0000 00 0001"))), "RRBGB");
}

TEST(Dib, IconsTakeAlphaFromTheirFourthByteOrTheMask) {
    const struct {
        const char* name;
        Header header;
        std::string rest;
        const char* expected;
    } cases[] = {
        {"mask", {.width = 2, .height = 4}, "0000ff00ff000000 ff0000ffffff0000 80000000 40000000", "B. .G"},
        {"no pixel masked", {.width = 1, .height = 2}, "0000ff00 00000000", "R"},
        {"cut mask", {.width = 1, .height = 4}, "0000ff00 ff000000 80000000", "B ."},
        {"fourth byte, then the mask does not count",
         {.width = 2, .height = 2, .bits = 32},
         "0000ffff 00000000 80000000",
         "R."},
        {"empty fourth byte", {.width = 2, .height = 2, .bits = 32}, "0000ff00 ff000000 40000000", "R."},
        {"height below 0", {.width = 1, .height = -4}, "0000ff00 ff000000 00000000 00000000", "B R"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Sketch(Must(Decode(row.header, row.rest, {.iconWithMask = true}))), row.expected)
            << row.name;
}

TEST(Dib, TakesPixelsAndColorsFromElsewhere) {
    const Pixel palette[] = {kBlack, kWhite, {0, 0, 255, 255}};
    DibOptions options;
    options.palette = palette;
    const ByteVector dib =
        Concatenate({Write({.width = 3, .height = 1, .bits = 4, .colorsUsed = 3}), Hex("0200 0100 0900")});
    const ByteVector bits = Hex("01200000");
    EXPECT_EQ(Sketch(Must(DecodeDib(dib, bits, options, {}))), "RWK");
}

TEST(Dib, MultipliedColorsBecomeStraight) {
    const Picture picture =
        Must(Decode({.width = 2, .bits = 32}, "00004080 00000000", {.premultipliedAlpha = true}));
    EXPECT_TRUE(picture.HasAlpha());
    EXPECT_EQ(picture.At(0, 0), (Pixel{0, 0, 128, 128}));
    EXPECT_EQ(picture.At(1, 0), kTransparent);
}

TEST(Dib, CarriesWholeFiles) {
    const Picture picture = Draw("RG BK");
    MemorySink png;
    Must(EncodePng(picture, {}, png));
    const ByteVector dib =
        Concatenate({Write({.width = 9, .height = 9, .bits = 0, .compression = 5}), png.Written()});
    EXPECT_EQ(Sketch(Must(DecodeDib(dib, std::nullopt, {}, {}))), "RG BK");
    EXPECT_FALSE(DecodeDib(dib, std::nullopt, {}, {.limits = {}, .nestingLeft = 0}));
}

TEST(Dib, RefusesWhatHoldsNoPicture) {
    const struct {
        const char* name;
        Header header;
        std::string rest;
        FailureKind kind;
    } cases[] = {
        {"header of 13 bytes", {.size = 13}, "00000000", FailureKind::Damaged},
        {"no width", {.width = 0}, "00000000", FailureKind::Damaged},
        {"height of -2^31", {.height = INT32_MIN}, "00000000", FailureKind::TooBig},
        {"no pixels", {}, "", FailureKind::Damaged},
        {"not one whole row", {}, "0000", FailureKind::Damaged},
        {"masks cut", {.bits = 16, .compression = 3}, "00f80000", FailureKind::Damaged},
        {"runs of the wrong depth", {.bits = 4, .compression = 1}, "0101", FailureKind::Unsupported},
        {"3 bits", {.bits = 3}, "00000000", FailureKind::Unsupported},
        {"CMYK", {.bits = 32, .compression = 11}, "00000000", FailureKind::Unsupported},
        {"no PNG inside", {.bits = 0, .compression = 5}, "00000000", FailureKind::Damaged},
        {"2 GB claimed, one row present",
         {.width = 20000, .height = 20000, .bits = 1},
         "00000000 ffffff00" + std::string(2 * 2500, '0'),
         FailureKind::Damaged},
        {"2 GB claimed, one run present",
         {.width = 20000, .height = 20000, .bits = 8, .compression = 1},
         std::string(2 * 1024, '0') + "ff00 ff00",
         FailureKind::Damaged},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = Decode(row.header, row.rest);
        ASSERT_FALSE(picture) << row.name;
        EXPECT_EQ(picture.Error().kind, row.kind) << row.name << ": " << picture.Error().message;
    }
}

}  // namespace
}  // namespace tessara
