#include "core/rastx/codecs/Dib.h"

#include <string>

#include "core/ByteSink.h"
#include "core/rastx/codecs/Jpg.h"
#include "tests/Support.h"

namespace tessara {
namespace {

using test::Concatenate;
using test::Hex;
using test::Must;
using test::Sketch;

constexpr std::string_view kFourColors = "00000000 0000ff00 00ff0000 ff000000";  // K R G B

ByteVector Header(std::uint32_t size, int width, int height, std::uint32_t bits,
                  std::uint32_t compression = 0, std::uint32_t colorsUsed = 0, std::string_view masks = "") {
    ByteWriter writer;
    const auto w = static_cast<std::uint32_t>(width), h = static_cast<std::uint32_t>(height);
    if (size == 12) return writer.U32Le(size).U16Le(w).U16Le(h).U16Le(1).U16Le(bits).TakeBytes();
    writer.U32Le(size).U32Le(w).U32Le(h).U16Le(1).U16Le(bits).U32Le(compression);
    writer.U32Le(0).U32Le(3780).U32Le(3780).U32Le(colorsUsed).U32Le(0).Append(Hex(masks));
    ByteVector bytes = writer.TakeBytes();
    bytes.resize(size);
    return bytes;
}

Result<Picture> Decode(const ByteVector& header, std::string_view rest, const DibOptions& options = {}) {
    return DecodeDib(Concatenate({header, Hex(rest)}), std::nullopt, options, {});
}

struct Case {
    const char* name;
    ByteVector header;
    std::string rest;
    const char* expected;
};

void Check(std::span<const Case> cases, const DibOptions& options = {}) {
    for (const Case& row : cases) {
        const Result<Picture> picture = Decode(row.header, row.rest, options);
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        EXPECT_EQ(Sketch(picture.Value()), row.expected) << row.name;
    }
}

TEST(Dib, ReadsHeadersOfEverySize) {
    for (const std::uint32_t size : {12, 16, 20, 33, 40, 44, 52, 56, 60, 64, 108, 124, 200}) {
        const std::string table = size == 12 ? "000000 ffffff" : "00000000 ffffff00";
        const Picture picture = Must(Decode(Header(size, 3, 2, 1), table + "40000000 a0000000"));
        EXPECT_EQ(Sketch(picture), "WKW KWK") << size;
        EXPECT_EQ(picture.Meta().resolution.x, size >= 33 ? 96 : 0) << size;
    }
}

TEST(Dib, ReadsEveryLayoutOfRows) {
    const std::string table(kFourColors);
    const char* const bgra = "0000ff00 00ff0000 ff000000 000000ff";
    const Case cases[] = {
        {"2 bits", Header(40, 5, 1, 2), table + "1b400000", "KRGBR"},
        {"4 bits, short table", Header(40, 4, 1, 4, 0, 4), table + "12340000", "RGBK"},
        {"8 bits, index behind the table", Header(40, 2, 1, 8, 0, 4), table + "01ff0000", "RK"},
        {"24 bits, bottom row first", Header(40, 1, 2, 24), "0000ff00 ff000000", "B R"},
        {"24 bits, top-down", Header(40, 1, -2, 24), "0000ff00 ff000000", "R B"},
        {"24 bits, a table as a hint", Header(40, 1, 1, 24, 0, 1), "12345678 ff000000", "B"},
        {"a count of colours beyond the file", Header(40, 1, 1, 24, 0, 1u << 31), "0000ff00", "R"},
        {"the last row without padding", Header(40, 1, 2, 24), "0000ff00 ff0000", "B R"},
        {"missing rows are white", Header(40, 1, 3, 24), "0000ff00 ff", "W W R"},
        {"16 bits", Header(40, 2, 1, 16), "007c e003", "RG"},
        {"masks behind the header", Header(40, 2, 1, 16, 3), "00f80000 e0070000 1f000000 00f8 e007", "RG"},
        {"masks of 0 are the usual ones", Header(52, 2, 1, 16, 3), "007c e003", "RG"},
        {"32 bits, the fourth byte is padding", Header(40, 2, 1, 32), "0000ff80 00ff0000", "RG"},
        {"red and blue exchanged", Header(52, 2, 1, 32, 3, 0, "ff000000 00ff0000 0000ff00"),
         "ff000000 0000ff00", "RB"},
        {"alpha", Header(56, 2, 1, 32, 3, 0, "0000ff00 00ff0000 ff000000 000000ff"), "0000ffff 00000000",
         "R."},
        {"alpha left empty by its writer", Header(56, 2, 1, 32, 3, 0, bgra), "0000ff00 ff000000", "RB"},
    };
    Check(cases);
}

TEST(Dib, ScalesBitFieldsToTheFullRange) {
    const struct {
        ByteVector header;
        const char* pixel;
        Pixel expected;
    } cases[] = {
        // 1 of 1, 1 of 3, 2 of 7, 511 of 1023
        {Header(56, 1, 1, 16, 3, 0, "00800000 00600000 001c0000 ff030000"), "ffa90000", {73, 85, 255, 127}},
        {Header(56, 1, 1, 32, 3, 0, "0000f03f 00fc0f00 ff030000 000000c0"), "00020860", {128, 128, 128, 85}},
        {Header(52, 1, 1, 32, 3, 0, "00f0ffff ff0f0000 00000000"), "ff0f0080", {0, 255, 128, 255}},
        {Header(40, 1, 1, 16), "0f400000", {123, 0, 132, 255}},  // 15 and 16 of 31
    };
    for (const auto& row : cases)
        EXPECT_EQ(Must(Decode(row.header, row.pixel)).At(0, 0), row.expected) << row.pixel;
}

TEST(Dib, DecodesRuns) {
    const std::string table(kFourColors);
    const auto rle8 = [](int width, int height) { return Header(40, width, height, 8, 1, 4); };
    const Case cases[] = {
        {"runs and literals", rle8(5, 2), table + "0201 0003 01020300 0000 0502 0001", "GGGGG RRRGB"},
        {"top-down", rle8(2, -2), table + "0201 0000 0202 0001", "RR GG"},
        {"a delta leaves the first colour", rle8(3, 3), table + "0101 0002 0102 0103 0001", "KKB KKK RKK"},
        {"an early end leaves the first colour", rle8(2, 2), table + "0201 0001", "KK RR"},
        {"a cut file leaves rows white", rle8(2, 3), table + "0201 0000 0102 00", "WW GK RR"},
        {"clipped, not wrapped", rle8(2, 2), table + "ff01 0004 02020202 0000 0103 0001", "BK RR"},
        {"rows behind the last are dropped", rle8(1, 1), table + "0101 0000 0102", "R"},
        {"cut literals", rle8(4, 1), table + "0004 0101", "RRKK"},
        {"nibbles", Header(40, 9, 1, 4, 2, 4), table + "0312 0005 12310000 0130 0001", "RGRRGBRKB"},
        {"three bytes", Header(64, 5, 1, 24, 4), "020000ff 0003 ff0000 00ff00 ff0000 00 0001", "RRBGB"},
    };
    Check(cases);
}

TEST(Dib, IconsTakeAlphaFromTheirFourthByteOrTheMask) {
    const Case cases[] = {
        {"mask", Header(40, 2, 4, 24), "0000ff00ff000000 ff0000ffffff0000 80000000 40000000", "B. .G"},
        {"no pixel masked", Header(40, 1, 2, 24), "0000ff00 00000000", "R"},
        {"cut mask", Header(40, 1, 4, 24), "0000ff00 ff000000 80000000", "B ."},
        {"fourth byte, the mask does not count", Header(40, 2, 2, 32), "0000ffff 00000000 80000000", "R."},
        {"empty fourth byte", Header(40, 2, 2, 32), "0000ff00 ff000000 40000000", "R."},
        {"height below 0", Header(40, 1, -4, 24), "0000ff00 ff000000 00000000 00000000", "B R"},
    };
    Check(cases, {.iconWithMask = true});
}

TEST(Dib, TakesPixelsAndColorsFromElsewhere) {
    const Pixel palette[] = {kBlack, kWhite, {0, 0, 255, 255}};
    const ByteVector dib = Concatenate({Header(40, 3, 1, 4, 0, 3), Hex("0200 0100 0900")});
    EXPECT_EQ(Sketch(Must(DecodeDib(dib, Hex("01200000"), {.palette = palette}, {}))), "RWK");
}

TEST(Dib, MultipliedColorsBecomeStraight) {
    const Picture picture =
        Must(Decode(Header(40, 2, 1, 32), "00004080 00000000", {.premultipliedAlpha = true}));
    EXPECT_EQ(picture.At(0, 0), (Pixel{0, 0, 128, 128}));
    EXPECT_EQ(picture.At(1, 0), kTransparent);
}

TEST(Dib, CarriesWholeFiles) {
    const Picture picture = test::PhotoLike(20, 10);
    MemorySink jpg;
    Must(EncodeJpg(picture, {}, jpg));
    const ByteVector dib = Concatenate({Header(40, 9, 9, 0, 4), jpg.Written()});
    const Picture read = Must(DecodeDib(dib, std::nullopt, {}, {}));
    EXPECT_EQ(test::LargestDifference(read, Must(DecodeJpg(jpg.Written(), {}))), 0);
    EXPECT_FALSE(DecodeDib(dib, std::nullopt, {}, {.limits = {}, .nestingLeft = 0}));
}

TEST(Dib, RefusesWhatHoldsNoPicture) {
    const struct {
        const char* name;
        ByteVector header;
        std::string rest;
        FailureKind kind;
    } cases[] = {
        {"header of 13 bytes", Header(13, 1, 1, 24), "00000000", FailureKind::Damaged},
        {"no width", Header(40, 0, 1, 24), "00000000", FailureKind::Damaged},
        {"height of -2^31", Header(40, 1, INT32_MIN, 24), "00000000", FailureKind::TooBig},
        {"not one whole row", Header(40, 1, 1, 24), "0000", FailureKind::Damaged},
        {"masks cut", Header(40, 1, 1, 16, 3), "00f80000", FailureKind::Damaged},
        {"runs of the wrong depth", Header(40, 1, 1, 4, 1), "0101", FailureKind::Unsupported},
        {"3 bits", Header(40, 1, 1, 3), "00000000", FailureKind::Unsupported},
        {"no PNG inside", Header(40, 1, 1, 0, 5), "00000000", FailureKind::Damaged},
        {"2 GB for one row", Header(40, 20000, 20000, 1), std::string(2 * 2508, '0'), FailureKind::Damaged},
        {"2 GB for one run", Header(40, 20000, 20000, 8, 1), std::string(2 * 1026, '0'),
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
