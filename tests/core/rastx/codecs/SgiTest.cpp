#include "core/rastx/codecs/Sgi.h"

#include "tests/Support.h"

namespace tessara {
namespace {

using test::Hex;
using test::Must;

/// A file of 3 by 2 pixels. With run lengths the data are the codes of all rows; a 0 ends each.
struct Fields {
    unsigned sampleBytes, channels;
    unsigned dimensions = 3;
    unsigned colors = 0;
};

ByteWriter Header(const Fields& fields, bool runLengths) {
    ByteWriter file;
    file.U16Be(0x01da).U8(runLengths).U8(fields.sampleBytes).U16Be(fields.dimensions).U16Be(3).U16Be(2);
    return std::move(file.U16Be(fields.channels).Zeros(92).U32Be(fields.colors).Zeros(404));
}
ByteVector Plain(const Fields& fields, const char* data) {
    return Header(fields, false).Append(Hex(data)).TakeBytes();
}
/// `offsets` count from the first code.
ByteVector Packed(const Fields& fields, std::initializer_list<std::uint32_t> offsets, const char* codes) {
    ByteWriter file = Header(fields, true);
    const auto first = static_cast<std::uint32_t>(512 + 8 * offsets.size());
    for (const std::uint32_t offset : offsets) file.U32Be(first + offset);
    return file.Zeros(4 * offsets.size()).Append(Hex(codes)).TakeBytes();
}

TEST(Sgi, ReadsEachKind) {
    struct Case {
        const char* name;
        ByteVector file;
        const char* picture;  ///< empty where it is refused
    };
    const Case cases[] = {
        {"grey", Plain({1, 1}, "001c38 ffff00"), "WWK K12"},
        {"one row", Plain({1, 0, 1}, "001c38 ffff00"), "K12"},
        {"two dimensions without channels", Plain({1, 0, 2}, "001c38 ffff00"), "WWK K12"},
        {"grey with alpha", Plain({1, 2}, "001c38 ffff00  ffffff 00ffff"), ".WK K12"},
        {"colour", Plain({1, 3}, "ff0000 ffffff  00ff00 ffffff  0000ff ffffff"), "WWW RGB"},
        {"five channels",
         Plain({1, 5}, "ff0000 ffffff 00ff00 ffffff 0000ff ffffff ffff00 ffffff 123456 123456"), "WWW RG."},
        {"two bytes", Plain({2, 1}, "0000 1c1c 3838 ffff ff80 007f"), "WWK K12"},
        {"three colours in a byte", Plain({1, 1, 2, 1}, "0738c0 ff0000"), "WKK RGB"},
        {"run lengths", Packed({1, 1}, {0, 5}, "831c3800 00 03ff00"), "WWW 12K"},
        {"run lengths of two bytes", Packed({2, 1}, {0, 10}, "0083 1c1c 3838 0000 0000 0003 ffff 0000"),
         "WWW 12K"},
        {"shared rows", Packed({1, 1}, {0, 0}, "03ff00"), "WWW WWW"},
        {"run too long", Packed({1, 1}, {0, 3}, "7f1c00 ff3838ff00"), "22W 111"},
        {"row too short", Packed({1, 1}, {0, 3}, "01ff00 03ff00"), "WWW WKK"},
        {"last code missing", Packed({1, 1}, {0, 3}, "03ff00 831c38ff"), "12W WWW"},
        {"row behind the end", Packed({1, 1}, {0, 99}, "031c00"), "WWW 111"},
        {"row with alpha behind the end", Packed({1, 2}, {0, 99, 0, 0}, "031c00"), "... ???"},
        {"row inside the header", Packed({1, 1}, {0, 0xffffff00}, "031c00"), "WWW 111"},
        {"raster cut short", Plain({1, 1}, "001c38 ffff"), "WWW K12"},
        {"less than a row", Plain({1, 1}, "001c"), ""},
        {"no row in its place", Packed({1, 1}, {99, 0xffffff00}, "031c00"), ""},
        {"palette file", Plain({1, 1, 2, 3}, "001c38 ffff00"), ""},
        {"three bytes", Plain({3, 1}, "001c38 ffff00"), ""},
        {"no channels", Plain({1, 0}, "001c38 ffff00"), ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const auto picture = DecodeSgi(row.file, {});
        EXPECT_EQ(picture ? test::Sketch(picture.Value()) : "", row.picture);
    }
}

}  // namespace
}  // namespace tessara
