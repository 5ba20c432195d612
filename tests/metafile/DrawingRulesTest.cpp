#include <gtest/gtest.h>

#include <bit>
#include <functional>

#include "core/rastx/codecs/Emf.h"
#include "core/rastx/codecs/Wmf.h"
#include "tests/metafile/RecordBuilder.h"

namespace tessara {
namespace {

using namespace test;

Picture Played(const EmfBuilder& emf) {
    return Must(DecodeEmf(emf.File(), {}));
}

TEST(RasterOperations, AllOf256FollowTheFormula) {
    // Eight pixels hold every combination of pattern, source and destination in each channel.
    const char* destination = "KWKWKWKW";
    const char* source = "KKWWKKWW";
    const char* pattern = "KKKKWWWW";
    for (int index = 0; index < 256; ++index) {
        WmfBuilder wmf(8, 1);
        wmf.Record(0x0142, {5, 0}, Dib(pattern)).Record(0x012D, {0});
        wmf.Record(0x0F43, {0x20, 0xCC, 0, 1, 8, 0, 0, 1, 8, 0, 0}, Dib(destination));
        wmf.Record(0x0F43, {0, index, 0, 1, 8, 0, 0, 1, 8, 0, 0}, Dib(source));
        std::string expected;
        for (int bit = 0; bit < 8; ++bit) expected += ((index >> bit) & 1) != 0 ? 'W' : 'K';
        EXPECT_EQ(Sketch(Must(DecodeWmf(wmf.File(), {}))), expected) << index;
    }
}

TEST(Pens, TakeTheirStyle) {
    struct Case {
        const char* name;
        EmfBuilder emf;
        const char* expected;
    };
    const int across = 0, red = static_cast<int>(Red);
    const auto line = [&](EmfBuilder emf, int y) { return emf.Record(27, {across, y}).Record(54, {8, y}); };
    const auto thin = [&](int style) {
        return EmfBuilder(24, 1).Record(18, {1}).Pen(style, 0, Red).Record(27, {0, 0}).Record(54, {24, 0});
    };
    const auto extended = [&](int width, int height, int style, int penWidth,
                              std::initializer_list<int> dashes) {
        EmfBuilder emf(width, height);
        ByteWriter rest;
        for (const int number : {1, 0, 0, 0, 0, style, penWidth, 0, red, 0, static_cast<int>(dashes.size())})
            rest.I32Le(number);
        for (const int dash : dashes) rest.I32Le(dash);
        return emf.Record(95, {}, rest.Written()).Record(37, {1});
    };
    for (const Case& row : {
             Case{"dots on an opaque ground",
                  line(EmfBuilder(8, 1).Pen(2, 0, Red).Record(25, {255 << 16}), 0), "RRRBBBRR"},
             Case{"dots that let through", line(EmfBuilder(8, 1).Record(18, {1}).Pen(2, 0, Red), 0),
                  "RRRWWWRR"},
             Case{"a dash and a dot", thin(3), "RRRRRRRRRWWWWWWRRRWWWWWW"},
             Case{"a dash and two dots", thin(4), "RRRRRRRRRWWWRRRWWWRRRWWW"},
             Case{"none", line(EmfBuilder(8, 1).Pen(5, 0, Red), 0), "WWWWWWWW"},
             Case{"dashes of the user", line(extended(8, 1, 7, 1, {2, 1}), 0), "RRWRRWRR"},
             Case{"wide dashes of the user", line(extended(8, 2, 0x10207, 2, {4, 2}), 1),
                  "RRRRWWRR RRRRWWRR"},
             Case{"a wide plain pen has no dashes",
                  EmfBuilder(8, 3).Pen(1, 3, Red).Bounded(87, {2}, Points({-9, 1, 20, 1})),
                  "RRRRRRRR RRRRRRRR RRRRRRRR"},
             Case{"inside of a frame, with round corners",
                  EmfBuilder(6, 5).Pen(6, 2, Red).Rectangle(0, 0, 6, 5),
                  "?RRRR? RRRRRR RRWWRR RRRRRR ?RRRR?"},
             Case{"a mitred corner",
                  extended(4, 4, 0x12200, 2, {}).Bounded(87, {3}, Points({1, 9, 1, 1, 9, 1})),
                  "RRRR RRRR RRWW RRWW"},
             Case{"a bevelled corner keeps short",
                  extended(4, 4, 0x11200, 2, {}).Bounded(87, {3}, Points({1, 9, 1, 1, 9, 1})),
                  "?RRR RRRR RRWW RRWW"},
         }) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Sketch(Played(row.emf)), row.expected);
    }
}

TEST(Pens, MitreNoSharperThanTheLimit) {
    // Two lines that meet at a twentieth of a right angle or so: the tip would lie twenty pixels off.
    const auto tip = [](std::initializer_list<int> limit) {
        EmfBuilder emf(40, 9);
        emf.Record(95, {1, 0, 0, 0, 0, 0x12200, 2, 0, 0, 0, 0}).Record(37, {1}).Record(58, limit);
        return InkOf(Played(emf.Bounded(87, {3}, Points({0, 4, 10, 4, 0, 5})))).right;
    };
    EXPECT_LE(tip({10}), 11);
    EXPECT_GE(tip({30}), 22);
}

/// A font of 20 units, selected; angle in tenths of a degree.
EmfBuilder& Font(EmfBuilder& emf, int slot, std::string_view face, int angle = 0, int width = 0,
                 int height = -20) {
    ByteWriter font;
    for (const int number : {slot, height, width, angle, angle, 400}) font.I32Le(number);
    font.Zeros(8);
    for (const char c : face) font.U16Le(static_cast<std::uint8_t>(c));
    font.Zeros(64 - 2 * face.size());
    return emf.Record(82, {}, font.Written()).Record(37, {slot}).Record(18, {1});
}

/// Text at a point; advances are given for each character, none by the font.
EmfBuilder& Text(EmfBuilder& emf, std::u16string_view text, int x, int y,
                 std::initializer_list<int> advances = {}, int options = 0) {
    const auto count = static_cast<int>(text.size());
    const int padded = (2 * count + 3) / 4 * 4;
    ByteWriter call;
    for (const int number :
         {1, 0, 0, x, y, count, 76, options, 0, 0, 0, 0, advances.size() > 0 ? 76 + padded : 0})
        call.I32Le(number);
    for (const char16_t unit : text) call.U16Le(unit);
    call.Zeros(static_cast<std::size_t>(padded - 2 * count));
    for (const int advance : advances) call.I32Le(advance);
    return emf.Bounded(84, {}, call.Written());
}

TEST(Text, TurnsStretchesAndAdvances) {
    constexpr int kBaseLine = 24;
    const auto inkOf = [&](const std::function<void(EmfBuilder&)>& write) {
        EmfBuilder emf(200, 200);
        emf.Record(22, {kBaseLine});
        write(emf);
        return InkOf(Played(emf));
    };
    const Ink plain = inkOf([](EmfBuilder& emf) { Text(Font(emf, 1, "Arial"), u"III", 100, 100); });
    ASSERT_GE(plain.right, 0) << "nothing was written";
    EXPECT_NEAR(plain.Height(), 14, 3) << "capitals of a font of 20 units";

    const Ink upwards = inkOf([](EmfBuilder& emf) { Text(Font(emf, 1, "Arial", 900), u"III", 100, 100); });
    EXPECT_NEAR(upwards.Width(), plain.Height(), 1);
    EXPECT_NEAR(upwards.Height(), plain.Width(), 1);
    EXPECT_LE(upwards.bottom, 100);
    EXPECT_LE(upwards.right, 100);

    const Ink spread = inkOf([](EmfBuilder& emf) {
        Text(Font(emf, 1, "Arial"), u"III", 100, 100, {30, 30, 30});
    });
    EXPECT_NEAR(spread.Width(), 60 + (plain.Width() - 1) / 3, 4);

    const Ink line = inkOf([](EmfBuilder& emf) { Text(Font(emf, 1, "Arial", 0, 0, 20), u"I", 100, 100); });
    EXPECT_LT(line.Height(), plain.Height()) << "a height of lines makes smaller characters";

    const Ink wide = inkOf([](EmfBuilder& emf) { Text(Font(emf, 1, "Arial", 0, 40), u"III", 100, 100); });
    EXPECT_GT(wide.Width(), 2 * plain.Width());
    EXPECT_EQ(wide.Height(), plain.Height());

    const Ink upward = inkOf([](EmfBuilder& emf) {
        emf.Record(17, {8}).Record(9, {200, -200}).Record(11, {200, 200}).Record(12, {0, 200});
        Text(Font(emf, 1, "Arial"), u"L", 100, 100);
    });
    EXPECT_LE(upward.bottom, 100) << "text stands upright where the axis runs upwards";
}

TEST(Text, OfAFixedPitchFaceIsAsWideWhateverItSays) {
    EmfBuilder narrow(200, 40), wide(200, 40);
    const Ink ofNarrow = InkOf(Played(Text(Font(narrow, 1, "Courier New"), u"iiiiI", 10, 10)));
    EXPECT_GT(ofNarrow.right, 40);
    EXPECT_EQ(ofNarrow.right, InkOf(Played(Text(Font(wide, 1, "Courier New"), u"WWWWI", 10, 10))).right);
}

TEST(Text, GoesOnFromTheCurrentPosition) {
    EmfBuilder emf(200, 40);
    emf.Record(22, {1 | 24}).Record(27, {20, 30});
    Text(Font(emf, 1, "Arial"), u"I", 0, 0, {50});
    Text(emf, u"I", 0, 0, {50});
    const Ink ink = InkOf(Played(emf));
    EXPECT_NEAR(ink.left, 22, 3);
    EXPECT_NEAR(ink.right, 73, 4);
}

TEST(Text, ReadsEveryFormOfRecord) {
    const auto expectInk = [](const char* name, EmfBuilder emf) {
        const Ink ink = InkOf(Played(emf.Record(22, {24})));
        EXPECT_GE(ink.left, 10) << name;
        EXPECT_LE(ink.right, 40) << name;
        EXPECT_LE(ink.bottom, 30) << name;
        EXPECT_GE(ink.right, ink.left) << name << " wrote nothing";
    };
    EmfBuilder small(60, 40), narrow(60, 40), several(60, 40), glyphs(60, 40), shaped(60, 40), symbol(60, 40);
    expectInk("small text of bytes",
              Font(small.Record(22, {24}), 1, "Arial").Record(108, {10, 30, 2, 0x300, 1, 0, 0}, Hex("4848")));
    ByteWriter call;
    for (const int number : {1, 0, 0, 10, 30, 2, 76, 0x100, 0, 0, 0, 0, 0}) call.I32Le(number);
    expectInk("bytes", Font(narrow.Record(22, {24}), 1, "Arial").Bounded(83, {}, call.Text("HH").Written()));
    ByteWriter calls;
    for (const int number : {1, 0, 0, 1, 10, 30, 2, 80, 0x100, 0, 0, 0, 0, 0}) calls.I32Le(number);
    calls.U16Le('H').U16Le('H');
    expectInk("several texts", Font(several.Record(22, {24}), 1, "Arial").Bounded(97, {}, calls.Written()));
    expectInk("glyphs of a common font",
              Text(Font(glyphs.Record(22, {24}), 1, "Arial"), u"++", 10, 30, {}, 0x10));
    expectInk("a script that is shaped",
              Text(Font(shaped.Record(22, {24}), 1, "Arial"), u"\u05D0\u05D1", 10, 30, {12, 12}));
    expectInk("a symbol", Text(Font(symbol.Record(22, {24}), 1, "Symbol"), u"\uF0B4", 10, 30));
}

TEST(Text, OfOneCodePageIsThatOfAnother) {
    // The same two characters by their bytes in three character sets and once in Unicode.
    struct Case {
        const char* name;
        int charset;
        const char* bytes;
        std::u16string_view text;
    };
    for (const Case& row :
         {Case{"Greek", 161, "D9EB", u"\u03A9\u03BB"}, Case{"Cyrillic", 204, "C6F8", u"\u0416\u0448"},
          Case{"OEM", 255, "818E", u"\u00FC\u00C4"}, Case{"Western", 0, "8041", u"\u20ACA"},
          Case{"Chinese", 134, "B7D6C4EA", u"\u5206\u5E74"}}) {
        SCOPED_TRACE(row.name);
        const ByteVector bytes = Hex(row.bytes);
        ByteWriter font;
        font.U16Le(static_cast<std::uint16_t>(-20)).Zeros(6).U16Le(400).Zeros(3);
        font.U8(static_cast<std::uint32_t>(row.charset)).Zeros(4).Text("Arial").Zeros(1);
        ByteWriter call;
        call.U16Le(static_cast<std::uint32_t>(bytes.size())).Append(bytes).U16Le(5).U16Le(5);
        const Picture byBytes = Must(DecodeWmf(WmfBuilder(60, 40)
                                                   .Record(0x0102, {1})
                                                   .Record(0x02FB, {}, font.Written())
                                                   .Record(0x012D, {0})
                                                   .Record(0x0521, {}, call.Written())
                                                   .File(),
                                               {}));
        EmfBuilder emf(60, 40);
        const Picture byUnicode = Played(Text(Font(emf, 1, "Arial"), row.text, 5, 5));
        EXPECT_GE(InkOf(byBytes).right, 5);
        EXPECT_EQ(LargestDifference(byBytes, byUnicode), 0);
    }
}

TEST(Work, IsLimitedWithoutLosingWhatWasDrawn) {
    // A few kilobytes that order the whole of a large picture to be inverted again and again.
    EmfBuilder emf(4000, 4000);
    emf.Fill(Red).Rectangle(0, 0, 10, 10).Record(20, {6});
    for (int i = 0; i < 2000; ++i) emf.Rectangle(0, 20, 4000, 4000);
    EXPECT_EQ(Played(emf).At(5, 5), (Pixel{0, 0, 255, 255}));
}

}  // namespace
}  // namespace tessara
