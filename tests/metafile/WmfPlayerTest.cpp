#include <gtest/gtest.h>

#include "core/rastx/codecs/Wmf.h"
#include "tests/metafile/RecordBuilder.h"

namespace tessara {
namespace {

using namespace test;

constexpr int kCopy[] = {0x0020, 0x00CC};

std::string Played(const WmfBuilder& wmf) {
    return Sketch(Must(DecodeWmf(wmf.File(), {})));
}

struct Case {
    const char* name;
    WmfBuilder wmf;
    const char* expected;
};

void ExpectPictures(std::initializer_list<Case> cases, std::string (*shown)(const Picture&) = Sketch) {
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(shown(Must(DecodeWmf(row.wmf.File(), {}))), row.expected);
    }
}

/// With the colour of text, and that of the ground.
WmfBuilder RedOnBlue(int width) {
    return WmfBuilder(width, 1).Record(0x0209, {0xFF, 0}).Record(0x0201, {0, 0xFF});
}

/// Has a red brush, and as object 2 a region of 5 by 3 pixels, or what lies inside of their margin.
WmfBuilder Region(int margin) {
    const int right = 5 - margin, bottom = 3 - margin;
    return WmfBuilder(5, 3).Fill(Red).Record(
        0x06FF, {0, 6, 0, 0, 0, 1, 2, margin, margin, right, bottom, 2, margin, bottom, margin, right, 2});
}

TEST(WmfPlayer, DrawsShapesOnWholePixels) {
    ExpectPictures({
        {"a box without a pen ends before its right and bottom edges",
         WmfBuilder(4, 3).Fill(Red).Rectangle(1, 1, 3, 3), "WWWW WRRW WRRW"},
        {"a box with a pen keeps it inside",
         WmfBuilder(4, 4).Pen(0, 0, Black).Brush(0, Red).Rectangle(0, 0, 4, 4), "KKKK KRRK KRRK KKKK"},
        {"a line goes through the pixels of its points",
         WmfBuilder(4, 3).Pen(0, 0, Blue).Record(0x0214, {1, 0}).Record(0x0213, {1, 3}), "WWWW BBBB WWWW"},
        {"three pixels wide", WmfBuilder(3, 5).Pen(0, 3, Blue).Record(0x0325, {2}, Points({-9, 2, 9, 2})),
         "WWW BBB BBB BBB WWW"},
        {"a polygon and its hole",
         WmfBuilder(5, 3).Fill(Green).Record(0x0538, {2, 4, 4},
                                             Points({0, 0, 5, 0, 5, 3, 0, 3, 1, 1, 4, 1, 4, 2, 1, 2})),
         "GGGGG GWWWG GGGGG"},
        {"a pixel", WmfBuilder(3, 2).Record(0x041F, {0xFF, 0, 1, 2}), "WWW WWR"},
        {"a region of two boxes",
         WmfBuilder(3, 2)
             .Fill(Red)
             .Record(0x06FF, {0, 6, 0, 0, 0, 1, 4, 0, 0, 0, 0, 4, 0, 2, 0, 1, 2, 3, 4})
             .Record(0x012B, {2}),
         "RWR RWR"},
        {"a region inverts", Region(1).Record(0x012A, {2}), "WWWWW WKKKW WWWWW"},
        {"a region is filled with a brush of its own",
         Region(1).Record(0x02FC, {0, 0, 0xFF, 0}).Record(0x0228, {2, 3}), "WWWWW WBBBW WWWWW"},
        {"the frame of a region, one tall and two wide",
         Region(0).Record(0x02FC, {0, 0, 0xFF, 0}).Record(0x0429, {2, 3, 1, 2}), "BBBBB BBWBB BBBBB"},
        {"corners wider than tall", WmfBuilder(8, 4).Fill(Red).Record(0x061C, {2, 4, 4, 8, 0, 0}),
         "??RRRR?? RRRRRRRR RRRRRRRR ??RRRR??"},
        {"a flood as far as its colour goes",
         WmfBuilder(4, 1).Record(0x041F, {0xFF, 0, 0, 2}).Brush(0, Blue).Record(0x0548, {1, -1, 0xFF, 0, 0}),
         "BBRW"},
        {"a flood of nothing", WmfBuilder(2, 1).Brush(1, Blue).Record(0x0548, {1, -1, 0xFF, 0, 0}), "WW"},
        {"a flood up to a border",
         WmfBuilder(5, 1).Fill(Red).Rectangle(3, 0, 4, 1).Brush(0, Blue).Record(0x0419, {0xFF, 0, 0, 1}),
         "BBBRW"},
    });
}

TEST(WmfPlayer, DrawsRoundShapesWhereTheyBelong) {
    // A quarter from the right (20, 10) to the top (10, 0), counter-clockwise.
    const std::initializer_list<int> quarter = {0, 10, 10, 20, 20, 20, 0, 0};
    const auto red = [] { return WmfBuilder(20, 20).Fill(Red); };
    ExpectPictures(
        {
            {"ellipse", red().Record(0x0418, {10, 20, 0, 10}), "WR WW"},
            {"pie", red().Record(0x081A, quarter), "WR WW"},
            {"chord", red().Record(0x0830, quarter), "WR WW"},
            {"arc", WmfBuilder(20, 20).Pen(0, 6, Red).Brush(0, Blue).Record(0x0817, quarter), "WR WW"},
        },
        Quarters);
}

TEST(WmfPlayer, MapsUnitsToPixels) {
    const auto later = [](std::uint16_t function, std::initializer_list<int> numbers) {
        WmfBuilder wmf = WmfBuilder(4, 1).Record(0x020E, {100, 800}).Fill(Red).Rectangle(0, 0, 1, 1);
        return wmf.Record(function, numbers).Rectangle(0, 0, 1, 1);
    };
    ExpectPictures({
        {"units per inch", WmfBuilder(8, 4, 192).Fill(Red).Rectangle(0, 0, 4, 4), "RRWW RRWW"},
        {"a window replaces the placement",
         WmfBuilder(4, 2).Record(0x020C, {20, 40}).Fill(Red).Rectangle(10, 10, 40, 20), "WWWW WRRR"},
        {"a window with an upward axis",
         WmfBuilder(2, 2).Record(0x020B, {2, 0}).Record(0x020C, {-2, 2}).Fill(Red).Rectangle(0, 1, 1, 2),
         "RW WW"},
        {"a window that shifts", WmfBuilder(3, 1).Record(0x020F, {0, -1}).Fill(Red).Rectangle(0, 0, 1, 1),
         "WRW"},
        {"a window that grows", WmfBuilder(4, 1).Record(0x0410, {1, 1, 1, 2}).Fill(Red).Rectangle(0, 0, 4, 1),
         "RRWW"},
        {"an empty window is passed over",
         WmfBuilder(2, 1).Record(0x020C, {0, 0}).Fill(Red).Rectangle(0, 0, 1, 1), "RW"},
        {"the isotropic mode keeps the proportion",
         WmfBuilder(4, 2).Record(0x0103, {7}).Record(0x020C, {2, 2}).Fill(Red).Rectangle(0, 0, 2, 2),
         "RRWW RRWW"},
        {"a screen's viewport stands for the whole",
         WmfBuilder(4, 2).Record(0x020E, {600, 800}).Fill(Red).Rectangle(0, 0, 2, 2), "RRWW RRWW"},
        {"a later viewport is relative to it", later(0x020D, {0, 400}), "RWRW"},
        {"a later viewport that shifts", later(0x0211, {0, 600}), "RWWR"},
        {"a later viewport that grows", later(0x0412, {1, 1, 1, 3}), "RRRW"},
        {"a viewport that grows before anything is drawn is no later one",
         WmfBuilder(4, 1).Record(0x0412, {1, 1, 1, 3}).Fill(Red).Rectangle(0, 0, 1, 1), "RWWW"},
        {"from right to left", WmfBuilder(3, 1).Record(0x0149, {1}).Fill(Red).Rectangle(0, 0, 1, 1), "WWR"},
        {"without a placement the window is the picture",
         WmfBuilder::WithoutPlacement().Record(0x020C, {1, 3}).Fill(Red).Rectangle(0, 0, 1, 1), "RWW"},
        {"without any extent the drawing is measured",
         WmfBuilder::WithoutPlacement().Fill(Red).Rectangle(7, 7, 8, 8).Rectangle(9, 8, 10, 9), "RWW WWR"},
    });
}

TEST(WmfPlayer, CombinesByRasterOperations) {
    const auto drawn = [](int operation) {
        return WmfBuilder(2, 1)
            .Fill(Red)
            .Rectangle(0, 0, 1, 1)
            .Record(0x0104, {operation})
            .Brush(0, Yellow)
            .Rectangle(0, 0, 2, 1);
    };
    ExpectPictures({
        {"black", drawn(1), "KK"},
        {"not copy", drawn(4), "BB"},
        {"invert", drawn(6), "CK"},
        {"xor", drawn(7), "GB"},
        {"and", drawn(9), "RY"},
        {"nothing", drawn(11), "RW"},
        {"copy", drawn(13), "YY"},
        {"or", drawn(15), "YW"},
        {"white", drawn(16), "WW"},
        {"a pattern inverts", WmfBuilder(2, 1).Brush(0, Red).Record(0x061D, {0x0049, 0x005A, 1, 1, 0, 1}),
         "WC"},
    });
}

TEST(WmfPlayer, DrawsBitmaps) {
    const auto stretched = [](int low, int high, int sourceHeight, int targetHeight, int y) {
        return WmfBuilder(2, 2)
            .Fill(Yellow)
            .Rectangle(0, 0, 1, 2)
            .Record(0x0F43, {low, high, 0, sourceHeight, 2, 0, 0, targetHeight, 2, y, 0}, Dib("RG BW"));
    };
    ExpectPictures({
        {"as it is", stretched(0x20, 0xCC, 2, 2, 0), "RG BW"},
        {"upside down", stretched(0x20, 0xCC, 2, -2, 2), "BW RG"},
        {"its lower row stretched", stretched(0x20, 0xCC, 1, 2, 0), "BW BW"},
        {"and", stretched(0xC6, 0x88, 2, 2, 0), "RG KW"},
        {"or", stretched(0x86, 0xEE, 2, 2, 0), "YW WW"},
        {"not source and destination", stretched(0x26, 0x22, 2, 2, 0), "GM YK"},
        {"to the device", WmfBuilder(3, 2).Record(0x0D33, {0, 2, 0, 0, 0, 2, 2, 0, 1}, Dib("RG BW")),
         "WRG WBW"},
        {"a block with a source from the top",
         WmfBuilder(2, 1).Record(0x0940, {kCopy[0], kCopy[1], 1, 0, 1, 2, 0, 0}, Dib("RG BK")), "BK"},
        {"a block that mirrors",
         WmfBuilder(2, 1).Record(0x0B41, {kCopy[0], kCopy[1], 1, 2, 0, 0, 1, -2, 0, 2}, Dib("RG")), "GR"},
        {"an old block of colours",
         WmfBuilder(2, 1).Record(0x0922, {kCopy[0], kCopy[1], 0, 0, 1, 2, 0, 0, 0, 2, 1, 6, 0x1801},
                                 Hex("0000FF 00FF00")),
         "RG"},
        {"an old block of one bit takes the colours of text, and mirrors",
         RedOnBlue(2).Record(0x0B23, {kCopy[0], kCopy[1], 1, 2, 0, 0, 1, -2, 0, 2, 0, 2, 1, 2, 0x0101},
                             Hex("4000")),
         "BR"},
        {"a block without a source",
         WmfBuilder(2, 1).Brush(0, Blue).Record(0x0940, {0x0021, 0x00F0, 0, 0, 0, 1, 1, 0, 1}), "WB"},
        {"a mask and its picture meet",
         WmfBuilder(4, 1)
             .Fill(Green)
             .Rectangle(0, 0, 4, 1)
             .Record(0x0F43, {0xC6, 0x88, 0, 1, 3, 0, 0, 1, 4, 0, 0}, Dib("WKW"))
             .Record(0x0F43, {0x46, 0x66, 0, 1, 3, 0, 0, 1, 4, 0, 0}, Dib("KRK")),
         "GRRG"},
    });
}

TEST(WmfPlayer, FillsWithPatterns) {
    const auto ofOneBit = [](std::uint16_t function, std::initializer_list<int> bitmap) {
        WmfBuilder wmf = RedOnBlue(4).Pen(5, 0, 0).Record(function, bitmap);
        return wmf.Record(0x012D, {1}).Rectangle(0, 0, 4, 1);
    };
    ExpectPictures({
        {"a bitmap repeats",
         WmfBuilder(4, 1)
             .Pen(5, 0, 0)
             .Record(0x0142, {5, 0}, Dib("RG"))
             .Record(0x012D, {1})
             .Rectangle(0, 0, 4, 1),
         "RGRG"},
        {"a hatch on an opaque ground",
         WmfBuilder(2, 4).Record(0x0201, {0xFFFF, 0}).Pen(5, 0, 0).Brush(2, Red).Rectangle(0, 0, 2, 4),
         "YY YY YY RR"},
        {"a hatch that lets through",
         WmfBuilder(2, 4).Record(0x0102, {1}).Pen(5, 0, 0).Brush(2, Red).Rectangle(0, 0, 2, 4),
         "WW WW WW RR"},
        {"a bitmap of one bit takes the colours of text",
         ofOneBit(0x01F9, {0, 8, 1, 2, 0x0101, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x00A0}), "BRBR"},
        {"an old bitmap in a newer record", ofOneBit(0x0142, {3, 0, 0, 8, 1, 2, 0x0101, 0x00A0}), "BRBR"},
    });
}

TEST(WmfPlayer, KeepsObjectsAndStates) {
    const auto ofPalette = [](std::uint16_t function, std::initializer_list<int> change, int index) {
        WmfBuilder wmf = WmfBuilder(1, 1).Pen(5, 0, 0).Record(0x00F7, {0x300, 2, 0, 0, 0xFF00, 0});
        wmf.Record(0x0234, {1}).Record(function, change).Record(0x02FC, {0, index, 0x0100, 0});
        return wmf.Record(0x012D, {2}).Rectangle(0, 0, 1, 1);
    };
    ExpectPictures({
        {"a freed slot is the next to be taken",
         WmfBuilder(2, 1)
             .Fill(Red)
             .Record(0x01F0, {0})
             .Record(0x02FC, {0, 0, 0xFF, 0})
             .Record(0x012D, {0})
             .Rectangle(0, 0, 2, 1),
         "BB"},
        {"a deleted object still draws", WmfBuilder(1, 1).Fill(Red).Record(0x01F0, {1}).Rectangle(0, 0, 1, 1),
         "R"},
        {"what cannot be made takes its slot all the same",
         WmfBuilder(1, 1)
             .Pen(5, 0, 0)
             .Record(0x00F8, {0})
             .Record(0x02FC, {0, 0xFF, 0, 0})
             .Record(0x012D, {2})
             .Rectangle(0, 0, 1, 1),
         "R"},
        {"selecting nothing changes nothing",
         WmfBuilder(1, 1).Fill(Red).Record(0x012D, {77}).Rectangle(0, 0, 1, 1), "R"},
        {"a palette's colour", ofPalette(0x0035, {}, 1), "G"},
        {"a palette's changed colour", ofPalette(0x0037, {1, 1, 0xFF, 0}, 1), "R"},
        {"a palette's longer tail is black", ofPalette(0x0139, {3}, 2), "K"},
        {"restoring the last state",
         WmfBuilder(2, 1)
             .Fill(Red)
             .Record(0x001E, {})
             .Brush(0, Blue)
             .Record(0x0127, {-1})
             .Rectangle(0, 0, 2, 1),
         "RR"},
        {"restoring the first of two",
         WmfBuilder(2, 1)
             .Fill(Red)
             .Record(0x001E, {})
             .Brush(0, Blue)
             .Record(0x001E, {})
             .Brush(0, Green)
             .Record(0x0127, {1})
             .Rectangle(0, 0, 2, 1),
         "RR"},
        {"restoring what was never saved",
         WmfBuilder(1, 1).Fill(Red).Record(0x0127, {-5}).Rectangle(0, 0, 1, 1), "R"},
    });
}

TEST(WmfPlayer, Clips) {
    const auto filled = [](WmfBuilder wmf) { return wmf.Fill(Red).Rectangle(0, 0, 4, 1); };
    ExpectPictures({
        {"to a box", filled(WmfBuilder(4, 1).Record(0x0416, {1, 3, 0, 1})), "WRRW"},
        {"to a region", Region(1).Record(0x012C, {2}).Rectangle(0, 0, 5, 3), "WWWWW WRRRW WWWWW"},
        {"to a selected region", Region(1).Record(0x012D, {2}).Rectangle(0, 0, 5, 3), "WWWWW WRRRW WWWWW"},
        {"no longer", filled(WmfBuilder(4, 1).Record(0x0416, {1, 3, 0, 1}).Record(0x012C, {0})), "RRRR"},
        {"around a box", filled(WmfBuilder(4, 1).Record(0x0415, {1, 3, 0, 1})), "RWWR"},
        {"to a box that moves", filled(WmfBuilder(4, 1).Record(0x0416, {1, 2, 0, 1}).Record(0x0220, {0, 1})),
         "WWRW"},
        {"until the state returns",
         filled(WmfBuilder(4, 1).Record(0x001E, {}).Record(0x0416, {1, 3, 0, 1}).Record(0x0127, {-1})),
         "RRRR"},
        {"to a bitmap's part as well",
         WmfBuilder(2, 1)
             .Record(0x0416, {1, 1, 0, 0})
             .Record(0x0F43, {0x86, 0x11, 0, 1, 2, 0, 0, 1, 2, 0, 0}, Dib("KK")),
         "KW"},
    });
}

TEST(WmfPlayer, PlacesText) {
    const auto written = [](WmfBuilder wmf, int align, std::string_view text, int x, int y) {
        ByteWriter font;
        font.U16Le(static_cast<std::uint16_t>(-20)).Zeros(6).U16Le(400).Zeros(8).Text("Arial").Zeros(1);
        wmf.Record(0x02FB, {}, font.Written()).Record(0x012D, {0}).Record(0x012E, {align});
        ByteWriter call;
        call.U16Le(static_cast<std::uint32_t>(text.size())).Text(text).Zeros(text.size() % 2);
        call.U16Le(static_cast<std::uint32_t>(y)).U16Le(static_cast<std::uint32_t>(x));
        return Must(DecodeWmf(wmf.Record(0x0521, {}, call.Written()).File(), {}));
    };
    struct Place {
        const char* name;
        int align;
        bool leftOfPoint, rightOfPoint, aboveBase, belowTop;
    };
    for (const Place& place : {Place{"left, base line", 24, false, true, true, false},
                               Place{"right, base line", 26, true, false, true, false},
                               Place{"centre, base line", 30, true, true, true, false},
                               Place{"left, top", 0, false, true, false, true},
                               Place{"left, bottom", 8, false, true, true, false}}) {
        SCOPED_TRACE(place.name);
        const Ink ink = InkOf(written(WmfBuilder(100, 60).Record(0x0102, {1}), place.align, "HHH", 50, 30));
        ASSERT_GE(ink.right, 0) << "nothing was written";
        EXPECT_EQ(ink.left < 49, place.leftOfPoint);
        EXPECT_EQ(ink.right > 51, place.rightOfPoint);
        EXPECT_EQ(ink.bottom < 31, place.aboveBase);
        EXPECT_EQ(ink.top >= 30, place.belowTop);
    }
    // On an opaque ground the whole cell is painted, the line's height tall.
    const Picture cell = written(WmfBuilder(100, 60).Record(0x0201, {0xFF, 0}), 0, " ", 10, 10);
    EXPECT_EQ(Sketch(cell)[10 * 101 + 11], 'R');
    EXPECT_EQ(Sketch(cell)[9 * 101 + 11], 'W');
}

TEST(WmfPlayer, FillsTheBoxBehindTextAndTakesAdvances) {
    ExpectPictures({
        {"a box without text",
         WmfBuilder(4, 2).Record(0x0201, {0xFF, 0}).Record(0x0A32, {0, 0, 0, 2, 1, 0, 3, 2}), "WRRW WRRW"},
    });
    ByteWriter call;
    call.U16Le(1).U16Le(0).U16Le(2).U16Le(0).Text("  ").U16Le(5).U16Le(6);
    const std::string ground =
        Played(WmfBuilder(16, 30).Record(0x0201, {0xFF, 0}).Record(0x0A32, {}, call.Written()));
    EXPECT_EQ(ground.substr(10 * 17, 16), "RRRRRRRRRRRWWWWW");
}

TEST(WmfPlayer, SpreadsAndUnderlinesText) {
    // The extent of two blanks, by their ground or by the lines through them.
    const auto written = [](std::initializer_list<int> spread, std::uint16_t function, int lines) {
        WmfBuilder wmf = WmfBuilder(60, 40).Record(0x02FB, {-20, 0, 0, 0, 400, 256 * lines, lines, 0, 0});
        wmf.Record(0x012D, {0}).Record(0x0201, {0, 0}).Record(function, spread).Record(0x012E, {24});
        return InkOf(Must(DecodeWmf(wmf.Record(0x0521, {2, 0x2020, 20, 5}).File(), {})));
    };
    const int plain = written({0}, 0x0108, 0).Width();
    EXPECT_GT(plain, 5);
    EXPECT_EQ(written({7}, 0x0108, 0).Width(), plain + 14) << "after each character";
    EXPECT_EQ(written({2, 9}, 0x020A, 0).Width(), plain + 9) << "shared among the blanks";
    const Ink lines = written({1}, 0x0102, 1);
    EXPECT_NEAR(lines.Width(), plain, 1);
    EXPECT_LT(lines.top, 18) << "through the blanks";
    EXPECT_GE(lines.bottom, 20) << "under the base line";
}

TEST(WmfPlayer, DrawsWhatABrokenFileStillHolds) {
    const WmfBuilder drawing = WmfBuilder(2, 1).Fill(Red).Rectangle(0, 0, 1, 1);
    const auto played = [](const ByteVector& file) { return Sketch(Must(DecodeWmf(file, {}))); };
    EXPECT_EQ(played(drawing.File(false)), "RW") << "no end record";
    EXPECT_EQ(played(Concatenate({drawing.File(false), Hex("02000000 1B04")})), "RW") << "a record too small";
    EXPECT_EQ(played(Concatenate({drawing.File(false), Hex("FFFFFF7F 2403 FF7F 0000")})), "RW")
        << "one too large";
    EXPECT_FALSE(DecodeWmf(Slice(drawing.File(), 0, 40), {})) << "no records";
    EXPECT_FALSE(DecodeWmf(WmfBuilder::WithoutPlacement().File(), {})) << "nothing drawn, nothing to measure";
}

TEST(WmfPlayer, PrefersAnEnhancedVersionInItsComments) {
    const ByteVector enhanced = EmfBuilder(2, 1).Fill(Blue).Rectangle(1, 0, 2, 1).File();
    const auto pieces = [&](std::size_t missing) {
        WmfBuilder wmf = WmfBuilder(2, 1).Fill(Red).Rectangle(0, 0, 1, 1);
        const std::size_t half = enhanced.size() / 2;
        for (const Bytes piece :
             {Slice(enhanced, 0, half), Slice(enhanced, half, enhanced.size() - half - missing)}) {
            ByteWriter data;
            data.U16Le(15)
                .U16Le(static_cast<std::uint32_t>(34 + piece.size()))
                .Text("WMFC")
                .U32Le(1)
                .U32Le(0x10000);
            data.U16Le(0).U32Le(0).U32Le(2).U32Le(static_cast<std::uint32_t>(piece.size())).U32Le(0);
            data.U32Le(static_cast<std::uint32_t>(enhanced.size())).Append(piece);
            wmf.Record(0x0626, {}, data.Written());
        }
        return Played(wmf);
    };
    EXPECT_EQ(pieces(0), "WB");
    EXPECT_EQ(pieces(4), "RW") << "a version that lacks a piece is none";
}

}  // namespace
}  // namespace tessara
