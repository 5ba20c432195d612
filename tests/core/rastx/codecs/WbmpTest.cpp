#include "core/rastx/codecs/Wbmp.h"

#include <algorithm>

#include "core/ByteSink.h"
#include "tests/Support.h"

namespace tessara::test {
namespace {

TEST(Wbmp, TellsPicturesFromOtherFiles) {
    const struct {
        const char* what;
        const char* file;
        bool recognised;
        const char* sketch;  // null where it cannot be read
    } kCases[] = {
        {"rows of a byte", "0000 0302 A0 40", true, "WKW KWK"},
        {"padding that is not zero", "0000 0302 BF 5F", true, "WKW KWK"},
        {"sizes with leading empty groups", "0000 808003 8001 60", true, "KWW"},
        {"bytes behind the rows", "0000 0301 A0 00", false, "WKW"},
        {"a row too few", "0000 0302 A0", false, "WKW WWW"},
        {"no row", "0000 0302", false, nullptr},
        {"another type", "0100 0302 A0 40", false, nullptr},
        {"extension headers", "0080 0302 A0 40", false, nullptr},
        {"no width", "0000 0002 A0 40", false, nullptr},
        {"an icon", "0000 0100 0100 1010", false, nullptr},
        {"a number without an end", "0000 83", false, nullptr},
        {"a number that is too large", "0000 84 80 00 01 00", false, nullptr},
        {"a picture that such a short file cannot be part of",
         "0000 81 00 83FF7F 00000000000000000000000000000000", false, nullptr},
    };
    for (const auto& [what, hex, recognised, sketch] : kCases) {
        const ByteVector file = Hex(hex);
        EXPECT_EQ(RecogniseWbmp(file), recognised) << what;
        const auto picture = DecodeWbmp(file, {});
        ASSERT_EQ(picture.Ok(), sketch != nullptr) << what;
        if (sketch) {
            EXPECT_EQ(Sketch(picture.Value()), sketch) << what;
        }
    }
}

TEST(Wbmp, WritesSizesInGroupsOfSevenBits) {
    const auto headerOf = [](int width, int height) {
        ByteVector file = Encode(EncodeWbmp, Must(Picture::Create(width, height, kBlack, Alpha::None)));
        file.resize(file.size() - static_cast<std::size_t>((width + 7) / 8 * height));
        return file;
    };
    EXPECT_EQ(headerOf(127, 1), Hex("0000 7F 01"));
    EXPECT_EQ(headerOf(128, 300), Hex("0000 8100 822C"));
    EXPECT_EQ(headerOf(1, 65535), Hex("0000 01 83FF7F"));
}

TEST(Wbmp, KeepsBlackAndWhiteAndShowsTransparencyWhite) {
    EXPECT_EQ(Encode(EncodeWbmp, Draw("WKWKKKKKW KKKKKKKKK")), Hex("0000 0902 A080 0000"));
    EXPECT_EQ(Sketch(Must(DecodeWbmp(Encode(EncodeWbmp, Draw("K.W .K.")), {}))), "KWW WKW");
}

TEST(Wbmp, DithersByLuminance) {
    // Worked out by hand: 112 leaves 112, of which 49 reach the next pixel; that is white and leaves -94, and
    // so on.
    EXPECT_EQ(Sketch(Must(DecodeWbmp(Encode(EncodeWbmp, Draw("444")), {}))), "KWK");
    // Pure green is 150 bright, blue 29: the share of white pixels is that of the brightness.
    for (const auto& [letter, luma] : {std::pair{'G', 150}, {'B', 29}, {'8', 224}}) {
        std::string rows;
        for (int y = 0; y < 64; ++y) rows += std::string(64, letter) + " ";
        const Picture read = Must(DecodeWbmp(Encode(EncodeWbmp, Draw(rows)), {}));
        const auto white = std::ranges::count(read.Pixels(), kWhite);
        EXPECT_NEAR(static_cast<double>(white), 4096.0 * luma / 255, 30) << letter;
    }
}

}  // namespace
}  // namespace tessara::test
