#include "core/rastx/codecs/Tga.h"

#include "tests/Support.h"

namespace tessara {
namespace {

using test::Concatenate;
using test::Draw;
using test::Encode;
using test::Hex;
using test::Must;

/// The end of the footer, behind the place of the extension area.
constexpr const char* kFooterEnd = "00000000 54525545564953494f4e2d5846494c452e00";

TEST(Tga, ReadsEachKindOfPixels) {
    struct Case {
        const char* name;
        const char* file;
        const char* picture;
    };
    // Kind, map and its size, origin, 2 x 2, bits, descriptor; rows from the bottom where bit 5 is clear.
    const Case cases[] = {
        {"24 bits", "0000 02 0000000000 00000000 02000200 18 00  ff0000 00ff00 0000ff ffffff", "RW BG"},
        {"24 bits from the top", "0000 02 0000000000 00000000 02000200 18 20  ff0000 00ff00 0000ff ffffff",
         "BG RW"},
        {"24 bits from the right", "0000 02 0000000000 00000000 02000200 18 10  ff0000 00ff00 0000ff ffffff",
         "WR GB"},
        {"top right", "0000 02 0000000000 00000000 02000200 18 30  ff0000 00ff00 0000ff ffffff", "GB WR"},
        {"identification", "0200 02 0000000000 00000000 02000200 18 00 aabb ff0000 00ff00 0000ff ffffff",
         "RW BG"},
        {"map without use", "0001 02 0000010018 00000000 02000200 18 00 0a0a0a ff0000 00ff00 0000ff ffffff",
         "RW BG"},
        {"15 bits, top bit set", "0000 02 0000000000 00000000 02000200 0f 00  1f80 e083 007c ffff", "RW BG"},
        {"16 bits", "0000 02 0000000000 00000000 02000200 10 00  1f00 e003 007c ff7f", "RW BG"},
        {"16 bits with attribute", "0000 02 0000000000 00000000 02000200 10 01  1f80 e083 007c ff7f",
         ".. BG"},
        {"16 bits, attributes empty", "0000 02 0000000000 00000000 02000200 10 01  1f00 e003 007c ff7f",
         "RW BG"},
        {"32 bits", "0000 02 0000000000 00000000 02000200 20 08  ff0000ff 00ff0000 0000ffff ffffff00",
         "R. B."},
        {"32 bits, alpha empty",
         "0000 02 0000000000 00000000 02000200 20 08  ff000000 00ff0000 0000ff00 ffffff00", "RW BG"},
        {"32 bits, alpha not announced",
         "0000 02 0000000000 00000000 02000200 20 00  ff0000ff 00ff0000 0000ffff ffffff00", "R. B."},
        {"grey", "0000 03 0000000000 00000000 02000200 08 00  00 1c 38 ff", "2W K1"},
        {"grey with alpha", "0000 03 0000000000 00000000 02000200 10 08  00ff 1c00 38ff ffff", "2W K."},
        {"map with an offset", "0001 01 0500020018 00000000 02000200 08 00 ff0000 0000ff  05 06 04 07",
         "KK BR"},
        {"map of words", "0001 01 0000020010 00000000 02000200 08 00 1f00 ff7f  00 01 01 00", "WB BW"},
        {"map of 32 bits", "0001 01 0000020020 00000000 02000200 08 08 ff000000 ffffffff  00 01 01 00",
         "W. .W"},
        {"wide indexes", "0001 01 0001020018 00000000 02000200 10 00 ff0000 0000ff  0001 0101 ffff 0001",
         "KB BR"},
        {"run across rows", "0000 0a 0000000000 00000000 02000200 18 00  82 0000ff 00 ffffff", "RW RR"},
        {"literals across rows", "0000 0b 0000000000 00000000 02000200 08 00  02 00 1c 38 80 ff", "2W K1"},
        {"run of words", "0000 0a 0000000000 00000000 02000200 10 00  81 1f00 01 007c ff7f", "RW BB"},
        {"run of map indexes", "0001 09 0000020018 00000000 02000200 08 00 ff0000 0000ff  82 01 00 00",
         "RB RR"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const ByteVector file = Hex(row.file);
        EXPECT_TRUE(RecogniseTga(file));
        EXPECT_EQ(test::Sketch(Must(DecodeTga(file, {}))), row.picture);
    }
}

TEST(Tga, TheExtensionAreaSaysWhatAlphaMeans) {
    struct Case {
        const char* name;
        int alphaBits, attributes;
        Pixel expected;
    };
    const Case cases[] = {
        {"no alpha, none announced", 0, 0, {40, 40, 40, 255}},
        {"no alpha against the header", 8, 0, {40, 40, 40, 128}},
        {"undefined", 8, 1, {40, 40, 40, 255}},
        {"undefined but kept", 8, 2, {40, 40, 40, 255}},
        {"straight", 0, 3, {40, 40, 40, 128}},
        {"premultiplied", 8, 4, {80, 80, 80, 128}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const auto alphaBits = static_cast<std::uint8_t>(row.alphaBits);
        const auto attributes = static_cast<std::uint8_t>(row.attributes);
        const ByteVector file = Concatenate({Hex("0000 02 0000000000 00000000 01000100 20"),
                                             {alphaBits},
                                             Hex("28282880 ef01"),
                                             ByteVector(492),
                                             {attributes},
                                             Hex("16000000"),
                                             Hex(kFooterEnd)});
        EXPECT_EQ(Must(DecodeTga(file, {})).At(0, 0), row.expected);
    }
}

TEST(Tga, ADamagedFileShowsWhatItHolds) {
    struct Case {
        const char* name;
        const char* file;
        const char* picture;  ///< empty where there is nothing to show
    };
    const Case cases[] = {
        {"a row and a half", "0000 02 0000000000 00000000 02000200 18 00  ff0000 00ff00 0000ff ff", "RW BG"},
        {"half a row from the right", "0000 02 0000000000 00000000 02000200 18 30  ff0000 00", "WB WW"},
        {"with alpha", "0000 02 0000000000 00000000 02000200 20 28  ff000080 ff0000ff", "?B .."},
        {"run without its pixel", "0000 0b 0000000000 00000000 02000200 08 20  01 0038 85", "K2 WW"},
        {"literals cut short", "0000 0a 0000000000 00000000 02000200 18 20  03 ff0000 00ff", "BW WW"},
        {"no pixel", "0000 0a 0000000000 00000000 02000200 18 20  80 ff00", ""},
        {"map cut short", "0001 01 0000000118 00000000 02000200 08 00  00 01 01 00", ""},
        {"map without entries", "0001 01 0000000018 00000000 02000200 08 00  00 01 01 00", ""},
        {"17 bits", "0000 02 0000000000 00000000 02000200 11 00  00 01 01 00", ""},
        {"no width", "0000 02 0000000000 00000000 00000200 18 00  00 01 01 00", ""},
        {"Huffman codes", "0001 20 0000020018 00000000 02000200 08 00 ff0000 0000ff  00 01 01 00", ""},
        {"gigabytes from nothing", "0000 0a 0000000000 00000000 ff7fff3f 20 08  ff 00000000 ff 00000000", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const auto picture = DecodeTga(Hex(row.file), {});
        EXPECT_EQ(picture ? test::Sketch(picture.Value()) : "", row.picture);
    }
}

TEST(Tga, IsNotTakenForOtherFiles) {
    const std::pair<const char*, const char*> cases[] = {
        {"icon", "00000100 0100 1010 0000 0100 2000 68050000 16000000 28000000 10000000"},
        {"cursor", "00000200 0100 2020 0000 0000 0000 e8020000 16000000 28000000 20000000"},
        {"wireless bitmap", "0000 0302 ffffff 000000 ffffff 000000 ffffff"},
        {"zeros", "00000000 00000000 00000000 00000000 00000000 00000000"},
        {"too short for its size", "0000 02 0000000000 00000000 02000200 18 00 ff0000 00ff00 0000ff"},
        {"interleaved", "0000 02 0000000000 00000000 01000100 18 80 ff0000"},
        {"five alpha bits of 16", "0000 02 0000000000 00000000 01000100 10 05 ff00"},
    };
    for (const auto& [name, file] : cases) EXPECT_FALSE(RecogniseTga(Hex(file))) << name;
}

TEST(Tga, WritesTheSmallestKindThatHoldsThePicture) {
    struct Case {
        const char* name;
        Picture picture;
        const char* file;
    };
    const Case cases[] = {
        {"grey", Draw("KKKW 1122"), "0000 0b 0000000000 00000000 04000200 08 20  82 00 00 ff  03 1c1c3838"},
        {"color", Draw("RRBW GBBB"),
         "0000 0a 0000000000 00000000 04000200 18 20  81 0000ff 01 ff0000 ffffff  00 00ff00 82 ff0000"},
        {"long run", Must(Picture::Create(130, 1, kBlack, Alpha::None)),
         "0000 0b 0000000000 00000000 82000100 08 20  ff 00 01 0000"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Encode(EncodeTga, row.picture),
                  Concatenate({Hex(row.file), Hex("00000000"), Hex(kFooterEnd)}));
    }
}

TEST(Tga, WhatIsWrittenIsReadBack) {
    const Picture pictures[] = {test::PhotoLike(301, 7), test::PhotoLikeWithAlpha(301, 7), Draw(".. ..")};
    for (const Picture& picture : pictures) {
        const ByteVector file = Encode(EncodeTga, picture);
        EXPECT_TRUE(RecogniseTga(file));
        EXPECT_EQ(test::LargestDifference(Must(DecodeTga(file, {})), picture), 0);
    }
}

}  // namespace
}  // namespace tessara
