#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "core/rastx/codecs/Emf.h"
#include "core/rastx/codecs/Png.h"
#include "tests/metafile/RecordBuilder.h"

namespace tessara {
namespace {

using namespace test;

constexpr int kStockNoPen = static_cast<int>(0x80000008), kStockGrey = static_cast<int>(0x80000002);
constexpr int kSourceCopy = 0x00CC0020, kSourcePaint = 0x00EE0086;

std::string Played(const EmfBuilder& emf) {
    return Sketch(Must(DecodeEmf(emf.File(), {})));
}

struct Case {
    const char* name;
    EmfBuilder emf;
    const char* expected;
};

void ExpectPictures(std::initializer_list<Case> cases, std::string (*shown)(const Picture&) = Sketch) {
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(shown(Must(DecodeEmf(row.emf.File(), {}))), row.expected);
    }
}

int Float(float value) {
    return std::bit_cast<int>(value);
}

EmfBuilder& Transform(EmfBuilder& emf, float m11, float m12, float m21, float m22, float dx, float dy) {
    return emf.Record(35, {Float(m11), Float(m12), Float(m21), Float(m22), Float(dx), Float(dy)});
}

TEST(EmfPlayer, DrawsShapesOnWholePixels) {
    const auto mixed = [](EmfBuilder emf) {
        return emf.Bounded(56, {6, 0, 0, 1, 0, 1, 0, 2, 0, 2, 2, 0, 2}, Hex("060404040203"));
    };
    const auto brushed = [](int width, int height) {
        return EmfBuilder(width, height).Record(39, {9, 0, Red, 0});
    };
    ExpectPictures({
        {"a box", EmfBuilder(4, 3).Fill(Red).Rectangle(1, 1, 3, 3), "WWWW WRRW WRRW"},
        {"a polygon of short points",
         EmfBuilder(3, 2).Fill(Red).Bounded(86, {4}, Points({1, 0, 3, 0, 3, 2, 1, 2})), "WRR WRR"},
        {"polygons of long points",
         EmfBuilder(3, 1).Fill(Red).Bounded(8, {2, 8, 4, 4, 0, 0, 1, 0, 1, 1, 0, 1, 2, 0, 3, 0, 3, 1, 2, 1}),
         "RWR"},
        {"lines go on from the last point",
         EmfBuilder(3, 3).Pen(0, 0, Blue).Record(27, {0, 0}).Bounded(89, {2}, Points({2, 0, 2, 2})),
         "BBB WWB WWB"},
        {"lines and a curve close their figure", mixed(EmfBuilder(3, 3).Pen(0, 0, Blue)), "BBB BWB BBB"},
        {"as they do in a path",
         mixed(EmfBuilder(3, 3).Pen(0, 0, Blue).Record(59, {})).Record(60, {}).Bounded(64, {}),
         "BBB BWB BBB"},
        {"a flat cap ends at its point",
         EmfBuilder(4, 4)
             .Record(95, {1, 0, 0, 0, 0, 0x10200, 2, 0, static_cast<int>(Red), 0, 0})
             .Record(37, {1})
             .Record(27, {1, 2})
             .Record(54, {3, 2}),
         "WWWW WRRW WRRW WWWW"},
        {"dashes in units that are a tenth of a pixel",
         EmfBuilder(8, 1)
             .Record(17, {8})
             .Record(9, {80, 10})
             .Record(11, {8, 1})
             .Record(95, {1, 0, 0, 0, 0, 0x10207, 10, 0, static_cast<int>(Red), 0, 2, 30, 10})
             .Record(37, {1})
             .Record(27, {0, 5})
             .Record(54, {80, 5}),
         "RRRWRRRW"},
        {"a stock brush without a pen",
         EmfBuilder(1, 1).Record(37, {kStockNoPen}).Record(37, {kStockGrey}).Rectangle(0, 0, 1, 1), "?"},
        {"a slot is filled anew",
         EmfBuilder(1, 1)
             .Fill(Red)
             .Record(39, {2, 0, static_cast<int>(Blue), 0})
             .Record(37, {2})
             .Rectangle(0, 0, 1, 1),
         "B"},
        {"lines of several figures",
         EmfBuilder(3, 3).Pen(0, 0, Blue).Bounded(7, {2, 4, 2, 2, 0, 0, 3, 0, 0, 2, 3, 2}), "BBB WWW BBB"},
        {"a curve whose handles lie on its line",
         EmfBuilder(3, 3).Pen(0, 0, Blue).Bounded(85, {4}, Points({-9, 1, 0, 1, 3, 1, 9, 1})), "WWW BBB WWW"},
        {"corners wider than tall", EmfBuilder(8, 4).Fill(Red).Record(44, {0, 0, 8, 4, 4, 2}),
         "??RRRR?? RRRRRRRR RRRRRRRR ??RRRR??"},
        {"a region is painted",
         EmfBuilder(3, 1).Fill(Red).Bounded(74, {48, 32, 1, 1, 16, 0, 0, 0, 0, 1, 0, 3, 1}), "WRR"},
        {"a region is filled with a brush of its own",
         brushed(3, 1).Bounded(71, {48, 9, 32, 1, 1, 16, 0, 0, 0, 0, 1, 0, 3, 1}), "WRR"},
        {"the frame of a region, one wide and two tall",
         brushed(5, 5).Bounded(72, {48, 9, 1, 2, 32, 1, 1, 16, 0, 0, 0, 0, 0, 0, 5, 5}),
         "RRRRR RRRRR RWWWR RRRRR RRRRR"},
        {"a region inverts", EmfBuilder(3, 1).Bounded(73, {48, 32, 1, 1, 16, 0, 0, 0, 0, 1, 0, 2, 1}), "WKW"},
    });
}

TEST(EmfPlayer, DrawsRoundShapesWhereTheyBelong) {
    // A quarter from the right (20, 10) to the top (10, 0), counter-clockwise.
    const std::initializer_list<int> quarter = {0, 0, 20, 20, 20, 10, 10, 0},
                                     upQuarter = {0, 0, 20, 20, 20, 10, 10, 20};
    // Paths begin at the centre; that they are flattened is not to be seen.
    const auto red = [] { return EmfBuilder(20, 20).Fill(Red); };
    const auto path = [](EmfBuilder emf) { return emf.Record(59, {}).Record(27, {10, 10}); };
    const auto filled = [](EmfBuilder emf) { return emf.Record(60, {}).Record(65, {}).Bounded(62, {}); };
    const auto upward = [&] {
        return red().Record(17, {8}).Record(9, {20, -20}).Record(11, {20, 20}).Record(12, {0, 20});
    };
    EmfBuilder turned = red();
    Transform(turned, 0.8f, 0.6f, -0.6f, 0.8f, 8, -4);
    ExpectPictures(
        {
            {"pie", red().Record(47, quarter), "WR WW"},
            {"chord", red().Record(46, quarter), "WR WW"},
            {"clockwise", red().Record(57, {2}).Record(47, quarter), "RW RR"},
            {"an upward axis", upward().Record(47, upQuarter), "WR WW"},
            {"a turned half", turned.Record(47, {0, 0, 20, 20, 20, 10, 0, 10}), "RR WW"},
            {"an open arc is not filled", red().Record(45, quarter), "WW WW"},
            {"from the position, and on",
             filled(path(red()).Record(55, quarter).Record(54, {0, 0}).Record(54, {0, 10})), "RR WW"},
            {"from the position, upwards", filled(path(upward()).Record(55, upQuarter)), "WR WW"},
            {"by its angles", filled(path(red()).Record(41, {10, 10, 10, Float(180), Float(90)})), "WW RW"},
            {"by its angles, clockwise", filled(path(red()).Record(41, {10, 10, 10, Float(180), Float(-90)})),
             "RW WW"},
        },
        Quarters);
}

TEST(EmfPlayer, TransformsAndMaps) {
    EmfBuilder shifted(3, 2), turned(3, 2), broken(2, 1);
    const auto modified = [](int mode) {
        EmfBuilder emf(4, 1);
        Transform(emf, 1, 0, 0, 1, 1, 0).Record(36, {Float(2), 0, 0, Float(1), 0, 0, mode});
        return emf.Fill(Red).Rectangle(0, 0, 1, 1);
    };
    // A box of about three pixels, in units of each size.
    const auto measured = [](int mode, int units) {
        return EmfBuilder(4, 4).Record(17, {mode}).Record(12, {0, 4}).Fill(Red).Rectangle(0, 0, units, units);
    };
    const auto scaled = [](std::uint32_t type, std::initializer_list<int> scale) {
        return EmfBuilder(4, 2).Record(17, {8}).Record(type, scale).Fill(Red).Rectangle(0, 0, 4, 1);
    };
    Transform(shifted, 1, 0, 0, 1, 1, 1).Fill(Red).Rectangle(0, 0, 1, 1);
    Transform(turned, 0, 1, -1, 0, 3, 0).Fill(Red).Rectangle(0, 0, 2, 1);
    Transform(broken, 1, 0, 0, 1, 1, 0);
    Transform(broken, NAN, 0, 0, INFINITY, 0, 0).Fill(Red).Rectangle(0, 0, 1, 1);
    ExpectPictures({
        {"a world that shifts", shifted, "WWW WRW"},
        {"a world that turns", turned, "WWR WWR"},
        {"no transform again", modified(1), "RWWW"},
        {"a transform before the world's", modified(2), "WRRW"},
        {"a transform after the world's", modified(3), "WWRR"},
        {"a transform in place of the world's", modified(4), "RRWW"},
        {"tenths of a millimetre", measured(2, 8), "WWWW RRRW RRRW RRRW"},
        {"hundredths of a millimetre", measured(3, 79), "WWWW RRRW RRRW RRRW"},
        {"hundredths of an inch", measured(4, 3), "WWWW RRRW RRRW RRRW"},
        {"thousandths of an inch", measured(5, 31), "WWWW RRRW RRRW RRRW"},
        {"a window that grows", scaled(32, {2, 1, 1, 1}), "RRWW WWWW"},
        {"a viewport that shrinks and grows", scaled(31, {1, 2, 2, 1}), "RRWW RRWW"},
        {"a viewport never vanishes", scaled(31, {0, 1, 1, 0}), "RRRR WWWW"},
        {"a transform of no numbers is passed over", broken, "WR"},
        {"a window and a viewport",
         EmfBuilder(4, 1)
             .Record(17, {8})
             .Record(9, {10, 10})
             .Record(11, {2, 1})
             .Record(12, {1, 0})
             .Fill(Red)
             .Rectangle(0, 0, 10, 10),
         "WRRW"},
        {"the text mode passes over extents",
         EmfBuilder(2, 1).Record(9, {10, 10}).Fill(Red).Rectangle(0, 0, 1, 1), "RW"},
        {"inches with an upward axis",
         EmfBuilder(2, 2).Record(17, {6}).Record(12, {0, 2}).Fill(Red).Rectangle(0, 0, 15, 15), "WW RW"},
        {"from right to left", EmfBuilder(3, 1).Record(115, {1}).Fill(Red).Rectangle(0, 0, 1, 1), "WWR"},
    });
}

TEST(EmfPlayer, GathersPaths) {
    const auto boxPath = [](int width) {
        return EmfBuilder(width, 1).Fill(Red).Record(59, {}).Rectangle(1, 0, 3, 1).Record(60, {});
    };
    // Lines through three points and more, for a red brush.
    const auto pathOf = [](EmfBuilder emf, const ByteVector& points) {
        return emf.Brush(0, Red)
            .Record(59, {})
            .Bounded(87, {static_cast<int>(points.size() / 4)}, points)
            .Record(60, {});
    };
    EmfBuilder narrowed(4, 1);
    for (int left = -9; left < 2; ++left)
        narrowed.Record(59, {}).Rectangle(left, 0, 3, 1).Record(60, {}).Record(67, {1});
    narrowed.Fill(Red).Rectangle(0, 0, 4, 1);
    ExpectPictures({
        {"nothing shows before it is filled", boxPath(4), "WWWW"},
        {"filled", boxPath(4).Bounded(62, {}), "WRRW"},
        {"aborted", boxPath(4).Record(68, {}).Bounded(62, {}), "WWWW"},
        {"a clip", boxPath(4).Record(67, {5}).Rectangle(0, 0, 4, 1), "WRRW"},
        {"a clip taken away", boxPath(4).Record(67, {4}).Rectangle(0, 0, 4, 1), "RWWR"},
        {"clips one after another", narrowed, "WRRW"},
        {"an open figure is closed before it is filled and stroked",
         pathOf(EmfBuilder(3, 3).Pen(0, 0, Blue), Points({0, 0, 2, 0, 2, 2, 0, 2})).Bounded(63, {}),
         "BBB BRB BBB"},
        {"widened to where the pen would draw, corner and all",
         pathOf(EmfBuilder(4, 4).Record(95, {1, 0, 0, 0, 0, 0x12200, 3, 0, 0, 0, 0}).Record(37, {1}),
                Points({1, 9, 1, 1, 9, 1}))
             .Record(66, {})
             .Bounded(62, {}),
         "RRRR RRRR RRRR RRRW"},
        {"no area by a pen of a pixel", boxPath(4).Pen(0, 0, Blue).Record(66, {}).Bounded(62, {}), "WRRW"},
        {"stroked",
         EmfBuilder(3, 3)
             .Pen(0, 0, Blue)
             .Record(59, {})
             .Record(27, {0, 1})
             .Record(54, {9, 1})
             .Record(60, {})
             .Bounded(64, {}),
         "WWW BBB WWW"},
    });
}

TEST(EmfPlayer, ClipsToRegions) {
    EmfBuilder turned(4, 4);
    Transform(turned, 1, 1, -1, 1, 2, 0).Record(29, {0, 0, 2, 2});
    Transform(turned, 1, 0, 0, 1, 0, 0).Fill(Red).Rectangle(0, 0, 4, 4);
    const auto region = [](int mode) {
        return EmfBuilder(4, 1)
            .Record(30, {0, 0, 2, 1})
            .Record(75, {48, mode, 32, 1, 1, 16, 0, 0, 0, 0, 1, 0, 3, 1})
            .Fill(Red)
            .Rectangle(0, 0, 4, 1);
    };
    ExpectPictures({
        {"and", region(1), "WRWW"},
        {"or", region(2), "RRRW"},
        {"xor", region(3), "RWRW"},
        {"difference", region(4), "RWWW"},
        {"copy", region(5), "WRRW"},
        {"a box that moves",
         EmfBuilder(4, 1).Record(30, {0, 0, 1, 1}).Record(26, {2, 0}).Fill(Red).Rectangle(0, 0, 4, 1),
         "WWRW"},
        {"nothing that could move", EmfBuilder(2, 1).Record(26, {1, 0}).Fill(Red).Rectangle(0, 0, 2, 1),
         "RR"},
        {"a limit that outlasts the clip it came from",
         EmfBuilder(4, 1)
             .Record(30, {0, 0, 2, 1})
             .Record(28, {})
             .Record(75, {48, 5, 32, 1, 1, 16, 0, 0, 0, 0, 1, 0, 4, 1})
             .Fill(Red)
             .Rectangle(0, 0, 4, 1),
         "WRWW"},
        {"around a turned box", turned, "RRRR RWWR WWWW RWWR"},
        {"none", EmfBuilder(2, 1).Record(30, {0, 0, 1, 1}).Record(75, {0, 5}).Fill(Red).Rectangle(0, 0, 2, 1),
         "RR"},
    });
}

/// A block transfer: its fixed part, what follows it, and the bitmap.
EmfBuilder& Transfer(EmfBuilder& emf, std::uint32_t type, int operation, std::initializer_list<int> target,
                     std::initializer_list<int> more, const ByteVector& dib, int headerBytes = 40) {
    ByteWriter rest;
    for (const int number : target) rest.I32Le(number);
    rest.I32Le(operation).I32Le(0).I32Le(0);
    for (const float number : {1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f}) rest.I32Le(Float(number));
    const auto header = static_cast<int>(100 + 4 * more.size());
    rest.U32Le(0).U32Le(0).I32Le(header).I32Le(headerBytes).I32Le(header + 40).I32Le(0);
    for (const int number : more) rest.I32Le(number);
    return emf.Record(type, {0, 0, 0, 0}, Concatenate({rest.Written(), dib}));
}

TEST(EmfPlayer, DrawsBitmaps) {
    // Three pixels on yellow by two operations, a red brush and a mask of white, black and white.
    const auto masked = [](int operations, const ByteVector& dib, int maskX = 0) {
        EmfBuilder emf = EmfBuilder(3, 1).Fill(Yellow).Rectangle(0, 0, 3, 1).Brush(0, Red);
        const auto mask = static_cast<int>(128 + dib.size());
        Transfer(emf, 78, static_cast<int>(operations * 0x10000u), {0, 0, 3, 1},
                 {maskX, 0, 0, mask, 40, mask + 40, 0}, Concatenate({dib, Dib("WKW")}), dib.empty() ? 0 : 40);
        return emf;
    };
    EmfBuilder copied(3, 1), stretched(4, 1), keyed(2, 1), blended(2, 1);
    Transfer(copied.Fill(Green).Rectangle(0, 0, 3, 1), 76, kSourcePaint, {0, 0, 2, 1}, {}, Dib("RK"));
    Transfer(stretched, 77, kSourceCopy, {4, 0, -4, 1}, {2, 1}, Dib("RR"));
    Transfer(keyed.Fill(Green).Rectangle(0, 0, 2, 1), 116, static_cast<int>(Red), {0, 0, 2, 1}, {2, 1},
             Dib("RB"));
    const ByteVector premultiplied =
        Hex("28000000 02000000 01000000 0100 2000 00000000 00000000 00000000 00000000"
            "00000000 00000000 000000FF 00000000");
    Transfer(blended.Fill(Green).Rectangle(0, 0, 2, 1), 114, 0x01FF0000, {0, 0, 2, 1}, {2, 1}, premultiplied);
    ExpectPictures({
        {"combined", copied, "YGG"},
        {"mirrored", stretched, "RRRR"},
        {"but for one colour", keyed, "GB"},
        {"by its alpha", blended, "KG"},
        {"stretched rows from the bottom up",
         EmfBuilder(2, 2).Bounded(81, {0, 0, 0, 0, 2, 1, 80, 40, 120, 0, 0, kSourceCopy, 2, 2}, Dib("RG BW")),
         "BW BW"},
        {"upside down by its source",
         EmfBuilder(2, 2).Bounded(81, {0, 0, 0, 2, 2, -2, 80, 40, 120, 0, 0, kSourceCopy, 2, 2},
                                  Dib("RG BW")),
         "BW RG"},
        {"enormous",
         EmfBuilder(2, 1).Bounded(81, {-49999, 0, 0, 0, 2, 1, 80, 40, 120, 0, 0, kSourceCopy, 100000, 1},
                                  Dib("RG")),
         "RG"},
        {"to the device",
         EmfBuilder(3, 2).Bounded(80, {1, 0, 0, 0, 2, 2, 76, 40, 116, 0, 0, 0, 2}, Dib("RG BW")), "WRG WBW"},
        {"a bitmap that lies outside of its record",
         EmfBuilder(1, 1)
             .Fill(Red)
             .Rectangle(0, 0, 1, 1)
             .Bounded(81, {0, 0, 0, 0, 2, 1, 9999, 40, -4, 0, 0, kSourceCopy, 2, 2}),
         "R"},
        {"a parallelogram",
         EmfBuilder(2, 2).Bounded(79, {0, 2, 0, 0,   2,  2,   0, 0, 2, 2, Float(1), 0, 0, Float(1), 0,
                                       0, 0, 0, 140, 40, 180, 0, 0, 0, 0, 0,        0, 0, 0},
                                  Dib("RG BW")),
         "GW RB"},
        {"where a mask is white", masked(0xAACC, Dib("RGB")), "RYB"},
        {"where a mask is black, shifted", masked(0xCCAA, Dib("RGB"), 1), "RYB"},
        {"not the ground where a mask is black", masked(0x55CC, Dib("RGC")), "RBC"},
        {"a brush where a mask is white", masked(0xAAF0, {}), "RYR"},
        {"a parallelogram with a mask",
         EmfBuilder(2, 2).Bounded(79, {0, 2, 0, 0,   2,  2,   0, 0, 2, 2, Float(1), 0,  0,   Float(1), 0,
                                       0, 0, 0, 140, 40, 180, 0, 0, 0, 0, 196,      40, 236, 0},
                                  Concatenate({Dib("RG BW"), Dib("WW KW")})),
         "GW RW"},
    });
    // Four fields on a slope: the first comes to lie at the lower left, the second above it.
    std::string fields;
    for (const char* row : {"RRRRRRRRRRGGGGGGGGGG ", "BBBBBBBBBBKKKKKKKKKK "})
        for (int i = 0; i < 40; ++i) fields += row;
    ExpectPictures(
        {{"aslant",
          EmfBuilder(20, 20).Bounded(79, {2, 20, 0, 2,   20, 18,  0, 0, 20, 80, Float(1), 0, 0, Float(1), 0,
                                          0, 0,  0, 140, 40, 180, 0, 0, 0,  0,  0,        0, 0, 0},
                                     Dib(fields)),
          "GK RB"}},
        Quarters);
}

TEST(EmfPlayer, KeepsPalettesAndBrushes) {
    const auto ofPalette = [](std::uint32_t type, std::initializer_list<int> change, int index) {
        EmfBuilder emf(1, 1);
        for (const int slot : {1, 2}) emf.Record(49, {slot, 0x20300, Red, Green});
        emf.Record(48, {1}).Record(type, change).Record(37, {kStockNoPen});
        return emf.Record(39, {3, 0, 0x01000000 | index, 0}).Record(37, {3}).Rectangle(0, 0, 1, 1);
    };
    ExpectPictures({
        {"a colour of the palette", ofPalette(52, {}, 1), "G"},
        {"a changed colour", ofPalette(50, {1, 1, 1, Yellow}, 1), "Y"},
        {"a changed colour of another", ofPalette(50, {2, 1, 1, Yellow}, 1), "G"},
        {"a longer tail is black", ofPalette(51, {1, 3}, 2), "K"},
        {"a hatch", EmfBuilder(2, 4).Record(25, {Yellow}).Pen(5, 0, 0).Brush(2, Red).Rectangle(0, 0, 2, 4),
         "YY YY YY RR"},
        {"a pen of a pattern",
         EmfBuilder(4, 2)
             .Record(95, {1, 52, 40, 92, 0, 0x10200, 2, 5, 0, 0, 0}, Dib("RG"))
             .Record(37, {1})
             .Bounded(87, {2}, Points({-9, 1, 9, 1})),
         "RGRG RGRG"},
    });
}

TEST(EmfPlayer, FillsGradients) {
    const Picture picture = Must(DecodeEmf(
        EmfBuilder(256, 1).Bounded(118, {2, 1, 0, 0, 0, 0, 0, 256, 1, 0xFF00, 0, 0, 1}).File(), {}));
    EXPECT_LE(picture.At(0, 0).r, 2);
    EXPECT_NEAR(picture.At(128, 0).r, 128, 3);
    EXPECT_GE(picture.At(255, 0).r, 252);

    const Picture upwards = Must(DecodeEmf(
        EmfBuilder(1, 256).Bounded(118, {2, 1, 1, 1, 256, 0, 0, 0, 0, 0xFF00, 0, 0, 1}).File(), {}));
    EXPECT_GE(upwards.At(0, 0).r, 252);
    EXPECT_NEAR(upwards.At(0, 64).r, 192, 3);

    // Red, green and blue in three corners; a second triangle lacks a corner.
    constexpr int kFull = 0xFF00, kFullGreen = -0x1000000;
    const Picture triangle = Must(DecodeEmf(
        EmfBuilder(20, 20)
            .Bounded(118, {3, 2, 2, 0, 0, kFull, 0, 20, 0, kFullGreen, 0, 0, 20, 0, kFull, 0, 1, 2, 1, 2, 3})
            .File(),
        {}));
    EXPECT_EQ(triangle.At(0, 0), (Pixel{6, 6, 242, 255}));
    EXPECT_EQ(triangle.At(18, 0), (Pixel{6, 236, 13, 255}));
    EXPECT_EQ(triangle.At(0, 18), (Pixel{236, 6, 13, 255}));
    EXPECT_EQ(triangle.At(6, 6), (Pixel{83, 83, 89, 255}));
    EXPECT_EQ(triangle.At(15, 15), kWhite);
}

TEST(EmfPlayer, WritesTextOnItsGround) {
    ByteWriter call;
    for (const int number : {1, 0, 0, 2, 3, 2, 76, 2, 1, 1, 8, 3, 80}) call.I32Le(number);
    call.U16Le(' ').U16Le(' ').I32Le(3).I32Le(4);
    const Picture picture = Must(DecodeEmf(EmfBuilder(12, 8)
                                               .Record(25, {static_cast<int>(Red)})
                                               .Record(18, {1})
                                               .Bounded(84, {}, call.Written())
                                               .File(),
                                           {}));
    EXPECT_EQ(Sketch(picture).substr(0, 38), "WWWWWWWWWWWW WRRRRRRRWWWW WRRRRRRRWWWW");
}

TEST(EmfPlayer, FindsTheExtentOfThePicture) {
    ExpectPictures({
        {"bounds where there is no frame",
         EmfBuilder(0, 0).NoFrame().Bounds(1, 0, 2, 0).Fill(Red).Rectangle(2, 0, 3, 1), "WR"},
        {"the drawing where there is neither", EmfBuilder(0, 0).NoFrame().Fill(Red).Rectangle(5, 5, 7, 6),
         "RR"},
        {"bounds where the frame cuts them",
         EmfBuilder(2, 1).Bounds(0, 0, 3, 0).Fill(Red).Rectangle(3, 0, 4, 1), "WWWR"},
    });
}

TEST(EmfPlayer, ShowsWhatCommentsCarryWhereNothingIsDrawn) {
    const auto plus = [](int flags, const ByteVector& image) {
        ByteWriter data;
        data.U32Le(static_cast<std::uint32_t>(4 + 12 + 4 + (image.empty() ? 0 : 12 + image.size())))
            .Text("EMF+");
        data.U16Le(0x4001).U16Le(static_cast<std::uint32_t>(flags)).U32Le(16).U32Le(4).U32Le(0);
        if (!image.empty())
            data.U16Le(0x4008)
                .U16Le(0x0500)
                .U32Le(static_cast<std::uint32_t>(12 + image.size()))
                .U32Le(static_cast<std::uint32_t>(image.size()))
                .Append(image);
        return EmfBuilder(1, 1).Record(70, {}, data.Written());
    };
    const auto raw = [](const char* rest) { return Hex(std::string("0210C0DB 01000000 02000000 ") + rest); };
    const ByteVector rawPixels = raw("01000000 08000000 0A202600 00000000 FF0000FF 00000000");
    EXPECT_EQ(Played(plus(0, raw("01000000 06000000 08180200 00000000 FF0000 00FF00"))), "BG") << "no alpha";
    EXPECT_FALSE(DecodeEmf(plus(0, raw("02000000 08000000 0A202600 00000000 FF0000FF")).File(), {}))
        << "a row is missing";
    const ByteVector header = raw("00000000 00000000 00000000 01000000 424D 46000000 00000000 36000000");
    EXPECT_EQ(Played(plus(0, Concatenate({header, Dib("RGB")}))), "RGB") << "a whole file";
    EXPECT_EQ(Played(plus(0, rawPixels)), "BW") << "an image object";
    EXPECT_FALSE(DecodeEmf(plus(0, {}).File(), {})) << "a drawing in newer records alone";
    EXPECT_EQ(Played(plus(1, rawPixels).Fill(Red).Rectangle(0, 0, 1, 1)), "R") << "a dual file";

    const ByteVector wmf = WmfBuilder(2, 1).Fill(Blue).Rectangle(1, 0, 2, 1).File();
    ByteWriter data;
    data.U32Le(static_cast<std::uint32_t>(20 + wmf.size()))
        .Text("GDIC")
        .U32Le(0x80000001)
        .U32Le(0x300)
        .U32Le(0);
    data.U32Le(static_cast<std::uint32_t>(wmf.size())).Append(wmf);
    EXPECT_EQ(Played(EmfBuilder(2, 1).Record(70, {}, data.Written())), "WB") << "a metafile";
    EXPECT_EQ(Sketch(Must(DecodeEmf(EmfBuilder(2, 1).Record(70, {}, data.Written()).File(), {{}, 0}))), "WW")
        << "no further nesting allowed";
}

TEST(EmfPlayer, DrawsWhatABrokenFileStillHolds) {
    const EmfBuilder drawing = EmfBuilder(2, 1).Fill(Red).Rectangle(0, 0, 1, 1);
    const auto played = [](const ByteVector& file) { return Sketch(Must(DecodeEmf(file, {}))); };
    EXPECT_EQ(played(drawing.File(false)), "RW") << "no end record";
    EXPECT_EQ(played(Concatenate({drawing.File(false), Hex("2B000000 04000000")})), "RW")
        << "a record too small";
    EXPECT_EQ(played(Concatenate({drawing.File(false), Hex("2B000000 FFFFFFFF 00")})), "RW")
        << "one too large";
    EXPECT_EQ(played(EmfBuilder(2, 1)
                         .Bounded(86, {0x7FFFFFFF})
                         .Bounded(8, {-1, -1, -1})
                         .Fill(Red)
                         .Rectangle(0, 0, 1, 1)
                         .File()),
              "RW")
        << "counts beyond their records";
    EXPECT_FALSE(DecodeEmf(EmfBuilder(2, 1).File(false), {})) << "nothing drawn before the break";
}

// A file of some kilobytes that orders hours of work is left off: what it draws at its end is missing.
TEST(EmfPlayer, LeavesOffEndlessWork) {
    const auto showsItsEnd = [](EmfBuilder emf) {
        const auto picture = DecodeEmf(emf.Brush(0, Red).Rectangle(-1, -1, 1200, 1200).File(), {});
        return picture && picture.Value().At(0, 0) == Pixel{0, 0, 255, 255};
    };
    ASSERT_TRUE(showsItsEnd(EmfBuilder(2, 2)));

    EmfBuilder flattened(2, 2);
    ByteWriter points;
    for (int i = 0; i < 5000; ++i) points.U32Le(static_cast<std::uint32_t>(i % 3));
    flattened.Record(59, {}).Bounded(87, {5000}, points.Written()).Record(60, {});
    for (int i = 0; i < 5000; ++i) flattened.Record(65, {});
    EXPECT_FALSE(showsItsEnd(flattened.Record(68, {}))) << "a long path is flattened again and again";

    // Slits across slits: few boxes whose union falls into very many.
    constexpr int kSlits = 600;
    ByteWriter slits;
    for (int i = 0; i < kSlits; ++i) {
        slits.I32Le(2 * i).I32Le(0).I32Le(2 * i + 1).I32Le(2 * kSlits);
        slits.I32Le(0).I32Le(2 * i).I32Le(2 * kSlits).I32Le(2 * i + 1);
    }
    EmfBuilder crossed(2 * kSlits, 2 * kSlits);
    crossed.Record(39, {9, 0, static_cast<int>(Blue), 0});
    for (int i = 0; i < 8; ++i)
        crossed.Bounded(71, {1 << 20, 9, 32, 1, 2 * kSlits, 0, 0, 0, 0, 0}, slits.Written());
    EXPECT_FALSE(showsItsEnd(crossed)) << "boxes that cross are painted again and again";

    EmfBuilder measured = EmfBuilder(0, 0).NoFrame();
    for (int i = 0; i < 16000; ++i) {
        const int x = i % 128 * 2, y = i / 128 * 2;
        measured.Record(29, {x, y, x + 1, y + 1});
    }
    EXPECT_FALSE(DecodeEmf(measured.Fill(Red).Rectangle(0, 0, 9, 9).File(), {}))
        << "a clip with ever more holes, while the extent is measured";

    const Picture large = Must(Picture::Create(4100, 4100, {0, 0, 255, 255}, Alpha::None, {}));
    MemorySink png;
    ASSERT_TRUE(EncodePng(large, {}, png));
    ByteWriter claim;
    claim.U32Le(40).I32Le(1).I32Le(1).U16Le(1).U16Le(0).U32Le(5).Zeros(20).Append(png.TakeBytes());
    const EmfBuilder carried = EmfBuilder(2, 2).Bounded(
        81, {0, 0, 0, 0, 1, 1, 80, 40, 120, 1 << 20, 0, kSourceCopy, 2, 2}, claim.Written());
    EXPECT_EQ(Played(carried), "WW WW") << "a picture file far larger than its header claims";
}

TEST(EmfPlayer, SurvivesCoordinatesWithoutMeasure) {
    EmfBuilder emf(3, 1);
    const int far = 0x7FFFFFFF;
    emf.Pen(1, 0, Black).Bounded(4, {4, -far, 0, far, 0, far, far, -far, 0});
    emf.Record(41, {0, 0, -1, Float(1e30f), Float(1e30f)}).Record(45, {-far, -far, far, far, 0, 0, far, 0});
    Transform(emf, 1e30f, 0, 0, 1e30f, 0, 0).Rectangle(-far, -far, far, far);
    Transform(emf, 1, 0, 0, 1, 0, 0).Fill(Red).Rectangle(-far, -far, 1, far);
    const Picture picture = Must(DecodeEmf(emf.File(), {}));
    EXPECT_EQ(picture.At(0, 0), (Pixel{0, 0, 255, 255}));
}

}  // namespace
}  // namespace tessara
