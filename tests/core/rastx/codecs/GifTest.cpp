#include "core/rastx/codecs/Gif.h"

#include <cmath>

#include "core/ByteSink.h"
#include "core/rastx/Quantizer.h"
#include "tests/Support.h"

namespace tessara::test {
namespace {

std::string SketchOf(const ByteVector& file) {
    return Sketch(Must(DecodeGif(file, {})));
}

/// Codes from one clear code on, each in the size that it has when it is read, as sub-blocks. Codes are those
/// of a minimum code size of 2: 0 to 3 are indexes, 4 clears, 5 ends.
ByteVector Lzw(const std::vector<unsigned>& codes) {
    ByteVector packed, blocks;
    std::uint64_t bits = 0;
    unsigned count = 0, size = 3, entries = 0;
    for (const unsigned code : codes) {
        bits |= std::uint64_t{code} << count;
        for (count += size; count >= 8; count -= 8, bits >>= 8)
            packed.push_back(static_cast<std::uint8_t>(bits));
        // The first code after a clear adds nothing; the table begins at 6.
        entries = code == 4 ? 0 : entries + 1;
        size = 3;
        while (entries > 0 && size < 12 && 6 + entries - 1 >= 1u << size) ++size;
    }
    if (count > 0) packed.push_back(static_cast<std::uint8_t>(bits));
    for (std::size_t i = 0; i < packed.size(); i += 255) {
        const Bytes block = Slice(packed, i, 255);
        blocks.push_back(static_cast<std::uint8_t>(block.size()));
        blocks.insert(blocks.end(), block.begin(), block.end());
    }
    blocks.push_back(0);
    return Concatenate({{2}, blocks});
}

/// A file with a palette of black, white, red and green.
ByteVector File(std::string_view screenSize, std::initializer_list<ByteVector> blocks) {
    ByteVector file =
        Concatenate({Hex("47494638 3961"), Hex(screenSize), Hex("81 00 00  000000 FFFFFF FF0000 00FF00")});
    for (const ByteVector& block : blocks) file.insert(file.end(), block.begin(), block.end());
    return file;
}
ByteVector Image(std::string_view place, const std::vector<unsigned>& codes) {
    return Concatenate({Hex("2C"), Hex(place), Lzw(codes)});
}

TEST(GifReading, UnderstandsWhatFilesHold) {
    const ByteVector transparentRed = Hex("21 F9 04 01 0000 02 00");
    const ByteVector plain = Image("0000 0000 0200 0200 00", {4, 0, 1, 2, 3, 5});
    const ByteVector end = Hex("3B");
    const struct {
        const char* what;
        ByteVector file;
        const char* expected;
    } kCases[] = {
        {"one picture", File("0200 0200", {plain, end}), "KW RG"},
        {"its end is missing", File("0200 0200", {plain}), "KW RG"},
        {"a transparent colour", File("0200 0200", {transparentRed, plain, end}), "KW .G"},
        {"a transparent index behind the palette", File("0200 0200", {Hex("21 F9 04 01 0000 07 00"), plain}),
         "KW RG"},
        {"a comment, and bytes that mean nothing",
         File("0200 0200", {Hex("21 FE 02 2C 3B 00  00 77"), plain}), "KW RG"},
        {"a place inside of the screen", File("0400 0300", {Image("0100 0100 0200 0100 00", {4, 2, 3, 5})}),
         ".... .RG. ...."},
        {"a screen without a size", File("0000 0000", {plain}), "KW RG"},
        {"a screen that is too small", File("0100 0100", {Image("0100 0000 0100 0200 00", {4, 1, 0, 5})}),
         ".W .K"},
        {"a first picture without a size",
         File("0200 0200", {transparentRed, Image("0000 0000 0000 0000 00", {4, 5}), plain}), "KW RG"},
        {"several pictures", File("0200 0200", {plain, Image("0000 0000 0200 0200 00", {4, 1, 1, 1, 1, 5})}),
         "KW RG"},
        {"a palette of its own",
         File("0200 0100",
              {Concatenate({Hex("2C 0000 0000 0200 0100 80  0000FF FFFF00"), Lzw({4, 1, 0, 5})})}),
         "YB"},
        {"an index behind the palette",
         File("0300 0100",
              {Concatenate({Hex("2C 0000 0000 0300 0100 80  0000FF FFFF00"), Lzw({4, 1, 3, 0, 5})})}),
         "YKB"},
        {"no palette at all",
         Concatenate(
             {Hex("47494638 3761 0200 0100 00 00 00"), Image("0000 0000 0200 0100 00", {4, 3, 0, 5})}),
         "WK"},
        {"interlaced rows",
         File("0100 0900", {Image("0000 0000 0100 0900 40", {4, 1, 1, 2, 3, 3, 0, 0, 0, 0, 5})}),
         "W K G K R K G K W"},
        {"no clear code at the start, no end code",
         File("0200 0200", {Image("0000 0000 0200 0200 00", {0, 1, 2, 3})}), "KW RG"},
        {"strings that end with their own first index",
         File("0700 0100", {Image("0000 0000 0700 0100 00", {4, 1, 6, 7, 0, 5})}), "WWWWWWK"},
        {"a clear code in between",
         File("0600 0100", {Image("0000 0000 0600 0100 00", {4, 1, 6, 4, 2, 6, 0, 5})}), "WWWRRR"},
        {"more pixels than fit", File("0200 0100", {Image("0000 0000 0200 0100 00", {4, 1, 6, 7, 2, 5})}),
         "WW"},
    };
    for (const auto& [what, file, expected] : kCases) EXPECT_EQ(SketchOf(file), expected) << what;
}

TEST(GifReading, KeepsWhatWasReadOfADamagedPicture) {
    const ByteVector damaged = Image("0000 0000 0200 0300 00", {4, 1, 0, 2, 77, 3, 3});
    EXPECT_EQ(SketchOf(File("0200 0300", {damaged})), "WK RW WW");
    EXPECT_EQ(SketchOf(File("0200 0300", {Hex("21 F9 04 01 0000 03 00"), damaged})), "WK R. ..");
    const ByteVector whole = File("0200 0300", {Image("0000 0000 0200 0300 00", {4, 1, 0, 2, 2, 3, 3, 5})});
    EXPECT_EQ(Sketch(Must(DecodeGif(Slice(whole, 0, whole.size() - 3), {}))), "WK RR WW");
}

TEST(GifReading, UsesAFullTableUntilItIsCleared) {
    // 4091 indexes fill the table; code 6 is then still the string of the first two of them.
    std::vector<unsigned> codes{4};
    std::vector<unsigned> indexes;
    for (unsigned i = 0; i < 4091; ++i) indexes.push_back(i * i / 7 % 4);
    codes.insert(codes.end(), indexes.begin(), indexes.end());
    for (int i = 0; i < 5; ++i) {
        codes.push_back(6);
        indexes.insert(indexes.end(), {indexes[0], indexes[1]});
    }
    for (const unsigned code : {4u, 3u, 2u, 5u}) codes.push_back(code);
    indexes.insert(indexes.end(), {3, 2});

    const Picture picture = Must(DecodeGif(File("0710 0100", {Image("0000 0000 0710 0100 00", codes)}), {}));
    ASSERT_EQ(picture.PixelCount(), indexes.size());
    const Picture colors = Draw("KWRG");
    for (std::size_t i = 0; i < indexes.size(); ++i)
        ASSERT_EQ(picture.Pixels()[i], colors.Pixels()[indexes[i]]) << i;
}

TEST(GifReading, RefusesWhatHoldsNoPicture) {
    const struct {
        const char* what;
        ByteVector file;
    } kCases[] = {
        {"another signature", Hex("47494639 3961 0100 0100 00 00 00")},
        {"no picture before the end",
         File("0200 0200", {Hex("3B"), Image("0000 0000 0100 0100 00", {4, 1, 5})})},
        {"no codes", File("0200 0200", {Image("0000 0000 0200 0200 00", {})})},
        {"a string where the first index should be",
         File("0200 0200", {Image("0000 0000 0200 0200 00", {4, 6, 1})})},
        {"codes of no size", File("0200 0200", {Hex("2C 0000 0000 0200 0200 00  00 02 4401 00")})},
        {"codes that are too large", File("0200 0200", {Hex("2C 0000 0000 0200 0200 00  09 02 4401 00")})},
        {"a screen that the file cannot fill",
         File("FF3F FF3F", {Image("0000 0000 0200 0200 00", {4, 0, 1, 5})})},
    };
    for (const auto& [what, file] : kCases) EXPECT_FALSE(DecodeGif(file, {}).Ok()) << what;
}

/// A picture of `count` colours in no order.
Picture Mixed(int width, int height, unsigned count) {
    Picture picture = Must(Picture::Create(width, height, Alpha::None));
    std::uint32_t state = 1;
    for (Pixel& pixel : picture.MutablePixels()) {
        state = state * 1664525 + 1013904223;
        const unsigned color = state / 65536 % count;
        pixel = {static_cast<std::uint8_t>(color), static_cast<std::uint8_t>(color / 2 * 3), 40, 255};
    }
    return picture;
}

TEST(GifWriting, IsExactUpTo256Colours) {
    const struct {
        const char* what;
        Picture picture;
    } kCases[] = {
        {"a single pixel", Draw("R")},
        {"black and white", Draw("KWK WKK")},
        {"one colour, over many sub-blocks", Mixed(3000, 400, 1)},
        {"3 colours", Mixed(61, 47, 3)},
        {"5 colours", Mixed(61, 47, 5)},
        {"256 colours, over many tables", Mixed(300, 200, 256)},
        {"the widest picture", Mixed(65535, 1, 200)},
        {"the highest picture", Mixed(1, 65535, 17)},
        {"transparent pixels", Draw("K.W R.. .GB")},
        {"nothing but transparent pixels", Draw(".. ..")},
    };
    for (const auto& [what, picture] : kCases) {
        const Picture read = Must(DecodeGif(Encode(EncodeGif, picture), {}));
        EXPECT_EQ(LargestDifference(read, picture), 0) << what;
    }
}

TEST(GifWriting, EveryLengthOfDataEndsWell) {
    // The end code comes where the size of codes changes, at sub-block edges, and right after a clear code.
    for (int width = 1; width <= 700; ++width) {
        const Picture picture = Mixed(width, 1, 4);
        ASSERT_EQ(LargestDifference(Must(DecodeGif(Encode(EncodeGif, picture), {})), picture), 0) << width;
    }
    for (int width = 3830; width <= 3860; ++width) {
        const Picture picture = Mixed(width, 1, 256);
        ASSERT_EQ(LargestDifference(Must(DecodeGif(Encode(EncodeGif, picture), {})), picture), 0) << width;
    }
}

TEST(GifWriting, MakesTheNamedColourTransparent) {
    EncodeOptions options{.transparent = true, .color = RGB(255, 0, 0)};
    EXPECT_EQ(SketchOf(Encode(EncodeGif, Draw("KRW RRG"), options)), "K.W ..G");
    options.color |= 0x7f000000;
    EXPECT_EQ(SketchOf(Encode(EncodeGif, Draw("KR"), options)), "K.") << "only 24 bits of the number count";
    options.color = RGB(1, 2, 3);
    EXPECT_EQ(SketchOf(Encode(EncodeGif, Draw("KRW"), options)), "KRW");
}

TEST(GifWriting, KeepsThePictureRecognisableInBothSenses) {
    const Picture photo = PhotoLike(160, 120);
    const Picture read = Must(DecodeGif(Encode(EncodeGif, photo), {}));
    EXPECT_FALSE(read.HasAlpha());
    EXPECT_GT(Psnr(read, photo), 26);
    // Seen from afar, where dithering counts: means of 4 by 4 pixels.
    double squares = 0;
    for (int y = 0; y < 120; y += 4)
        for (int x = 0; x < 160; x += 4) {
            int sum = 0;
            for (int i = 0; i < 16; ++i)
                sum += read.At(x + i % 4, y + i / 4).g - photo.At(x + i % 4, y + i / 4).g;
            squares += sum / 16.0 * (sum / 16.0);
        }
    EXPECT_LT(std::sqrt(squares / 1200), 2.0);
}

}  // namespace
}  // namespace tessara::test
