#include "core/rastx/codecs/Psp.h"

#include "core/ByteSink.h"
#include "core/rastx/codecs/Jpg.h"
#include "tests/Support.h"

namespace tessara {
namespace {

using test::Concatenate;
using test::Draw;
using test::Hex;
using test::Must;
using test::Sketch;

enum Type { kRaster = 1, kFloating = 2, kVector = 3, kGroup = 5, kMask = 6 };

struct Mask {
    int left = 0, right = 0;
    std::string_view values;
    bool disabled = false, inverted = false;
};

/// A layer of one row whose picture is given as a sketch; it has an alpha channel where a '.' occurs.
struct TestLayer {
    std::string_view sketch;
    int type = kRaster;
    int left = 0, top = 0;
    int savedLeft = 0;  // only what lies to the right is stored
    int opacity = 255, blend = 0;
    bool visible = true;
    int members = 0;
    std::optional<Mask> mask = {};
};

/// Writes the pieces of a file of one version.
class Writer {
  public:
    explicit Writer(int version) : version_(version) {}

    ByteVector Block(int id, Bytes content, std::uint32_t initial = 0) const {
        ByteWriter block;
        block.Text({"~BK\0", 4}).U16Le(static_cast<std::uint32_t>(id));
        if (version_ == 3) block.U32Le(initial);
        return block.U32Le(static_cast<std::uint32_t>(content.size())).Append(content).TakeBytes();
    }
    /// Information at the beginning of a block; later versions store its length.
    ByteVector Chunk(const ByteWriter& information) const {
        ByteWriter chunk;
        if (version_ > 3) chunk.U32Le(static_cast<std::uint32_t>(information.Size()) + 4);
        return chunk.Append(information.Written()).TakeBytes();
    }
    ByteVector Attributes(int width, int height, int depth, int compression, bool grey) const {
        ByteWriter fields;
        fields.I32Le(width).I32Le(height).U64Le(0x4059000000000000).U8(1);  // 100 dots per inch
        fields.U16Le(static_cast<std::uint32_t>(compression)).U16Le(static_cast<std::uint32_t>(depth));
        fields.U16Le(1).U32Le(0).U8(grey).U32Le(0).U32Le(0).U16Le(1);
        if (version_ > 3) fields.U32Le(0);
        return Block(0, Chunk(fields), static_cast<std::uint32_t>(fields.Size()));
    }
    ByteVector Channel(int use, int component, Bytes data) const {
        ByteWriter fields;
        fields.U32Le(static_cast<std::uint32_t>(data.size())).U32Le(999);
        fields.U16Le(static_cast<std::uint32_t>(use)).U16Le(static_cast<std::uint32_t>(component));
        return Block(5, Concatenate({Chunk(fields), ByteVector(data.begin(), data.end())}), 12);
    }
    /// Uncompressed channels of 8 bits for red, green, blue and alpha.
    ByteVector Channels(const Picture& picture, int colorUse, int alphaUse) const {
        ByteVector planes[4];
        for (const Pixel pixel : picture.Pixels()) {
            planes[0].push_back(pixel.a);
            planes[1].push_back(pixel.r);
            planes[2].push_back(pixel.g);
            planes[3].push_back(pixel.b);
        }
        ByteVector channels;
        for (int i = picture.HasAlpha() ? 0 : 1; i < 4; ++i)
            channels = Concatenate({channels, Channel(i == 0 ? alphaUse : colorUse, i, planes[i])});
        return channels;
    }
    ByteVector Layer(const TestLayer& layer) const {
        const Picture picture = layer.sketch.empty() ? Picture() : Draw(layer.sketch);
        ByteVector channels = Channels(picture, 0, 1);
        if (picture.Empty()) channels.clear();
        if (layer.mask) channels = Concatenate({channels, Channel(2, 0, Hex(layer.mask->values))});
        return Layer(layer, picture.Width(), picture.Height(), channels);
    }
    ByteVector Layer(const TestLayer& layer, int width, int height, const ByteVector& channels) const {
        ByteWriter fields;
        if (version_ == 3)
            fields.Zeros(256);
        else
            fields.U16Le(3).Text("abc");
        fields.U8(static_cast<std::uint32_t>(version_ == 3 ? 0 : layer.type));
        Rectangle(fields, layer.left, layer.top, width + layer.savedLeft, height);
        Rectangle(fields, layer.savedLeft, 0, width, height);
        fields.U8(static_cast<std::uint32_t>(layer.opacity)).U8(static_cast<std::uint32_t>(layer.blend));
        fields.U8(layer.visible).Zeros(2);
        const Mask mask = layer.mask.value_or(Mask{});
        Rectangle(fields, mask.left - 1, 0, mask.right - mask.left + 1, 1);
        Rectangle(fields, 1, 0, mask.right - mask.left, 1);
        fields.U8(0).U8(mask.disabled).U8(mask.inverted).Zeros(2 + 40);
        if (version_ == 3) {
            fields.U16Le(1).U16Le(3);
            return Block(4, Concatenate({Chunk(fields), channels}),
                         static_cast<std::uint32_t>(fields.Size()));
        }
        ByteVector extensions;
        if (layer.type == kGroup)
            extensions =
                Block(25, Chunk(ByteWriter().U32Le(static_cast<std::uint32_t>(layer.members)).U8(0)));
        if (version_ >= 10) extensions = Concatenate({extensions, Block(33, ByteVector(263, 9))});
        return Block(
            4, Concatenate({Chunk(fields), extensions, Chunk(ByteWriter().U16Le(1).U16Le(3)), channels}));
    }
    ByteVector Bank(const std::vector<TestLayer>& layers) const {
        ByteVector bank;
        for (const TestLayer& layer : layers) bank = Concatenate({bank, Layer(layer)});
        return Block(3, bank);
    }
    ByteVector Palette(std::string_view hex) const {
        const ByteVector colors = Hex(hex);
        const ByteWriter count = ByteWriter().U32Le(static_cast<std::uint32_t>(colors.size() / 4));
        return Block(2, Concatenate({Chunk(count), colors}), 4);
    }
    ByteVector File(std::initializer_list<ByteVector> blocks) const {
        ByteWriter head;
        head.Text("Paint Shop Pro Image File\n\x1a")
            .Zeros(5)
            .U16Le(static_cast<std::uint32_t>(version_))
            .U16Le(0);
        return Concatenate({head.TakeBytes(), Concatenate(blocks)});
    }
    ByteVector Layers(const std::vector<TestLayer>& layers) const {
        return File({Attributes(2, 1, 24, 0, false), Bank(layers), Hex("0a")});
    }

  private:
    static void Rectangle(ByteWriter& fields, int left, int top, int width, int height) {
        fields.I32Le(left).I32Le(top).I32Le(left + width).I32Le(top + height);
    }

    int version_;
};

TEST(Psp, ComposesTheLayersOfEveryVersion) {
    for (const int version : {3, 4, 5, 6, 8, 10, 13}) {
        const Picture picture = Must(DecodePsp(
            Writer(version).Layers({{"RR"}, {.sketch = ".B"}, {.sketch = "GG", .visible = false}}), {}));
        EXPECT_EQ(Sketch(picture), "RB") << version;
        EXPECT_EQ(picture.Meta().resolution.x, 100) << version;
    }
}

TEST(Psp, ArrangesLayers) {
    const Mask right = {0, 2, "00ff"};
    const struct {
        const char* name;
        std::vector<TestLayer> layers;
        const char* sketch;
    } cases[] = {
        {"sticking out", {{"RR"}, {.sketch = "GBB", .left = -1}, {.sketch = "K", .top = -1}}, "BB"},
        {"stored in part", {{"RR"}, {.sketch = "B", .left = -2, .savedLeft = 3}}, "RB"},
        {"floating", {{"RR"}, {.sketch = ".B", .type = kFloating}}, "RB"},
        {"blend mode", {{"YY"}, {.sketch = "C.", .blend = 7}}, "GY"},
        {"unknown blend mode", {{"YY"}, {.sketch = "C.", .blend = 99}}, "CY"},
        {"opacity", {{"YY"}, {.sketch = "CC", .opacity = 0}}, "YY"},
        {"opacity of the background counts for nothing", {{.sketch = "YY", .opacity = 0}}, "YY"},
        {"masked", {{"RR"}, {.sketch = "BB", .mask = right}}, "RB"},
        {"nothing is seen beside the mask", {{"RR"}, {.sketch = "BB", .mask = Mask{0, 1, "ff"}}}, "BR"},
        {"inverted mask", {{"RR"}, {.sketch = "BB", .mask = Mask{0, 1, "ff", false, true}}}, "RB"},
        {"disabled mask", {{"RR"}, {.sketch = "BB", .mask = Mask{0, 1, "ff", true}}}, "BB"},
        {"group", {{"YY"}, {.sketch = "", .type = kGroup, .members = 1}, {.sketch = "CC", .blend = 7}}, "CC"},
        {"group that multiplies",
         {{"YY"}, {.sketch = "", .type = kGroup, .blend = 7, .members = 1}, {"CC"}, {".R"}},
         "GR"},
        {"hidden group",
         {{"YY"}, {.sketch = "", .type = kGroup, .visible = false, .members = 2}, {"CC"}, {"RR"}, {".B"}},
         "YB"},
        {"group in a hidden group",
         {{"YY"},
          {.sketch = "", .type = kGroup, .visible = false, .members = 1},
          {.sketch = "", .type = kGroup, .members = 1},
          {"CC"},
          {".B"}},
         "YB"},
        {"mask layer", {{"RR"}, {"BB"}, {.sketch = "", .type = kMask, .mask = right}}, ".B"},
        {"mask layer in a group",
         {{"RR"},
          {.sketch = "", .type = kGroup, .members = 2},
          {"BB"},
          {.sketch = "", .type = kMask, .mask = right}},
         "RB"},
        {"what has no pixels is passed over", {{"RR"}, {.sketch = "", .type = kVector}, {".B"}}, "RB"},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture = DecodePsp(Writer(8).Layers(row.layers), {});
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        EXPECT_EQ(Sketch(picture.Value()), row.sketch) << row.name;
    }
}

TEST(Psp, ReadsEveryDepthAndCompression) {
    const Writer writer(5);
    const ByteVector colors = writer.Palette("00000000 0000ff00 00ff0000");
    const ByteVector transparentRed = writer.Block(10, Hex("7e464c00 0000 02000000 0100"));
    const struct {
        const char* name;
        int depth;
        bool grey;
        int compression;
        ByteVector before;
        std::vector<const char*> planes;
        const char* sketch;
    } cases[] = {
        {"1 bit, padded", 1, false, 0, colors, {"40000000 a0000000"}, "KRK RKR"},
        {"1 bit, not padded", 1, false, 0, colors, {"40 a0"}, "KRK RKR"},
        {"4 bits", 4, false, 0, colors, {"01200000 21000000"}, "KRG GRK"},
        {"8 bits", 8, false, 0, colors, {"000102 020100"}, "KRG GRK"},
        {"behind the palette", 8, false, 0, colors, {"000103 ff0100"}, "KRK KRK"},
        {"transparent index",
         8,
         false,
         0,
         Concatenate({colors, transparentRed}),
         {"000102 020100"},
         "K.G G.K"},
        {"grey", 8, true, 0, {}, {"001c38 381c00"}, "K12 21K"},
        {"grey, padded rows", 8, true, 0, {}, {"001c3899 381c0099"}, "K12 21K"},
        {"16 bits, rounded", 16, true, 0, {}, {"0000 9c1b 3838 3838 9b1c 0000"}, "K12 21K"},
        {"24 bits", 24, false, 0, {}, {"ff0000 0000ff", "00ff00 00ff00", "0000ff ff0000"}, "RGB BGR"},
        {"48 bits",
         48,
         false,
         0,
         {},
         {"ffff00000000 00000000ffff", "0000ffff0000 0000ffff0000", "00000000ffff ffff00000000"},
         "RGB BGR"},
        {"runs over the rows", 8, true, 1, {}, {"02001c 8238 02 1c00"}, "K12 21K"},
        {"runs and nothing", 8, true, 1, {}, {"00 85 1c 00 03 38"}, "111 112"},
        {"zlib", 8, true, 2, {}, {"7801 01 0600 f9ff 001c38381c00"}, "K12 21K"},
    };
    for (const auto& row : cases) {
        ByteVector channels;
        int component = row.planes.size() == 3 ? 1 : 0;
        for (const char* plane : row.planes)
            channels = Concatenate({channels, writer.Channel(0, component++, Hex(plane))});
        const ByteVector file = writer.File({writer.Attributes(3, 2, row.depth, row.compression, row.grey),
                                             row.before, writer.Block(3, writer.Layer({}, 3, 2, channels))});
        const Result<Picture> picture = DecodePsp(file, {});
        ASSERT_TRUE(picture) << row.name << ": " << picture.Error().message;
        EXPECT_EQ(Sketch(picture.Value()), row.sketch) << row.name;
    }
}

struct TestComposite {
    std::string_view sketch;
    bool thumbnail = false, jpeg = false;
    int missing = 0;  // bytes of the last channel, as in a damaged file
};

ByteVector CompositeBank(const Writer& writer, const std::vector<TestComposite>& composites) {
    ByteVector bank = writer.Chunk(ByteWriter().U32Le(static_cast<std::uint32_t>(composites.size())));
    ByteVector pictures;
    for (const TestComposite& composite : composites) {
        const Picture picture = Draw(composite.sketch);
        ByteWriter fields;
        fields.I32Le(picture.Width()).I32Le(picture.Height()).U16Le(24).U16Le(composite.jpeg ? 3 : 0);
        fields.U16Le(1).U32Le(0).U16Le(composite.thumbnail);
        bank = Concatenate({bank, writer.Block(17, writer.Chunk(fields))});
        if (composite.jpeg) {
            MemorySink jpeg;
            Must(EncodeJpg(picture, {.quality = 100}, jpeg));
            const auto length = static_cast<std::uint32_t>(jpeg.Written().size());
            const ByteVector chunk = writer.Chunk(ByteWriter().U32Le(length).U32Le(0).U16Le(8));
            pictures = Concatenate({pictures, writer.Block(18, Concatenate({chunk, jpeg.Written()}))});
        } else {
            ByteVector channels = writer.Channels(picture, 8, 9);
            channels.resize(channels.size() - static_cast<std::size_t>(composite.missing));
            const ByteVector chunk = writer.Chunk(ByteWriter().U16Le(1).U16Le(3));
            pictures = Concatenate({pictures, writer.Block(9, Concatenate({chunk, channels}))});
        }
    }
    return writer.Block(16, Concatenate({bank, pictures}));
}

TEST(Psp, ChoosesAmongThePicturesOfAFile) {
    const Writer writer(8);
    const TestLayer vector = {.sketch = "", .type = kVector};
    const struct {
        const char* name;
        std::vector<TestComposite> composites;
        std::vector<TestLayer> layers;
        const char* sketch;  // null: an error
    } cases[] = {
        {"the composite", {{"GG"}}, {{"RR"}}, "GG"},
        {"the composite behind a thumbnail", {{.sketch = "KK", .thumbnail = true}, {"GG"}}, {{"RR"}}, "GG"},
        {"the composite with alpha", {{"G."}}, {{"R."}}, "G."},
        {"layers keep the alpha that the composite lost", {{"GW"}}, {{"R."}}, "R."},
        {"but not where they cannot be drawn", {{"GW"}}, {{"R."}, vector}, "GW"},
        {"layers rather than JPEG", {{.sketch = "KK", .jpeg = true}}, {{"RR"}}, "RR"},
        {"JPEG rather than a part of the layers", {{.sketch = "KK", .jpeg = true}}, {{"RR"}, vector}, "KK"},
        {"a part of the layers rather than a thumbnail",
         {{.sketch = "KK", .thumbnail = true}},
         {{"RR"}, vector},
         "RR"},
        {"no composite of another size", {{"GGG"}}, {{"RR"}}, "RR"},
        {"layers rather than a damaged composite", {{.sketch = "GG", .missing = 1}}, {{"RR"}}, "RR"},
        {"a damaged composite rather than nothing", {{.sketch = "KK", .missing = 3}}, {}, "KK"},
        {"never a thumbnail", {{.sketch = "KK", .thumbnail = true}}, {}, nullptr},
        {"nothing at all", {}, {}, nullptr},
    };
    for (const auto& row : cases) {
        const Result<Picture> picture =
            DecodePsp(writer.File({writer.Attributes(2, 1, 24, 0, false),
                                   CompositeBank(writer, row.composites), writer.Bank(row.layers)}),
                      {});
        EXPECT_EQ(picture ? Sketch(picture.Value()) : "", row.sketch ? row.sketch : "") << row.name;
    }
}

TEST(Psp, RefusesWhatCannotBe) {
    const Writer writer(5);
    const ByteVector layer = writer.Bank({{"RR"}});
    const std::vector<TestLayer> deep(100, TestLayer{.sketch = "", .type = kGroup, .members = 1});
    const struct {
        const char* name;
        ByteVector file;
    } cases[] = {
        {"version 2", Writer(2).Layers({{"RR"}})},
        {"no attributes", writer.File({layer})},
        {"no width", writer.File({writer.Attributes(0, 1, 24, 0, false), layer})},
        {"a depth that is none", writer.File({writer.Attributes(2, 1, 12, 0, false), layer})},
        {"indexes without a palette", writer.File({writer.Attributes(2, 1, 8, 0, false), layer})},
        {"packed in an unknown way", writer.File({writer.Attributes(2, 1, 24, 3, false), layer})},
        {"groups without end in one another", writer.Layers(deep)},
        {"a layer of any size",
         writer.File({writer.Attributes(60000, 8000, 24, 1, false),
                      writer.Block(3, writer.Layer({}, 60000, 8000, writer.Channel(0, 1, {})))})},
    };
    for (const auto& row : cases) EXPECT_FALSE(DecodePsp(row.file, {})) << row.name;
}

TEST(Psp, ShowsTheLayersBeforeACut) {
    ByteVector file = Writer(8).Layers({{"RR"}, {"BB"}});
    file.resize(file.size() - 200);
    EXPECT_EQ(Sketch(Must(DecodePsp(file, {}))), "RR");
}

}  // namespace
}  // namespace tessara
