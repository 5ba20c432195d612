#include "core/rastx/codecs/Pnm.h"

#include "tests/Support.h"

namespace tessara {
namespace {

using namespace std::string_view_literals;
using test::Must;

ByteVector File(std::string_view text) {
    return {text.begin(), text.end()};
}

TEST(Pnm, ReadsEachKind) {
    struct Case {
        const char* name;
        std::string_view file;
        const char* picture;  ///< empty where it is refused
    };
    const Case cases[] = {
        {"plain bits", "P1\n3 2\n0 1 0\n1 0 1\n", "WKW KWK"},
        {"plain bits run together", "P1 3 2 01\n0101", "WKW KWK"},
        {"plain bits with comments", "P1 3 2 01# 1\n0#\r1 01", "WKW KWK"},
        {"plain grey", "P2\n3 2\n255\n0 28 56 84 112 140", "K12 345"},
        {"plain grey, few levels", "P2 3 2 9 0 9 9 9 0 0", "KWW WKK"},
        {"plain grey above the largest", "P2 3 1 9 0 10 99999999999", "KWW"},
        {"plain colour", "P3 2 1 1 1 0 0 0 0 1", "RB"},
        {"bits", "P4 3 2 \x5f\xbf"sv, "WKW KWK"},
        {"bits, wide", "P4 9 1 \x7f\x00"sv, "WKKKKKKKW"},
        {"grey", "P5 3 1 255 \x00\x1c\xff"sv, "K1W"},
        {"grey, few levels", "P5 3 1 9 \x00\x09\x0a"sv, "KWW"},
        {"grey, two bytes", "P5 3 1 65535 \x00\x00\x1c\x1c\xff\xff"sv, "K1W"},
        {"grey, two bytes of twelve bits", "P5 3 1 4095 \x00\x00\x0f\xff\x20\x00"sv, "KWW"},
        {"colour", "P6 2 1 255 \xff\x00\x00\x00\x00\xff"sv, "RB"},
        {"colour, two bytes", "P6 1 1 256 \x01\x00\x00\x00\x00\x00"sv, "R"},
        {"comments in the header", "P5#a\n#b\n1 #c\n#d\n3#e\n255\n\x00\x1c\xff"sv, "K 1 W"},
        {"comment at the last number", "P5 3 1 255#e\n\x00\x1c\xff"sv, "K1W"},
        {"line ends of two bytes", "P5\r\n3 1\r\n255\r\n\x00\x1c\xff"sv, "K1W"},
        {"first pixel like a line end", "P5 4 1 255\r\n\x00\x1c\xff"sv, "?K1W"},
        {"comment before the raster", "P5 3 1 255\n# made by\n\x00\x1c\xff"sv, "K1W"},
        {"first pixel like a comment", "P5 3 1 255\n#\x00\xff"sv, "?KW"},
        {"second picture", "P5 3 1 255\n\x00\x1c\xffP5 3 1 255\n\xff\xff\xff"sv, "K1W"},
        {"raster cut short", "P6 1 3 255 \xff\x00\x00\x00\x00"sv, "R W W"},
        {"plain raster cut short", "P2 2 2 255 0 28 56", "K1 2W"},
        {"letters in a plain raster", "P2 2 2 255 0 28 x 56", "K1 WW"},
        {"no raster", "P5 3 1 255\n", ""},
        {"no number", "P5 3 x 255\n\x01\x01\x01", ""},
        {"no width", "P5 0 3 255\n\x01\x01\x01", ""},
        {"largest value of 0", "P2 1 1 0 0", ""},
        {"largest value too large", "P2 1 1 65536 0", ""},
        {"size of many digits", "P5 4294967297 1 255 \x01", ""},
        {"gigabytes from nothing", "P5 20000 20000 255 \x01\x01\x01\x01", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const auto picture = DecodePnm(File(row.file), {});
        EXPECT_EQ(picture ? test::Sketch(picture.Value()) : "", row.picture);
    }
}

TEST(Pnm, SamplesAreRounded) {
    const Picture picture = Must(DecodePnm(File("P2 4 1 4095 1023 2047 3071 4094"), {}));
    const int expected[] = {64, 127, 191, 255};
    for (int x = 0; x < 4; ++x) EXPECT_EQ(picture.At(x, 0).g, expected[x]);
}

TEST(Pnm, IsToldFromItsRelatives) {
    for (const char* file : {"P1 1", "P4\n", "P6#"}) EXPECT_TRUE(RecognisePnm(File(file))) << file;
    for (const char* file : {"P7\nWIDTH", "PF 1 1", "Pf 1 1", "P12", "P6", "Paris"})
        EXPECT_FALSE(RecognisePnm(File(file))) << file;
}

}  // namespace
}  // namespace tessara
