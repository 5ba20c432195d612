#include "core/rastx/codecs/Pcx.h"

#include "tests/Support.h"

namespace tessara {
namespace {

using test::Concatenate;
using test::Hex;
using test::Must;

/// The fields in which the cases differ; the picture is 3 wide and 2 high.
struct Fields {
    unsigned bits, planes, bytesPerLine;
    bool runLengths = true;
    ByteVector palette = {};
    unsigned xDensity = 300, yDensity = 300;
};

ByteVector File(const Fields& fields, const ByteVector& data) {
    ByteWriter file;
    file.U8(10).U8(5).U8(fields.runLengths).U8(fields.bits).U16Le(7).U16Le(8).U16Le(9).U16Le(9);
    file.U16Le(fields.xDensity)
        .U16Le(fields.yDensity)
        .Append(fields.palette)
        .Zeros(48 - fields.palette.size());
    file.U8(0).U8(fields.planes).U16Le(fields.bytesPerLine).Zeros(60).Append(data);
    return file.TakeBytes();
}

const ByteVector kFourColors = Hex("ff0000 00ff00 0000ff ffffff");

ByteVector LargePalette() {
    return Concatenate({Hex("0c 000000 ff0000 00ff00 0000ff"), ByteVector(756, 28)});
}

TEST(Pcx, ReadsEachKindOfPixels) {
    struct Case {
        const char* name;
        ByteVector file;
        const char* picture;
    };
    const Case cases[] = {
        {"1 bit", File({1, 1, 2}, Hex("40 00 a0 00")), "KWK WKW"},
        {"1 bit, colours of the screen", File({1, 1, 2, true, Hex("000000 0000aa")}, Hex("40 00 a0 00")),
         "KWK WKW"},
        {"1 bit, inverted", File({1, 1, 2, true, Hex("ffffff 000000")}, Hex("40 00 a0 00")), "WKW KWK"},
        {"2 planes", File({1, 2, 1, true, kFourColors}, Hex("40 20 a0 c1 e0")), "RGB WBW"},
        {"4 planes, no palette", File({1, 4, 1}, Hex("c1e0 c1e0 c1e0 80  00 00 00 60")), "W?? K??"},
        {"2 bits", File({2, 1, 1, true, kFourColors}, Hex("1b c1 e4")), "RGB WBG"},
        {"4 bits", File({4, 1, 2, true, kFourColors}, Hex("01 20 32 10")), "RGB WBG"},
        {"8 bits", Concatenate({File({8, 1, 3}, Hex("01 02 03 c3 03")), LargePalette()}), "RGB BBB"},
        {"palette before other bytes",
         Concatenate({File({8, 1, 3}, Hex("01 02 03 c3 03")), LargePalette(), Hex("1a1a")}), "RGB BBB"},
        {"8 bits without palette", File({8, 1, 3}, Hex("1c 38 00 c2 ff 00")), "12K WWK"},
        {"empty palette", Concatenate({File({8, 1, 3}, Hex("1c 38 00 c2 ff 00")), {0x0c}, ByteVector(768)}),
         "12K WWK"},
        {"3 planes", File({8, 3, 3}, Hex("c1ff 00 00  00 c1ff 00  00 00 c1ff  c9ff")), "RGB WWW"},
        {"3 planes with a palette behind",
         Concatenate({File({8, 3, 3}, Hex("c1ff 00 00  00 c1ff 00  00 00 c1ff  c9ff")), LargePalette()}),
         "RGB WWW"},
        {"alpha plane", File({8, 4, 3}, Hex("c9ff 00 c2ff c9ff c1ff 00 c1ff")), ".WW W.W"},
        {"empty alpha plane", File({8, 4, 3}, Hex("c9ff c3 00 c9ff c3 00")), "WWW WWW"},
        {"24 bits in one plane", File({24, 1, 9}, Hex("c1ff 0000 00 c1ff 00 0000 c1ff c9ff")), "BGR WWW"},
        {"32 bits in one plane",
         File({32, 1, 12, false}, Hex("ff000000 00ff0000 0000ff00 000000ff 000000ff 000000ff")), "BGR KKK"},
        {"uncompressed", File({8, 1, 3, false}, Hex("1c3800 ff00ff")), "12K WKW"},
        {"runs of no length", File({8, 1, 3}, Hex("c07f 1c 38 c055 00 c2ff 00")), "12K WWK"},
        {"run across lines", File({8, 1, 3}, Hex("1c c438 00")), "122 22K"},
        {"long lines", File({8, 1, 5}, Hex("1c 38 00 0909 c2ff 00 0909")), "12K WWK"},
        {"short lines", File({8, 3, 2}, Hex("c1ff00 c2ff 00c1ff  c6ff")), "YCK WWK"},
        {"data cut short", File({8, 1, 3}, Hex("1c 38 c1")), "12K WWW"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(RecognisePcx(row.file) || std::string_view(row.name) == "short lines");
        EXPECT_EQ(test::Sketch(Must(DecodePcx(row.file, {}))), row.picture);
    }
}

TEST(Pcx, FourColorsOfOldScreensAreFoundByTheirBits) {
    struct Case {
        const char* name;
        const char* palette;
        std::array<Pixel, 3> expected;  ///< of the indexes 0, 1, 2
    };
    const Case cases[] = {
        {"blue, bright green and red",
         "100000 a0",
         {Pixel{0xaa, 0, 0, 255}, {0x55, 0xff, 0x55, 255}, {0x55, 0x55, 0xff, 255}}},
        {"black, cyan and magenta", "000000 c0", {kBlack, {0xaa, 0xaa, 0, 255}, {0xaa, 0, 0xaa, 255}}},
        {"without burst, cyan and red", "000000 40", {kBlack, {0xaa, 0xaa, 0, 255}, {0, 0, 0xaa, 255}}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const Picture picture = Must(DecodePcx(File({2, 1, 1, true, Hex(row.palette)}, Hex("18 00")), {}));
        for (int x = 0; x < 3; ++x) EXPECT_EQ(picture.At(x, 0), row.expected[static_cast<std::size_t>(x)]);
    }
    // A screen that left whatever stood in memory where the palette belongs.
    const ByteVector onScreen =
        File({2, 1, 1, true, Hex("131313 a4ff67 000000 00433a"), 320, 200}, Hex("18 00"));
    EXPECT_EQ(Must(DecodePcx(onScreen, {})).At(0, 0), (Pixel{0xaa, 0, 0, 255}));
}

TEST(Pcx, OnlySquareResolutionsAreBelieved) {
    const std::tuple<unsigned, unsigned, double> cases[] = {
        {300, 300, 300}, {204, 196, 204}, {640, 480, 0}, {320, 200, 0}, {0, 0, 0}, {20000, 20000, 0}};
    for (const auto& [x, y, expected] : cases) {
        const ByteVector file = File({8, 1, 3, true, {}, x, y}, Hex("000000 000000"));
        EXPECT_EQ(Must(DecodePcx(file, {})).Meta().resolution.x, expected) << x << " x " << y;
    }
}

TEST(Pcx, RefusesWhatItCannotBe) {
    const auto changed = [](std::size_t offset, std::uint8_t value) {
        ByteVector file = File({8, 1, 3}, Hex("1c 38 00 1c 38 00"));
        file[offset] = value;
        return file;
    };
    ByteVector huge = changed(9, 0xff);
    huge[11] = 0x7f;
    const std::pair<const char*, ByteVector> cases[] = {
        {"magic", changed(0, 11)},        {"version", changed(1, 6)},
        {"encoding", changed(2, 2)},      {"bits", changed(3, 3)},
        {"planes", changed(65, 2)},       {"right before left", changed(8, 6)},
        {"no line", changed(66, 0)},      {"header cut", ByteVector(100, 10)},
        {"no data", File({8, 1, 3}, {})}, {"gigabytes from nothing", huge},
    };
    for (const auto& [name, file] : cases) EXPECT_FALSE(DecodePcx(file, {})) << name;
}

}  // namespace
}  // namespace tessara
