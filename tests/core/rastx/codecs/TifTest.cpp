#include "core/rastx/codecs/Tif.h"

#include <map>

#include "core/ByteReader.h"
#include "core/ByteSink.h"
#include "core/rastx/Exif.h"
#include "tests/Support.h"

namespace tessara {
namespace {

using test::Draw;
using test::Encode;
using test::Hex;
using test::Must;
using test::Sketch;

enum Tag {
    kSubfileType = 254,
    kWidth = 256,
    kHeight,
    kBits,
    kCompression,
    kPhotometric = 262,
    kFillOrder = 266,
    kOffsets = 273,
    kOrientation,
    kSamples = 277,
    kRows,
    kByteCounts,
    kXResolution = 282,
    kYResolution,
    kPlanar,
    kResolutionUnit = 296,
    kPredictor = 317,
    kColorMap = 320,
    kTileWidth = 322,
    kTileHeight,
    kTileOffsets,
    kTileByteCounts,
    kExtraSamples = 338,
    kSampleFormat,
    kSubsampling = 530,
};
using Values = std::vector<std::uint32_t>;
using Fields = std::map<int, Values>;

struct ByteOrder {
    bool bigEndian = false;
    bool big = false;  ///< BigTIFF
};

/// One picture of a file: its fields and the bytes of its strips or tiles.
struct Directory {
    Fields fields;
    std::vector<ByteVector> chunks;
};

class TifBuilder {
  public:
    explicit TifBuilder(ByteOrder order) : order_(order) {
        file_.Text(order.bigEndian ? "MM" : "II");
        Put(2, order.big ? 43 : 42);
        if (order.big) Put(2, 8), Put(2, 0);
        Put(PointerSize(), file_.Size() + PointerSize());
    }

    /// Directory, values, chunks; the next directory follows.
    void Add(const Directory& picture, bool last) {
        Fields fields = picture.fields;
        const bool tiled = fields.contains(kTileWidth);
        Values& offsets = fields[tiled ? kTileOffsets : kOffsets] = Values(picture.chunks.size());
        Values& counts = fields[tiled ? kTileByteCounts : kByteCounts];
        for (const ByteVector& chunk : picture.chunks)
            counts.push_back(static_cast<std::uint32_t>(chunk.size()));
        const std::size_t entrySize = order_.big ? 20 : 12;
        std::size_t end = file_.Size() + (order_.big ? 16 : 6) + fields.size() * entrySize;
        for (const auto& [tag, values] : fields) end += Outside(tag, values);
        for (std::size_t i = 0; i < offsets.size(); ++i) {
            offsets[i] = picture.chunks[i].empty() ? 0 : static_cast<std::uint32_t>(end);
            end += picture.chunks[i].size();
        }
        PutDirectory(fields, last ? 0 : end);
        for (const ByteVector& chunk : picture.chunks) file_.Append(chunk);
    }
    ByteVector Take() { return file_.TakeBytes(); }

  private:
    static int TypeOf(int tag) {
        if (tag == kXResolution || tag == kYResolution) return 5;
        const bool isLong = tag == kOffsets || tag == kByteCounts || tag == kTileOffsets ||
                            tag == kTileByteCounts || tag == kWidth || tag == kHeight ||
                            tag == kSubfileType || tag == kTileWidth || tag == kTileHeight;
        return isLong ? 4 : 3;
    }
    std::size_t PointerSize() const { return order_.big ? 8 : 4; }
    static std::size_t SizeOf(int tag, const Values& values) {
        return values.size() * (TypeOf(tag) == 3 ? 2 : 4);
    }
    std::size_t Outside(int tag, const Values& values) const {
        return SizeOf(tag, values) > PointerSize() ? SizeOf(tag, values) : 0;
    }
    void Put(std::size_t size, std::uint64_t value) {
        for (std::size_t i = 0; i < size; ++i)
            file_.U8(static_cast<std::uint32_t>(value >> 8 * (order_.bigEndian ? size - 1 - i : i)) & 0xff);
    }
    void PutValues(int tag, const Values& values) {
        for (const std::uint32_t value : values) Put(TypeOf(tag) == 3 ? 2 : 4, value);
    }
    void PutDirectory(const Fields& fields, std::size_t next) {
        Put(order_.big ? 8 : 2, fields.size());
        std::size_t outside = file_.Size() + fields.size() * (order_.big ? 20 : 12) + PointerSize();
        for (const auto& [tag, values] : fields) {
            Put(2, static_cast<unsigned>(tag));
            Put(2, static_cast<unsigned>(TypeOf(tag)));
            Put(PointerSize(), TypeOf(tag) == 5 ? values.size() / 2 : values.size());
            if (Outside(tag, values) > 0) {
                Put(PointerSize(), outside);
                outside += Outside(tag, values);
            } else {
                PutValues(tag, values);
                file_.Zeros(PointerSize() - SizeOf(tag, values));
            }
        }
        Put(PointerSize(), next);
        for (const auto& [tag, values] : fields)
            if (Outside(tag, values) > 0) PutValues(tag, values);
    }

    ByteOrder order_;
    ByteWriter file_;
};

/// Fields that all pictures need, with `more` added or in their place.
Fields With(std::uint32_t width, std::uint32_t height, std::uint32_t bits, std::uint32_t samples,
            std::uint32_t photometric, const Fields& more = {}) {
    Fields fields = more;
    fields.insert({{kWidth, {width}},
                   {kHeight, {height}},
                   {kBits, Values(samples, bits)},
                   {kCompression, {1}},
                   {kPhotometric, {photometric}},
                   {kSamples, {samples}}});
    return fields;
}

ByteVector File(const Fields& fields, std::vector<ByteVector> chunks, ByteOrder order = {}) {
    TifBuilder builder(order);
    builder.Add({fields, std::move(chunks)}, true);
    return builder.Take();
}

std::string Seen(Bytes file) {
    const Result<Picture> picture = DecodeTif(file, {});
    return picture ? Sketch(picture.Value()) : picture.Error().message;
}

constexpr ByteOrder kLittle{};
constexpr ByteOrder kBigEndian{true, false};

TEST(Tif, ReadsSamplesOfEverySize) {
    const Fields isSigned = {{kSampleFormat, {2}}};
    const Fields isFloat = {{kSampleFormat, {3}}};
    const struct {
        const char* name;
        std::uint32_t bits;
        std::uint32_t photometric;
        ByteOrder order;
        const char* samples;
        const char* expected;
        Fields more = {};
    } cases[] = {
        {"1 bit", 1, 1, kLittle, "a0", "WKW"},
        {"1 bit, white is 0", 1, 0, kLittle, "a0", "KWK"},
        {"1 bit from the right", 1, 1, kLittle, "05", "WKW", {{kFillOrder, {2}}}},
        {"3 bits", 3, 1, kLittle, "e380", "WKW"},
        {"4 bits", 4, 1, kLittle, "f0f0", "WKW"},
        {"8 bits", 8, 1, kLittle, "1c38 ff", "12W"},
        {"12 bits", 12, 1, kLittle, "1c2 000 fff0", "1KW"},
        {"16 bits", 16, 1, kLittle, "1c1c 7f00 80ff", "1KW"},
        {"16 bits, big endian", 16, 1, kBigEndian, "1c1c 007f ff80", "1KW"},
        {"16 bits, white is 0", 16, 0, kBigEndian, "e3e3 ffff 0000", "1KW"},
        {"24 bits, big endian", 24, 1, kBigEndian, "1c1c1c 000000 ffffff", "1KW"},
        {"32 bits", 32, 1, kLittle, "1c1c1c1c ffff7f00 ffffffff", "1KW"},
        {"signed 8 bits", 8, 1, kLittle, "9c 80 7f", "1KW", isSigned},
        {"signed 16 bits", 16, 1, kBigEndian, "9c1c 8000 7fff", "1KW", isSigned},
        {"half a float", 16, 1, kLittle, "0000 0040 007e", "KWK", isFloat},
        {"three quarters of a float", 24, 1, kBigEndian, "3f0000 000000 bf0000", "WKK", isFloat},
        {"float", 32, 1, kLittle, "e1e0e03d 000080bf 0000803f", "1KW", isFloat},
        {"double", 64, 1, kBigEndian, "3ff0000000000000 0000000000000000 7ff0000000000000", "WKW", isFloat},
    };
    for (const auto& row : cases)
        EXPECT_EQ(
            Seen(File(With(3, 1, row.bits, 1, row.photometric, row.more), {Hex(row.samples)}, row.order)),
            row.expected)
            << row.name;
}

TEST(Tif, ReadsColoursOfEveryKind) {
    const Fields map = {{kColorMap, {0xffff, 0, 0, 0x1c1c, 0, 0xffff, 0, 0x1c1c, 0, 0, 0xffff, 0x1c1c}}};
    const Fields bytesInMap = {{kColorMap, {255, 0, 0, 28, 0, 255, 0, 28, 0, 0, 255, 28}}};
    const Fields highHalves = {
        {kColorMap, {0xff00, 0, 0, 0x1c00, 0, 0xff00, 0, 0x1c00, 0, 0, 0xff00, 0x1c00}}};
    const struct {
        const char* name;
        Fields fields;
        const char* samples;
        const char* expected;
    } cases[] = {
        {"RGB", With(2, 1, 8, 3, 2), "ff0000 00ffff", "RC"},
        {"RGB, 16 bits", With(2, 1, 16, 3, 2), "ffff 0000 0000 0000 ffff ffff", "RC"},
        {"RGB, 2 bits", With(2, 1, 2, 3, 2), "c0f0", "RC"},
        {"palette", With(4, 1, 2, 1, 3, map), "1b", "RGB1"},
        {"palette, values of a byte", With(4, 1, 2, 1, 3, bytesInMap), "1b", "RGB1"},
        {"palette, high halves only", With(4, 1, 2, 1, 3, highHalves), "1b", "RGB1"},
        {"CMYK", With(3, 1, 8, 4, 5), "00ffff00 00000000 ff0000ff", "RWK"},
        {"CMYK, 16 bits", With(2, 1, 16, 4, 5), "0000ffffffff0000 00000000 00000000", "RW"},
        {"CIE Lab", With(2, 1, 8, 3, 8), "ff0000 000000", "WK"},
        {"CIE Lab, 16 bits", With(2, 1, 16, 3, 8), "ffff00000000 000000000000", "WK"},
        {"ICC Lab", With(2, 1, 8, 3, 9), "ff8080 008080", "WK"},
        {"ICC Lab, 16 bits", With(2, 1, 16, 3, 9), "00ff00800080 000000800080", "WK"},
        {"lightness alone", With(2, 1, 8, 1, 8), "ff00", "WK"},
        {"YCbCr", With(2, 1, 8, 3, 6, {{kSubsampling, {1, 1}}}), "ff8080 1c8080", "W1"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Seen(File(row.fields, {Hex(row.samples)})), row.expected) << row.name;
}

TEST(Tif, SpreadsChromaOverItsBlock) {
    // Two blocks of 2 by 2; the last column and row of the picture of 3 by 3 lie in blocks that reach over
    // its edge.
    const Fields fields = With(3, 3, 8, 3, 6, {{kSubsampling, {2, 2}}, {kRows, {2}}});
    const ByteVector top = Hex("00001c1c 8080  ff00ff00 8080");
    const ByteVector bottom = Hex("ff1c0000 8080  1c000000 8080");
    EXPECT_EQ(Seen(File(fields, {top, bottom})), "KKW 11W W11");
    const Picture red =
        Must(DecodeTif(File(With(2, 1, 8, 3, 6, {{kSubsampling, {2, 1}}}), {Hex("4c4c 55ff")}), {}));
    EXPECT_EQ(red.At(0, 0), red.At(1, 0));
    EXPECT_LE(test::LargestDifference(red, Draw("RR")), 1);
}

TEST(Tif, FindsItsWayThroughEveryLayout) {
    const Fields tile = {{kTileWidth, {16}}, {kTileHeight, {16}}};
    const Fields planarTile = {{kTileWidth, {16}}, {kTileHeight, {16}}, {kPlanar, {2}}};
    const ByteVector none(256);
    ByteVector left(256);  // a light column on the left of the tile
    for (std::size_t y = 0; y < 16; ++y) left[16 * y] = 0xff;
    const struct {
        const char* name;
        Fields fields;
        std::vector<ByteVector> chunks;
        const char* expected;
    } cases[] = {
        {"strips", With(2, 3, 8, 1, 1, {{kRows, {2}}}), {Hex("00ff 1c38"), Hex("ff00")}, "KW 12 WK"},
        {"planes", With(2, 1, 8, 3, 2, {{kPlanar, {2}}}), {Hex("ff00"), Hex("00ff"), Hex("00ff")}, "RC"},
        {"planes of strips",
         With(1, 2, 8, 3, 2, {{kPlanar, {2}}, {kRows, {1}}}),
         {Hex("ff"), Hex("00"), Hex("00"), Hex("ff"), Hex("00"), Hex("ff")},
         "R C"},
        {"tiles over the edge",
         With(18, 2, 8, 1, 1, tile),
         {left, left},
         "WKKKKKKKKKKKKKKKWK WKKKKKKKKKKKKKKKWK"},
        {"tiles of planes",
         With(17, 1, 8, 3, 2, planarTile),
         {left, none, none, left, left, none},  // red of both tiles, then green, then blue
         "MKKKKKKKKKKKKKKKG"},
    };
    for (const auto& row : cases)
        for (const ByteOrder order : {kLittle, kBigEndian, ByteOrder{false, true}, ByteOrder{true, true}})
            EXPECT_EQ(Seen(File(row.fields, row.chunks, order)), row.expected)
                << row.name << (order.bigEndian ? ", big endian" : "") << (order.big ? ", BigTIFF" : "");
}

TEST(Tif, TakesForAlphaWhatIsDeclaredToBe) {
    const Pixel half{0, 0, 128, 128};
    const Pixel straight{0, 0, 255, 128};
    const struct {
        const char* name;
        Fields fields;
        const char* samples;
        Pixel expected;
    } cases[] = {
        {"straight", With(1, 1, 8, 4, 2, {{kExtraSamples, {2}}}), "80000080", half},
        {"premultiplied", With(1, 1, 8, 4, 2, {{kExtraSamples, {1}}}), "80000080", straight},
        {"premultiplied, 16 bits", With(1, 1, 16, 4, 2, {{kExtraSamples, {1}}}), "8080000000008080",
         straight},
        {"not declared", With(1, 1, 8, 4, 2), "80000080", half},
        {"declared to be something else",
         With(1, 1, 8, 4, 2, {{kExtraSamples, {0}}}),
         "80000080",
         {0, 0, 128, 255}},
        {"behind something else", With(1, 1, 8, 5, 2, {{kExtraSamples, {0, 2}}}), "8000005580", half},
        {"of grey", With(1, 1, 8, 2, 1, {{kExtraSamples, {2}}}), "1c80", {28, 28, 28, 128}},
        {"opaque everywhere", With(1, 1, 8, 4, 2, {{kExtraSamples, {2}}}), "800000ff", {0, 0, 128, 255}},
    };
    for (const auto& row : cases) {
        const Picture picture = Must(DecodeTif(File(row.fields, {Hex(row.samples)}), {}));
        EXPECT_EQ(picture.At(0, 0), row.expected) << row.name;
        EXPECT_EQ(picture.HasAlpha(), row.expected.a < 255) << row.name;
    }
}

TEST(Tif, UnpacksEveryCompression) {
    const Fields difference = {{kPredictor, {2}}};
    const struct {
        const char* name;
        std::uint32_t compression;
        Fields fields;
        ByteOrder order;
        const char* packed;
        const char* expected;
    } cases[] = {
        {"PackBits", 32773, With(4, 2, 8, 1, 1), kLittle, "fdff 03001c38ff", "WWWW K12W"},
        // Clear, 255, then twice the string that the code itself completes, 0, end.
        {"LZW", 5, With(7, 1, 8, 1, 1), kLittle, "803fe050300404", "WWWWWWK"},
        {"LZW of differences", 5, With(2, 1, 8, 3, 2, difference), kLittle, "803fc000000bfdff01", "RC"},
        {"Deflate", 8, With(3, 1, 8, 1, 1), kLittle, "789c6390f90f00013a011c", "K1W"},
        {"Deflate by its first number", 32946, With(3, 1, 8, 1, 1), kLittle, "789c6390f90f00013a011c", "K1W"},
        {"Deflate, wrong checksum", 8, With(3, 1, 8, 1, 1), kLittle, "789c6390f90f0000000000", "K1W"},
        {"Deflate of more than needed", 8, With(2, 1, 8, 1, 1), kLittle, "789c6390f90f00013a011c", "K1"},
        {"Deflate of differences", 8, With(2, 1, 8, 3, 2, difference), kLittle,
         "789cfbcfc0c0f8ff3f00090002ff", "RC"},
        {"Deflate of differences of 16 bits", 8, With(3, 1, 16, 1, 1, difference), kBigEndian,
         "789c939179fce4ff7f000a6f03fe", "1KW"},
        // One row like the imaginary white one above it, then the end of the facsimile block.
        {"a fax that ends early is white", 4, With(8, 3, 1, 1, 0), kLittle, "80080080",
         "WWWWWWWW WWWWWWWW WWWWWWWW"},
    };
    for (const auto& row : cases) {
        Fields fields = row.fields;
        fields[kCompression] = {row.compression};
        EXPECT_EQ(Seen(File(fields, {Hex(row.packed)}, row.order)), row.expected) << row.name;
    }
}

TEST(Tif, LzwCodesGrowAndStartAgain) {
    // Every code is a plain byte, so that the table fills without being used: 9 to 12 bits, then a clear.
    std::vector<bool> bits;
    ByteVector expected;
    unsigned width = 9;
    unsigned written = 0;  // codes since the last clear; the first one adds nothing to the table
    const auto put = [&](unsigned code) {
        for (unsigned bit = width; bit-- > 0;) bits.push_back((code >> bit & 1) != 0);
    };
    for (unsigned i = 0; i < 9000; ++i) {
        if (written == 0 || written == 4094 - 258) {
            put(256);
            width = 9;
            written = 0;
        }
        expected.push_back(static_cast<std::uint8_t>(i * 7 / 3));
        put(expected.back());
        ++written;
        if (258 + written == (1u << width)) ++width;
    }
    put(257);
    ByteVector packed((bits.size() + 7) / 8);
    for (std::size_t i = 0; i < bits.size(); ++i)
        if (bits[i]) packed[i / 8] = static_cast<std::uint8_t>(packed[i / 8] | 0x80 >> i % 8);
    const Picture picture =
        Must(DecodeTif(File(With(100, 90, 8, 1, 1, {{kCompression, {5}}}), {packed}), {}));
    for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_EQ(picture.Pixels()[i].g, expected[i]) << i;
}

TEST(Tif, KeepsWhatADamagedFileHolds) {
    const Fields lzw = {{kCompression, {5}}};
    const Fields packBits = {{kCompression, {32773}}, {kRows, {2}}};
    const Fields packedPlanes = {{kCompression, {32773}}, {kPlanar, {2}}};
    const struct {
        const char* name;
        Fields fields;
        std::vector<ByteVector> chunks;
        const char* expected;
    } cases[] = {
        {"the last strip is cut short",
         With(2, 4, 8, 1, 1, {{kRows, {2}}}),
         {Hex("00000000"), Hex("1c1c 1c")},
         "KK KK 11 WW"},
        {"a strip is nowhere",
         With(2, 3, 8, 1, 1, {{kRows, {1}}}),
         {Hex("0000"), {}, Hex("1c1c")},
         "KK WW 11"},
        {"the first strip is nowhere", With(2, 2, 8, 1, 1, {{kRows, {1}}}), {{}, Hex("1c1c")}, "WW 11"},
        {"missing rows with alpha",
         With(1, 2, 8, 4, 2, {{kRows, {1}}, {kExtraSamples, {2}}}),
         {Hex("00000080"), {}},
         "? ."},
        // Clear, 0, 0, 400
        {"LZW with an impossible code", With(2, 2, 8, 1, 1, lzw), {Hex("8000000190")}, "KK WW"},
        {"PackBits that ends early",
         With(2, 4, 8, 1, 1, packBits),
         {Hex("fd00"), Hex("ff1c 01")},
         "KK KK 11 WW"},
        {"planes of different lengths",
         With(1, 2, 8, 3, 2, packedPlanes),
         {Hex("01ffff"), Hex("0000"), Hex("010000")},
         "R W"},
    };
    for (const auto& row : cases) EXPECT_EQ(Seen(File(row.fields, row.chunks)), row.expected) << row.name;
}

TEST(Tif, RefusesWhatHoldsNoPicture) {
    const Fields deflate = {{kCompression, {8}}};
    const Fields packBits = {{kCompression, {32773}}};
    const Fields fax = {{kCompression, {4}}};
    const Fields giantTile = {{kTileWidth, {1u << 30}}, {kTileHeight, {1u << 30}}};
    const struct {
        const char* name;
        Fields fields;
        FailureKind expected;
    } cases[] = {
        {"nothing can be unpacked", With(2, 2, 8, 1, 1, deflate), FailureKind::Damaged},
        {"no size", With(0, 2, 8, 1, 1), FailureKind::Damaged},
        {"a side too long", With(70000, 2, 8, 1, 1, fax), FailureKind::TooBig},
        {"too much memory", With(60000, 60000, 1, 1, 1, fax), FailureKind::TooBig},
        {"a few bytes for a giant", With(20000, 20000, 8, 1, 1), FailureKind::Damaged},
        {"a few packed bytes for a giant", With(20000, 20000, 8, 1, 1, packBits), FailureKind::Damaged},
        {"a giant tile", With(16, 16, 8, 1, 1, giantTile), FailureKind::TooBig},
        {"a filter array", With(2, 2, 8, 1, 32803), FailureKind::Unsupported},
        {"chroma of five pixels", With(2, 2, 8, 3, 6, {{kSubsampling, {5, 1}}}), FailureKind::Damaged},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = DecodeTif(File(row.fields, {Hex("0011")}), {});
        ASSERT_FALSE(picture) << row.name;
        EXPECT_EQ(picture.Error().kind, row.expected) << row.name << ": " << picture.Error().message;
    }
}

TEST(Tif, PassesOverThumbnails) {
    const auto picture = [](std::uint32_t kind, const char* grey) {
        return Directory{With(1, 1, 8, 1, 1, {{kSubfileType, {kind}}}), {Hex(grey)}};
    };
    const struct {
        const char* name;
        std::vector<Directory> directories;
        const char* expected;
    } cases[] = {
        {"thumbnail first", {picture(1, "1c"), picture(0, "38")}, "2"},
        {"mask, thumbnail, picture", {picture(4, "1c"), picture(1, "38"), picture(0, "54")}, "3"},
        {"pages", {picture(2, "1c"), picture(2, "38")}, "1"},
        {"nothing but thumbnails", {picture(1, "1c"), picture(1, "38")}, "1"},
    };
    for (const auto& row : cases) {
        TifBuilder builder(kLittle);
        for (std::size_t i = 0; i < row.directories.size(); ++i)
            builder.Add(row.directories[i], i + 1 == row.directories.size());
        EXPECT_EQ(Seen(builder.Take()), row.expected) << row.name;
    }
}

TEST(Tif, TurnsUprightAndTellsTheResolution) {
    const Fields perCentimetre = {
        {kOrientation, {6}}, {kXResolution, {100, 1}}, {kYResolution, {100, 2}}, {kResolutionUnit, {3}}};
    const Picture turned = Must(DecodeTif(File(With(3, 1, 8, 1, 1, perCentimetre), {Hex("001cff")}), {}));
    EXPECT_EQ(Sketch(turned), "K 1 W");
    EXPECT_DOUBLE_EQ(turned.Meta().resolution.x, 127);
    EXPECT_DOUBLE_EQ(turned.Meta().resolution.y, 254);
    const Fields noUnit = {{kXResolution, {4, 1}}, {kYResolution, {3, 1}}, {kResolutionUnit, {1}}};
    EXPECT_FALSE(
        Must(DecodeTif(File(With(1, 1, 8, 1, 1, noUnit), {Hex("00")}), {})).Meta().resolution.Known());
}

TEST(Tif, WritesNoMoreSamplesThanThePictureNeeds) {
    const struct {
        const char* name;
        Picture picture;
        std::uint16_t bits, samples;
    } cases[] = {
        {"black and white", Draw("KWK WKW"), 1, 1},
        {"grey", Draw("K1W"), 8, 1},
        {"colour", Draw("KRW"), 8, 3},
        {"alpha", Draw("K.W"), 8, 4},
    };
    for (const auto& row : cases) {
        const ByteVector file = Encode(EncodeTif, row.picture);
        EXPECT_EQ(Seen(file), Sketch(row.picture)) << row.name;
        ByteReader reader(file);
        reader.Seek(4);
        reader.Seek(reader.U32Le());
        std::map<int, std::uint32_t> counts;
        std::map<int, std::uint16_t> values;
        for (int left = reader.U16Le(); left > 0; --left) {
            const int tag = reader.U16Le();
            reader.Skip(2);
            counts[tag] = reader.U32Le();
            values[tag] = reader.U16Le();
            reader.Skip(2);
        }
        EXPECT_FALSE(reader.Overrun()) << row.name;
        EXPECT_EQ(values[kSamples], row.samples) << row.name;
        EXPECT_EQ(counts[kBits], row.samples) << row.name;
        if (row.samples == 1) {
            EXPECT_EQ(values[kBits], row.bits) << row.name;
        }
        EXPECT_EQ(counts.contains(kExtraSamples), row.samples == 4) << row.name;
    }
}

TEST(Tif, WritesPicturesOfManyStrips) {
    Picture photo = test::PhotoLike(601, 901);
    photo.SetResolution({71.98, 300});
    const Picture read = Must(DecodeTif(Encode(EncodeTif, photo), {}));
    EXPECT_EQ(test::LargestDifference(read, photo), 0);
    EXPECT_DOUBLE_EQ(read.Meta().resolution.y, 300);
    EXPECT_NEAR(read.Meta().resolution.x, 71.98, 1e-4);
    const Picture translucent = test::PhotoLikeWithAlpha(601, 601);
    EXPECT_EQ(test::LargestDifference(Must(DecodeTif(Encode(EncodeTif, translucent), {})), translucent), 0);
}

TEST(Tif, KeepsWhatIsKnownOfThePicturesTaking) {
    // Big endian: a maker, an orientation, a directory with an exposure of 1/60, one with a latitude "N".
    const ByteVector exif =
        Hex("4D4D002A 00000008 0004"
            "010F 0002 00000006 0000003E  0112 0003 00000001 00010000"
            "8769 0004 00000001 00000044  8825 0004 00000001 0000005E 00000000"
            "43616D6572 00"
            "0001 829A 0005 00000001 00000056 00000000 00000001 0000003C"
            "0001 0001 0002 00000002 4E000000 00000000");
    Picture picture = Draw("RGB");
    picture.SetMeta({{}, std::make_shared<const ByteVector>(exif)});
    // A TIFF begins like an EXIF block, so the same reader finds what was written.
    const ByteVector file = Encode(EncodeTif, picture);
    const ExifDirectories written = ReadExifDirectories(file);
    ASSERT_EQ(written.image.size(), 1u);
    EXPECT_EQ(written.image[0].values, Hex("43616D6572 00"));
    ASSERT_EQ(written.photo.size(), 1u);
    EXPECT_EQ(written.photo[0].tag, 0x829a);
    EXPECT_EQ(written.photo[0].values, Hex("01000000 3C000000")) << "numbers are little endian now";
    ASSERT_EQ(written.place.size(), 1u);
    EXPECT_EQ(written.place[0].values, Hex("4E00"));
    const Picture read = Must(DecodeTif(file, {}));
    EXPECT_EQ(Sketch(read), "RGB");
    EXPECT_EQ(Encode(EncodeTif, read), file) << "all of it is read back";
    EXPECT_FALSE(Must(DecodeTif(Encode(EncodeTif, Draw("RGB")), {})).Meta().exif);
    // A block that is cut anywhere costs entries, not the picture.
    for (std::size_t length = 0; length < exif.size(); ++length) {
        picture.SetMeta({{},
                         std::make_shared<const ByteVector>(
                             exif.begin(), exif.begin() + static_cast<std::ptrdiff_t>(length))});
        EXPECT_EQ(Sketch(Must(DecodeTif(Encode(EncodeTif, picture), {}))), "RGB") << length;
    }
}

}  // namespace
}  // namespace tessara
