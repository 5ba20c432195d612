#include "core/rastx/Compositor.h"

#include "tests/Support.h"

namespace tessara {
namespace {

using test::Draw;
using test::Must;
using test::Sketch;

Layer Raster(Picture picture, BlendMode mode = BlendMode::Normal) {
    Layer layer;
    layer.mode = mode;
    layer.picture = std::move(picture);
    layer.picture.SetAlpha(Alpha::Straight);
    return layer;
}
Layer Raster(std::string_view row, BlendMode mode = BlendMode::Normal) {
    return Raster(Draw(row), mode);
}
Layer Clipped(Layer layer) {
    layer.clipped = true;
    return layer;
}
Layer Faded(Layer layer, std::uint8_t opacity) {
    layer.opacity = opacity;
    return layer;
}
Layer Masked(Layer layer, ByteVector values, std::uint8_t outside = 0) {
    const auto width = static_cast<std::int64_t>(values.size());
    layer.mask = LayerMask{{0, 0, width, 1}, std::move(values), outside};
    return layer;
}
Layer GroupOf(std::vector<Layer> children, Layer::Kind kind = Layer::Kind::Group) {
    Layer group;
    group.kind = kind;
    group.children = std::move(children);
    return group;
}
Layer PassThrough(std::vector<Layer> children) {
    return GroupOf(std::move(children), Layer::Kind::PassThroughGroup);
}
Layer CutAway(ByteVector values) {
    return Masked(GroupOf({}, Layer::Kind::Mask), std::move(values));
}

Picture OnePixel(Pixel pixel) {
    return Must(Picture::Create(1, 1, pixel, Alpha::Straight));
}

Pixel Mix(BlendMode mode, Pixel above, Pixel below) {
    return Must(ComposeLayers({Raster(OnePixel(below)), Raster(OnePixel(above), mode)}, 1, 1, {})).At(0, 0);
}

TEST(Compositor, MixesChannels) {
    using enum BlendMode;
    const struct {
        BlendMode mode;
        std::uint8_t above, below, mixed;
    } cases[] = {
        {Normal, 51, 153, 51},      {Darken, 51, 153, 51},       {Lighten, 51, 153, 153},
        {Multiply, 51, 153, 31},    {Screen, 51, 153, 173},      {ColorDodge, 51, 153, 191},
        {ColorDodge, 255, 0, 0},    {ColorDodge, 255, 1, 255},   {ColorBurn, 204, 204, 191},
        {ColorBurn, 0, 255, 255},   {ColorBurn, 0, 254, 0},      {LinearBurn, 153, 153, 51},
        {LinearBurn, 51, 51, 0},    {LinearDodge, 51, 153, 204}, {LinearDodge, 153, 153, 255},
        {Overlay, 51, 153, 92},     {HardLight, 51, 153, 61},    {HardLight, 153, 51, 92},
        {SoftLight, 51, 153, 116},  {SoftLight, 204, 51, 89},    {VividLight, 102, 204, 191},
        {VividLight, 153, 51, 64},  {LinearLight, 51, 204, 51},  {PinLight, 51, 153, 102},
        {PinLight, 204, 51, 153},   {HardMix, 100, 155, 255},    {HardMix, 100, 154, 0},
        {Difference, 51, 153, 102}, {Difference, 153, 51, 102},  {Exclusion, 51, 153, 143},
        {Subtract, 51, 153, 102},   {Subtract, 153, 51, 0},      {Divide, 204, 153, 191},
        {Divide, 0, 0, 255},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Mix(row.mode, Grey(row.above), Grey(row.below)), Grey(row.mixed))
            << "mode " << static_cast<int>(row.mode) << ", " << +row.above << " on " << +row.below;
}

TEST(Compositor, MixesWholeColors) {
    using enum BlendMode;
    constexpr Pixel kRed = {0, 0, 255, 255};
    constexpr Pixel kGreen = {0, 255, 0, 255};
    constexpr Pixel kBlue = {255, 0, 0, 255};
    constexpr Pixel kDarkRed = {0, 0, 102, 255};
    // Red at the luminance of a grey of 100: pushed up, then drawn back towards grey where it leaves the
    // gamut.
    constexpr Pixel kPaleRed = {34, 34, 255, 255};
    const struct {
        BlendMode mode;
        Pixel above, below, mixed;
    } cases[] = {
        {DarkerColor, kRed, kGreen, kRed},
        {LighterColor, kRed, kGreen, kGreen},
        {Color, kRed, Grey(100), kPaleRed},
        {Luminosity, Grey(100), kRed, kPaleRed},
        {Hue, kRed, Grey(100), Grey(100)},
        {Saturation, Grey(100), kGreen, Grey(150)},
        {HslHue, kRed, kBlue, kRed},
        {HslLightness, Grey(51), kRed, kDarkRed},
        {HslSaturation, Grey(9), kDarkRed, Grey(51)},
        {HslColor, kRed, Grey(51), kDarkRed},
        {HslColor, kRed, kWhite, kWhite},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Mix(row.mode, row.above, row.below), row.mixed) << "mode " << static_cast<int>(row.mode);
}

TEST(Compositor, ABlendModeTakesPartOnlyWhereThereIsSomethingBelow) {
    const Picture picture = Must(ComposeLayers({Raster("Y."), Raster("CC", BlendMode::Multiply)}, 2, 1, {}));
    EXPECT_EQ(Sketch(picture), "GC");
}

TEST(Compositor, ArrangesLayers) {
    using enum BlendMode;
    const struct {
        const char* name;
        std::vector<Layer> layers;
        const char* composed;
    } cases[] = {
        {"the first is the lowest", {Raster("RR"), Raster(".B")}, "RB"},
        {"a group has a canvas of its own", {Raster("YY"), GroupOf({Raster("CC", Multiply)})}, "CC"},
        {"a group that passes through has none", {Raster("YY"), PassThrough({Raster("CC", Multiply)})}, "GG"},
        {"faded away", {Raster("YY"), Faded(PassThrough({Raster("CC")}), 0)}, "YY"},
        {"masked", {Raster("RR"), Masked(Raster("BB"), {0, 255})}, "RB"},
        {"masked beside the stored part", {Raster("RR"), Masked(Raster("BB"), {0}, 255)}, "RB"},
        {"a masked group", {Raster("RR"), Masked(GroupOf({Raster("BB")}), {0, 255})}, "RB"},
        {"a masked group that passes through",
         {Raster("YY"), Masked(PassThrough({Raster("CC", Multiply)}), {255, 0})},
         "GY"},
        {"clipped", {Raster(".R"), Clipped(Raster("BB"))}, ".B"},
        {"clipped to a masked layer", {Masked(Raster("RR"), {255, 0}), Clipped(Raster("BB"))}, "B."},
        {"clipped to a group", {GroupOf({Raster("R.")}), Clipped(Raster("BB"))}, "B."},
        {"clipped twice", {Raster("R."), Clipped(Raster("YY")), Clipped(Raster("CC", Multiply))}, "G."},
        {"the base mixes for those clipped to it",
         {Raster("YY"), Raster("WW", Multiply), Clipped(Raster("CC"))},
         "GG"},
        {"clipped to what is hidden", {Raster("RR"), Layer(), Clipped(Raster("BB"))}, "RR"},
        {"clipped to nothing", {Clipped(Raster("BB"))}, "BB"},
        {"cut away", {Raster("RR"), Raster("BB"), CutAway({255, 0})}, "B."},
        {"cut away inside a group", {Raster("RR"), GroupOf({Raster("BB"), CutAway({255, 0})})}, "BR"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Sketch(Must(ComposeLayers(row.layers, 2, 1, {}))), row.composed) << row.name;
}

TEST(Compositor, PlacesLayers) {
    Layer layer = Raster("B");
    layer.left = 1;
    layer.top = 1;
    EXPECT_EQ(Sketch(Must(ComposeLayers({Raster("RRR RRR RRR"), layer}, 3, 3, {}))), "RRR RBR RRR");
}

TEST(Compositor, RoundsOnceAtTheEnd) {
    // Ten coats of one part in 255 each: rounding at every step would leave ten or none of them.
    std::vector<Layer> coats = {Raster(OnePixel(kBlack))};
    for (int i = 0; i < 10; ++i) coats.push_back(Faded(Raster(OnePixel(Grey(100))), 1));
    EXPECT_EQ(Must(ComposeLayers(coats, 1, 1, {})).At(0, 0), Grey(4));
    // A colour alone on the canvas keeps its value however thin it is.
    const Picture thin = Must(ComposeLayers({Faded(Raster(OnePixel({10, 20, 30, 255})), 3)}, 1, 1, {}));
    EXPECT_EQ(thin.At(0, 0), (Pixel{10, 20, 30, 3}));
}

TEST(Compositor, DissolveShowsAShareOfThePixelsWhole) {
    const Layer noise =
        Faded(Raster(Must(Picture::Create(64, 64, kWhite, Alpha::Straight)), BlendMode::Dissolve), 64);
    const Picture picture = Must(ComposeLayers({noise}, 64, 64, {}));
    const auto shown = std::ranges::count(picture.Pixels(), kWhite);
    EXPECT_EQ(shown + std::ranges::count(picture.Pixels(), kTransparent), 64 * 64);
    EXPECT_NEAR(static_cast<double>(shown) / (64 * 64), 0.25, 0.05);
    EXPECT_EQ(test::LargestDifference(picture, Must(ComposeLayers({noise}, 64, 64, {}))), 0);
}

TEST(Compositor, RefusesEndlessWork) {
    Limits limits;
    limits.decodedBytes = 4 * 100;
    std::vector<Layer> layers(1000, Raster("RRRRRRRRRR"));
    const Result<Picture> picture = ComposeLayers(layers, 10, 10, limits);
    ASSERT_FALSE(picture);
    EXPECT_EQ(picture.Error().kind, FailureKind::TooBig);
}

}  // namespace
}  // namespace tessara
