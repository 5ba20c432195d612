#include "core/rastx/codecs/UtahRle.h"

#include <string>

#include "tests/Support.h"

namespace tessara {
namespace {

using test::Hex;
using test::Must;
using test::Sketch;

/// A header of 2 by 2 pixels; `rest` begins with the background or its filler.
Result<Picture> Decode(std::string_view flagsAndChannels, std::string_view rest) {
    return DecodeUtahRle(
        test::Concatenate({Hex("52cc 0500 0700 0200 0200"), Hex(flagsAndChannels), Hex(rest)}), {});
}

TEST(UtahRle, DecodesOpcodesFromTheBottomRowUp) {
    const struct {
        const char* name;
        const char* head;  // flags, channels, bits, channels and log2 length of the map
        const char* rest;
        const char* expected;
    } cases[] = {
        {"literals, runs, skips", "02 03 08 00 08",
         "00  0200 0501 ff00  0202 0301 0600 ff00  0101  0201 0601 ff00  0700", "GG RB"},
        {"padded literals", "02 01 08 00 08", "00  0200 0500 ff00 0501 ffff 0101 0500 ff00 0700", "WK WW"},
        {"long forms", "02 01 08 00 08", "00  0200 4600 0100 ff99 4100 0100 0200 4300 0100 0600 ff00 0700",
         "KW WW"},
        {"background", "01 03 08 00 08", "0000ff  0200 0600 ff00 0200 0101 0700", "BB MB"},
        {"background of an even number of channels", "01 02 08 00 08", "ff00 00  0200 0600 0000 0700",
         "WW KW"},
        {"no clearing: what was not written is black", "00 01 08 00 08", "ff  0200 0600 ff00 0700", "KK WK"},
        {"comments", "0a 01 08 00 08", "00  0300 613d31 00  0200 0601 ff00 0700", "KK WW"},
        {"one channel through three maps", "02 01 08 03 01",
         "00  0000 00ff 0000 0000 00ff 0000  0200 0600 0100 0101 0601 0000 0700", "BB RB"},
        {"three channels through one map", "02 03 08 01 01",
         "00  00ff 0000  0200 0501 0001 0201 0501 0101 0202 0501 0101 0101 0700", "WW RK"},
        {"pixels behind the edge are dropped", "02 01 08 00 08", "00  0200 0605 ff00 0502 ffffff00 0102 0700",
         "KK WW"},
        {"an unknown channel is passed over", "02 01 08 00 08", "00  0207 0601 ff00 0200 0600 ff00 0700",
         "KK WK"},
        {"last opcode missing", "02 01 08 00 08", "00  0200 0601 ff00 0101 0601 ff00", "WW WW"},
        {"cut in the second row", "02 01 08 00 08", "00  0200 0600 ff00 0101 0601 ff", "WW WK"},
        {"cut by an unknown opcode", "02 01 08 00 08", "00  0200 0101 0900 0700", "WW KK"},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = Decode(row.head, row.rest);
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        EXPECT_EQ(Sketch(picture.Value()), row.expected) << row.name;
    }
}

TEST(UtahRle, TellsMultipliedColorsFromStraightOnes) {
    const struct {
        const char* name;
        const char* samples;  // of grey and alpha in the lower row
        Pixel first, second;
    } cases[] = {
        {"none exceeds its alpha: multiplied",
         "0200 0501 40ff 02ff 0501 80ff 0700",
         {128, 128, 128, 128},
         {255, 255, 255, 255}},
        {"one exceeds its alpha: straight",
         "0200 0501 40ff 02ff 0501 8010 0700",
         {64, 64, 64, 128},
         {255, 255, 255, 16}},
        {"alpha empty: dropped", "0200 0501 40ff 0700", {64, 64, 64, 255}, {255, 255, 255, 255}},
    };
    for (const auto& row : cases) {
        const Picture picture = Must(Decode("06 01 08 00 08", std::string("00") + row.samples));
        EXPECT_EQ(picture.At(0, 1), row.first) << row.name;
        EXPECT_EQ(picture.At(1, 1), row.second) << row.name;
        EXPECT_EQ(picture.At(0, 0).a, row.second.a == 255 && row.first.a == 255 ? 255 : 0) << row.name;
    }
}

TEST(UtahRle, RefusesWhatHoldsNoPicture) {
    const struct {
        const char* name;
        ByteVector file;
    } cases[] = {
        {"older kind", Hex("52cd 0000 0000 0100 0100 02 01 08 00 08 00 0200 0600 ff00 0700")},
        {"only a map", Hex("52cc 0000 0000 0100 0100 02 00 08 01 01 00 00ff 0000 0700")},
        {"4 bits", Hex("52cc 0000 0000 0100 0100 02 01 04 00 08 00 0200 0600 ff00 0700")},
        {"no height", Hex("52cc 0000 0000 0100 0000 02 01 08 00 08 00 0200 0600 ff00 0700")},
        {"map cut", Hex("52cc 0000 0000 0100 0100 02 01 08 03 08 00 00ff")},
        {"no row whole", Hex("52cc 0000 0000 0200 0200 02 01 08 00 08 00 0200 0600 ff")},
        {"2 GB claimed, next to nothing present", Hex("52cc 0000 0000 0050 0050 02 01 08 00 08 00 0700")},
    };
    for (const auto& row : cases) EXPECT_FALSE(DecodeUtahRle(row.file, {})) << row.name;
}

}  // namespace
}  // namespace tessara
