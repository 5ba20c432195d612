#include "core/rastx/codecs/Psd.h"

#include "core/ByteReader.h"
#include "core/ByteSink.h"
#include "tests/Support.h"

namespace tessara {
namespace {

using test::Concatenate;
using test::Draw;
using test::Hex;
using test::Must;
using test::Sketch;

constexpr int kGrey = 1, kRgb = 3, kCmyk = 4, kMultichannel = 7, kDuotone = 8, kLab = 9;

struct Document {
    int mode = kRgb;
    int depth = 8;
    int channels = 3;
    int width = 2, height = 1;
    ByteVector merged;  // from the code of the compression on
    ByteVector layers = {};
    ByteVector resources = {};
    ByteVector palette = {};
    bool large = false;

    ByteVector File() const {
        ByteWriter file;
        file.Text("8BPS").U16Be(large ? 2 : 1).Zeros(6).U16Be(static_cast<std::uint32_t>(channels));
        file.U32Be(static_cast<std::uint32_t>(height)).U32Be(static_cast<std::uint32_t>(width));
        file.U16Be(static_cast<std::uint32_t>(depth)).U16Be(static_cast<std::uint32_t>(mode));
        file.U32Be(static_cast<std::uint32_t>(palette.size())).Append(palette);
        file.U32Be(static_cast<std::uint32_t>(resources.size())).Append(resources);
        if (large) file.U32Be(0);
        file.U32Be(static_cast<std::uint32_t>(layers.size())).Append(layers);
        return file.Append(merged).TakeBytes();
    }
};

ByteVector Resource(int id, ByteVector data) {
    ByteWriter block;
    block.Text("8BIM").U16Be(static_cast<std::uint32_t>(id)).U16Be(0);
    block.U32Be(static_cast<std::uint32_t>(data.size())).Append(data).Zeros(data.size() % 2);
    return block.TakeBytes();
}
const ByteVector kNoMergedPicture = Resource(1057, Hex("00000001 00"));

/// A zlib stream of one stored block; without a checksum, as cut streams are read as far as they go.
ByteVector Zip(std::string_view hex) {
    const ByteVector bytes = Hex(hex);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    return ByteWriter().U16Be(0x7801).U8(1).U16Le(length).U16Le(~length & 0xffff).Append(bytes).TakeBytes();
}

struct TestMask {
    int left = 0, right = 0;
    int outside = 0, flags = 0;
    std::string_view values;
};

/// A layer of one row whose picture is given as a sketch; its planes are stored raw.
struct TestLayer {
    std::string_view sketch;
    std::string_view key = "norm";
    int left = 0, top = 0;
    int opacity = 255, fill = 255;
    bool clipped = false, hidden = false;
    int divider = 0;
    std::optional<TestMask> mask = {};
};

constexpr TestLayer kGroupEnd = {.sketch = "", .divider = 3};

ByteVector Extra(const TestLayer& layer) {
    ByteWriter extra;
    if (layer.mask) {
        extra.U32Be(20).U32Be(0).U32Be(static_cast<std::uint32_t>(layer.mask->left)).U32Be(1);
        extra.U32Be(static_cast<std::uint32_t>(layer.mask->right));
        extra.U8(static_cast<std::uint32_t>(layer.mask->outside))
            .U8(static_cast<std::uint32_t>(layer.mask->flags));
        extra.U16Be(0);
    } else {
        extra.U32Be(0);
    }
    extra.U32Be(0).U8(3).Text("abc");  // blend ranges, name
    extra.Text("8BIMiOpa").U32Be(4).U8(static_cast<std::uint32_t>(layer.fill)).Zeros(3);
    if (layer.divider) {
        extra.Text("8BIMlsct").U32Be(12).U32Be(static_cast<std::uint32_t>(layer.divider));
        extra.Text("8BIM").Text(layer.key);
    }
    return extra.TakeBytes();
}

/// Channels in the order alpha, red, green, blue, mask; samples of `depth` bits.
ByteVector LayerInfo(const std::vector<TestLayer>& layers, int depth, bool large) {
    ByteWriter records;
    ByteWriter samples;
    records.U16Be(static_cast<std::uint32_t>(layers.size()));
    const auto channel = [&](int id, Bytes row) {
        records.U16Be(static_cast<std::uint32_t>(id)).Zeros(large ? 4 : 0);
        records.U32Be(static_cast<std::uint32_t>(2 + row.size() * static_cast<std::size_t>(depth) / 8));
        samples.U16Be(0);
        for (const std::uint8_t value : row) {
            if (depth == 32)
                samples.U32Be(value == 0 ? 0 : 0x3f800000);
            else
                for (int i = 0; i < depth; i += 8) samples.U8(value);
        }
    };
    for (const TestLayer& layer : layers) {
        const Picture picture = layer.sketch.empty() ? Picture() : Draw(layer.sketch);
        records.U32Be(static_cast<std::uint32_t>(layer.top)).U32Be(static_cast<std::uint32_t>(layer.left));
        records.U32Be(static_cast<std::uint32_t>(layer.top + picture.Height()));
        records.U32Be(static_cast<std::uint32_t>(layer.left + picture.Width()));
        records.U16Be(layer.mask ? 5 : 4);
        std::array<ByteVector, 4> planes;
        for (const Pixel pixel : picture.Pixels()) {
            planes[0].push_back(pixel.a);
            planes[1].push_back(pixel.r);
            planes[2].push_back(pixel.g);
            planes[3].push_back(pixel.b);
        }
        for (int i = 0; i < 4; ++i) channel(i - 1, planes[static_cast<std::size_t>(i)]);
        if (layer.mask) channel(-2, Hex(layer.mask->values));
        const ByteVector extra = Extra(layer);
        records.Text("8BIM").Text(layer.key).U8(static_cast<std::uint32_t>(layer.opacity));
        records.U8(layer.clipped).U8(layer.hidden ? 2 : 0).U8(0);
        records.U32Be(static_cast<std::uint32_t>(extra.size())).Append(extra);
    }
    return records.Append(samples.Written()).TakeBytes();
}

ByteVector LayerSection(const std::vector<TestLayer>& layers, int depth = 8, bool large = false) {
    const ByteVector info = LayerInfo(layers, depth, large);
    const auto length = static_cast<std::uint32_t>(info.size());
    ByteWriter section;
    if (depth == 8) return section.Zeros(large ? 4 : 0).U32Be(length).Append(info).TakeBytes();
    section.Zeros(large ? 8 : 4).U32Be(0).Text(depth == 16 ? "8BIMLr16" : "8BIMLr32");
    return section.Zeros(large ? 4 : 0).U32Be(length).Append(info).TakeBytes();
}

Document LayersOnly(const std::vector<TestLayer>& layers) {
    return {
        .merged = Hex("0000 ffff ffff ffff"), .layers = LayerSection(layers), .resources = kNoMergedPicture};
}

TEST(Psd, ReadsTheMergedPictureOfEveryMode) {
    ByteVector palette(768);
    palette[1] = 255;        // colour 1 is red
    palette[256 + 2] = 255;  // colour 2 is green
    const struct {
        const char* name;
        Document document;
        const char* sketch;
    } cases[] = {
        {"bitmap",
         {.mode = 0, .depth = 1, .channels = 1, .width = 9, .merged = Hex("0000 a0 00")},
         "KWKWWWWWW"},
        {"grey", {.mode = kGrey, .channels = 1, .merged = Hex("0000 00 1c")}, "K1"},
        {"grey of 16 bits, rounded",
         {.mode = kGrey, .depth = 16, .channels = 1, .merged = Hex("0000 1c9b 1b9c")},
         "11"},
        {"grey in linear light",
         {.mode = kGrey, .depth = 32, .channels = 1, .merged = Hex("0000 3c3e4149 40000000")},
         "1W"},
        {"indexes", {.mode = 2, .channels = 1, .merged = Hex("0000 01 02"), .palette = palette}, "RG"},
        {"indexes, one of them transparent",
         {.mode = 2,
          .channels = 1,
          .merged = Hex("0000 01 00"),
          .resources = Resource(1047, Hex("0000")),
          .palette = palette},
         "R."},
        {"colours", {.merged = Hex("0000 ff00 00ff 0000")}, "RG"},
        {"colours of 16 bits", {.depth = 16, .merged = Hex("0000 ffff0000 0000ffff 00000000")}, "RG"},
        {"inks are stored inverted",
         {.mode = kCmyk, .channels = 4, .merged = Hex("0000 ff1c ffff ff1c ff ff")},
         "W?"},
        {"black ink", {.mode = kCmyk, .channels = 4, .merged = Hex("0000 ffff ffff ffff 1c 00")}, "1K"},
        {"Lab", {.mode = kLab, .merged = Hex("0000 ff00 8080 8080")}, "WK"},
        {"Lab of 16 bits",
         {.mode = kLab, .depth = 16, .merged = Hex("0000 ffff0000 80008000 80008000")},
         "WK"},
        {"duotone as grey", {.mode = kDuotone, .channels = 1, .merged = Hex("0000 00 1c")}, "K1"},
        {"three inks", {.mode = kMultichannel, .merged = Hex("0000 ff00 00ff 0000")}, "RG"},
        {"two inks", {.mode = kMultichannel, .channels = 2, .merged = Hex("0000 00ff 4242")}, "KW"},
        {"saved selections are no alpha", {.channels = 4, .merged = Hex("0000 ff00 00ff 0000 0000")}, "RG"},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = DecodePsd(row.document.File(), {});
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        if (std::string_view(row.sketch) != "W?")
            EXPECT_EQ(Sketch(picture.Value()), row.sketch) << row.name;
        else
            EXPECT_EQ(picture.Value().At(1, 0), (Pixel{28, 255, 28, 255})) << row.name;
    }
}

TEST(Psd, UnpacksEveryCompression) {
    // Greys 1 2 1 in two rows each time.
    const struct {
        const char* name;
        int depth;
        bool large;
        ByteVector merged;
    } cases[] = {
        {"raw", 8, false, Hex("0000 1c381c 1c381c")},
        {"runs", 8, false, Hex("0001 0004 0006 021c381c 001c 80 01381c")},
        {"runs in PSB", 8, true, Hex("0001 00000004 00000004 021c381c 021c381c")},
        {"a run that is too long", 8, false, Hex("0001 0007 0004 001c 0038 fe1c 00 021c381c")},
        {"zip", 8, false, Concatenate({Hex("0002"), Zip("1c381c 1c381c")})},
        {"predicted", 8, false, Concatenate({Hex("0003"), Zip("1c1ce4 1c1ce4")})},
        {"predicted, 16 bits", 16, false, Concatenate({Hex("0003"), Zip("1c1c 1c1c e3e4  1c1c 1c1c e3e4")})},
        // 0x3c3e4149, 0x3d21fb3c and 0x3c3e4149 byte by byte, as differences along the row.
        {"predicted, 32 bits", 32, false,
         Concatenate({Hex("0003"), Zip("3c01ff 02e31d 03ba46 08f30d  3c01ff 02e31d 03ba46 08f30d")})},
    };
    for (const auto& row : cases) {
        const Document document = {.mode = kGrey,
                                   .depth = row.depth,
                                   .channels = 1,
                                   .width = 3,
                                   .height = 2,
                                   .merged = row.merged,
                                   .large = row.large};
        const Result<Picture> picture = DecodePsd(document.File(), {});
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        EXPECT_EQ(Sketch(picture.Value()), "121 121") << row.name;
    }
}

TEST(Psd, TakesTheWhiteBackOutOfTransparentColors) {
    // Black and grey at half strength, on white.
    const ByteVector half = Hex("0000 7f8d 7f8d 7f8d 8080");
    const ByteVector fine = Hex("0000 7fff7fff 7fff7fff 7fff7fff 80008000");
    const struct {
        const char* name;
        Document document;
        Pixel first, second;
    } cases[] = {
        {"by its identifier",
         {.channels = 4, .merged = half, .resources = Resource(1053, Hex("00000000"))},
         {0, 0, 0, 128},
         {28, 28, 28, 128}},
        {"by the count of layers",
         {.channels = 4, .merged = half, .layers = Hex("00000002 ffff")},
         {0, 0, 0, 128},
         {28, 28, 28, 128}},
        {"16 bits",
         {.depth = 16, .channels = 4, .merged = fine, .resources = Resource(1053, Hex("00000000"))},
         {0, 0, 0, 128},
         {0, 0, 0, 128}},
        {"darker than it could be on white",
         {.channels = 4,
          .merged = Hex("0000 0010 0010 0010 8080"),
          .resources = Resource(1053, Hex("00000000"))},
         {0, 0, 0, 128},
         {16, 16, 16, 128}},
        {"the same in 16 bits",
         {.depth = 16,
          .channels = 4,
          .merged = Hex("0000 00001010 00001010 00001010 80008000"),
          .resources = Resource(1053, Hex("00000000"))},
         {0, 0, 0, 128},
         {16, 16, 16, 128}},
        {"the same in light",
         {.depth = 32,
          .channels = 4,
          .merged = Hex("0000 000000003f000000 000000003f000000 000000003f000000 3f0000003f000000"),
          .resources = Resource(1053, Hex("00000000"))},
         {0, 0, 0, 128},
         {188, 188, 188, 128}},
        {"another identifier",
         {.channels = 4, .merged = half, .resources = Resource(1053, Hex("00000003"))},
         Grey(127),
         Grey(141)},
    };
    for (const auto& row : cases) {
        const Picture picture = Must(DecodePsd(row.document.File(), {}));
        EXPECT_EQ(picture.At(0, 0), row.first) << row.name;
        EXPECT_EQ(picture.At(1, 0), row.second) << row.name;
    }
}

TEST(Psd, ComposesLayersWhereNoMergedPictureWasKept) {
    const struct {
        const char* name;
        std::vector<TestLayer> layers;
        const char* sketch;
    } cases[] = {
        {"bottom first", {{"RR"}, {".B"}}, "RB"},
        {"beside the canvas", {{"RR"}, {.sketch = "GBB", .left = -1}, {.sketch = "K", .top = 1}}, "BB"},
        {"hidden", {{"RR"}, {.sketch = "BB", .hidden = true}}, "RR"},
        {"blend key", {{"YY"}, {.sketch = "C.", .key = "mul "}}, "GY"},
        {"unknown blend key", {{"YY"}, {.sketch = "C.", .key = "????"}}, "CY"},
        {"opacity 0", {{"YY"}, {.sketch = "C.", .opacity = 0}}, "YY"},
        {"fill 0", {{"YY"}, {.sketch = "C.", .fill = 0}}, "YY"},
        {"clipped", {{"R."}, {.sketch = "BB", .clipped = true}}, "B."},
        {"clipped to a hidden one",
         {{"R."}, {.sketch = "KK", .hidden = true}, {.sketch = "BB", .clipped = true}},
         "R."},
        {"mask", {{"RR"}, {.sketch = "BB", .mask = TestMask{0, 2, 0, 0, "00ff"}}}, "RB"},
        {"mask, outside", {{"RR"}, {.sketch = "BB", .mask = TestMask{0, 1, 255, 0, "00"}}}, "RB"},
        {"mask beside the canvas", {{"RR"}, {.sketch = "BB", .mask = TestMask{5, 6, 0, 0, "ff"}}}, "RR"},
        {"mask, inverted", {{"RR"}, {.sketch = "BB", .mask = TestMask{0, 2, 0, 4, "00ff"}}}, "BR"},
        {"mask, disabled", {{"RR"}, {.sketch = "BB", .mask = TestMask{0, 2, 0, 2, "00ff"}}}, "BB"},
        {"group of its own",
         {{"YY"}, kGroupEnd, {.sketch = "CC", .key = "mul "}, {.sketch = "", .divider = 1}},
         "CC"},
        {"group that passes through",
         {{"YY"}, kGroupEnd, {.sketch = "CC", .key = "mul "}, {.sketch = "", .key = "pass", .divider = 2}},
         "GG"},
        {"hidden group",
         {{"YY"}, kGroupEnd, {"CC"}, {.sketch = "", .hidden = true, .divider = 1}, {"B."}},
         "BY"},
        {"masked group",
         {{"YY"}, kGroupEnd, {"CC"}, {.sketch = "", .divider = 1, .mask = TestMask{0, 2, 0, 0, "ff00"}}},
         "CY"},
        {"group without a beginning", {{"YY"}, {.sketch = "", .divider = 1}, {"B."}}, "BY"},
        {"group without an end", {{"YY"}, kGroupEnd, {"B."}}, "BY"},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = DecodePsd(LayersOnly(row.layers).File(), {});
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        EXPECT_EQ(Sketch(picture.Value()), row.sketch) << row.name;
    }
}

TEST(Psd, FindsLayersOfEveryDepth) {
    for (const int depth : {8, 16, 32}) {
        for (const bool large : {false, true}) {
            const Document document = {.depth = depth,
                                       .merged = ByteVector(static_cast<std::size_t>(2 + 6 * depth / 8)),
                                       .layers = LayerSection({{"R."}, {".."}}, depth, large),
                                       .resources = kNoMergedPicture,
                                       .large = large};
            EXPECT_EQ(Sketch(Must(DecodePsd(document.File(), {}))), "R.") << depth << (large ? " PSB" : "");
        }
    }
}

TEST(Psd, ChoosesBetweenMergedPictureAndLayers) {
    const ByteVector blank = Hex("0000 ffff ffff ffff");
    const ByteVector drawn = Hex("0000 ff00 00ff 0000");
    const ByteVector layers = LayerSection({{"BK"}});
    const struct {
        const char* name;
        Document document;
        const char* sketch;  // null: an error
    } cases[] = {
        {"merged", {.merged = drawn, .layers = layers}, "RG"},
        {"blank and none was kept", {.merged = blank, .layers = layers, .resources = kNoMergedPicture}, "BK"},
        {"drawn, whatever the note says",
         {.merged = drawn, .layers = layers, .resources = kNoMergedPicture},
         "RG"},
        {"blank without a note", {.merged = blank, .layers = layers}, "WW"},
        {"nothing to show", {.merged = blank, .resources = kNoMergedPicture}, nullptr},
        {"merged picture missing", {.merged = {}, .layers = layers}, "BK"},
        {"packed in an unknown way", {.merged = Hex("0007 ff00 00ff 0000"), .layers = layers}, "BK"},
        {"everything missing", {.merged = {}}, nullptr},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = DecodePsd(row.document.File(), {});
        EXPECT_EQ(picture ? Sketch(picture.Value()) : "", row.sketch ? row.sketch : "") << row.name;
    }
}

TEST(Psd, ShowsWhatIsLeftOfADamagedPicture) {
    const struct {
        const char* name;
        Document document;
        const char* sketch;
    } cases[] = {
        {"grey rows", {.mode = kGrey, .channels = 1, .height = 2, .merged = Hex("0000 001c 38")}, "K1 WW"},
        {"the last colour", {.height = 2, .merged = Hex("0000 0000 ffff 0000 ffff 0000")}, "KK WW"},
        {"all but the first colour", {.height = 2, .merged = Hex("0000 0000 ffff")}, "KK WW"},
        {"black ink", {.mode = kCmyk, .channels = 4, .merged = Hex("0000 ffff ffff ffff")}, "WW"},
        {"a row that yields too little",
         {.mode = kGrey, .channels = 1, .merged = Hex("0001 0002 001c")},
         "1K"},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = DecodePsd(row.document.File(), {});
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        EXPECT_EQ(Sketch(picture.Value()), row.sketch) << row.name;
    }
}

TEST(Psd, RefusesWhatCannotBe) {
    const std::vector<TestLayer> deep(1000, kGroupEnd);
    const struct {
        const char* name;
        Document document;
    } cases[] = {
        {"a header alone", {.width = 20000, .height = 20000, .merged = {}}},
        {"a table of empty rows",
         {.mode = kGrey,
          .channels = 1,
          .width = 20000,
          .height = 10,
          .merged = Concatenate({Hex("0001"), ByteVector(20)})}},
        {"too wide",
         {.mode = kGrey, .channels = 1, .width = 70000, .merged = ByteVector(70002), .large = true}},
        {"no height", {.height = 0, .merged = Hex("0000")}},
        {"too few channels", {.mode = kCmyk, .channels = 3, .merged = Hex("0000 ffff ffff ffff ffff")}},
        {"a mode that is none", {.mode = 5, .merged = Hex("0000 ffff ffff ffff")}},
        {"a depth that is none", {.depth = 12, .merged = Hex("0000 ffff ffff ffff")}},
        {"indexes without a palette", {.mode = 2, .channels = 1, .merged = Hex("0000 0102")}},
        {"groups without end in one another", LayersOnly(deep)},
    };
    for (const auto& row : cases) EXPECT_FALSE(DecodePsd(row.document.File(), {})) << row.name;
}

TEST(Psd, ReadsTheResolution) {
    const Document document = {.merged = Hex("0000 ff00 00ff 0000"),
                               .resources = Resource(1005, Hex("012c8000 0002 0002 00960000 0002 0002"))};
    const Picture picture = Must(DecodePsd(document.File(), {}));
    EXPECT_EQ(picture.Meta().resolution.x, 300.5);
    EXPECT_EQ(picture.Meta().resolution.y, 150);
}

TEST(Psd, TheLayersOfASampleMakeItsMergedPicture) {
    SKIP_WITHOUT_SAMPLES();
    for (const char* name : {"psd/circles.psd", "psd/hidden-layer.psd", "psd/hopper_merged.psd"}) {
        const ByteVector file = test::Sample(name);
        const Picture merged = Must(DecodePsd(file, {}));
        ByteReader reader(file);
        reader.Skip(26);
        for (int section = 0; section < 3; ++section) reader.Skip(reader.U32Be());
        const Picture composed = Must(DecodePsd(Bytes(file).first(reader.Position()), {}));
        EXPECT_LE(test::LargestDifference(merged.FlattenedOnWhite(), composed.FlattenedOnWhite()), 1) << name;
    }
}

}  // namespace
}  // namespace tessara
