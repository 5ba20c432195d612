#include "core/rastx/codecs/PsdComposition.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

#include "core/rastx/Compositor.h"
#include "core/rastx/codecs/PsdPlanes.h"

namespace tessara {
namespace {

struct BlendKey {
    std::uint32_t key;
    BlendMode mode;
};
constexpr BlendKey kBlendKeys[] = {
    {PsdKey("norm"), BlendMode::Normal},      {PsdKey("diss"), BlendMode::Dissolve},
    {PsdKey("dark"), BlendMode::Darken},      {PsdKey("mul "), BlendMode::Multiply},
    {PsdKey("idiv"), BlendMode::ColorBurn},   {PsdKey("lbrn"), BlendMode::LinearBurn},
    {PsdKey("dkCl"), BlendMode::DarkerColor}, {PsdKey("lite"), BlendMode::Lighten},
    {PsdKey("scrn"), BlendMode::Screen},      {PsdKey("div "), BlendMode::ColorDodge},
    {PsdKey("lddg"), BlendMode::LinearDodge}, {PsdKey("lgCl"), BlendMode::LighterColor},
    {PsdKey("over"), BlendMode::Overlay},     {PsdKey("sLit"), BlendMode::SoftLight},
    {PsdKey("hLit"), BlendMode::HardLight},   {PsdKey("vLit"), BlendMode::VividLight},
    {PsdKey("lLit"), BlendMode::LinearLight}, {PsdKey("pLit"), BlendMode::PinLight},
    {PsdKey("hMix"), BlendMode::HardMix},     {PsdKey("diff"), BlendMode::Difference},
    {PsdKey("smud"), BlendMode::Exclusion},   {PsdKey("fsub"), BlendMode::Subtract},
    {PsdKey("fdiv"), BlendMode::Divide},      {PsdKey("hue "), BlendMode::Hue},
    {PsdKey("sat "), BlendMode::Saturation},  {PsdKey("colr"), BlendMode::Color},
    {PsdKey("lum "), BlendMode::Luminosity},
};

BlendMode BlendModeOf(std::uint32_t key) {
    const auto found = std::ranges::find(kBlendKeys, key, &BlendKey::key);
    return found == std::end(kBlendKeys) ? BlendMode::Normal : found->mode;
}

constexpr std::size_t kAlphaPlane = 4;  ///< behind as many colours as there can be
constexpr std::size_t kMostPlanes = kAlphaPlane + 1;

/// A record, or a group with the records inside.
struct Node {
    const PsdLayerRecord* record;
    std::vector<Node> children;
};

Result<std::vector<Node>> BuildTree(const std::vector<PsdLayerRecord>& records) {
    std::vector<std::vector<Node>> open(1);
    const auto close = [&] {
        std::vector<Node> members = std::move(open.back());
        open.pop_back();
        return members;
    };
    for (const PsdLayerRecord& record : records) {
        switch (record.divider) {
            case PsdLayerRecord::Divider::None:
                open.back().push_back({&record, {}});
                break;
            case PsdLayerRecord::Divider::End:
                if (open.size() > kMostNestedGroups) return TooBig("groups lie too deep in one another");
                open.emplace_back();
                break;
            case PsdLayerRecord::Divider::Group:
                if (open.size() == 1) break;  // closes nothing
                Node group = {&record, close()};
                open.back().push_back(std::move(group));
                break;
        }
    }
    // A group that was never closed is no group.
    while (open.size() > 1) {
        std::vector<Node> members = close();
        std::ranges::move(members, std::back_inserter(open.back()));
    }
    return std::move(open.front());
}

/// Turns the tree of records into layers with pixels.
class LayerBuilder {
  public:
    LayerBuilder(const PsdHeader& header, const PsdColors& colors, const Limits& limits)
        : header_(header), colors_(colors), limits_(limits), budget_(limits) {}

    Result<std::vector<Layer>> Build(const std::vector<Node>& nodes) {
        std::vector<Layer> layers;
        layers.reserve(nodes.size());
        for (const Node& node : nodes) {
            TRY_ASSIGN(Layer layer, Build(node));
            layers.push_back(std::move(layer));
        }
        return layers;
    }
    bool AnyPixels() const { return anyPixels_; }

  private:
    Result<Layer> Build(const Node& node) {
        const PsdLayerRecord& record = *node.record;
        Layer layer;
        layer.mode = BlendModeOf(record.blendKey);
        layer.opacity = static_cast<std::uint8_t>((record.opacity * record.fill + 127) / 255);
        layer.clipped = record.clipped;
        if (record.hidden) return layer;
        if (record.divider == PsdLayerRecord::Divider::Group) {
            layer.kind =
                record.blendKey == PsdKey("pass") ? Layer::Kind::PassThroughGroup : Layer::Kind::Group;
            TRY_ASSIGN(layer.children, Build(node.children));
        } else {
            TRY(LoadPixels(record, layer));
            if (layer.picture.Empty()) return layer;
        }
        TRY(LoadMask(record, layer));
        return layer;
    }

    Box Canvas() const { return {0, 0, header_.width, header_.height}; }

    /// The planes of one channel; none where they are missing or broken, which costs the channel and not the
    /// picture.
    std::optional<PsdPlanes> Open(const PsdLayerRecord& record, int id, const Box& box) const {
        const PsdPlanes::Shape shape = {
            .width = box.Width(), .height = box.Height(), .depth = header_.depth, .large = header_.large};
        Result<PsdPlanes> planes = PsdPlanes::Open(record.Samples(id), shape, limits_.decodedBytes);
        if (!planes) return std::nullopt;
        return std::move(planes).Value();
    }

    /// The columns of `part` from a row of `box`.
    Bytes Row(const std::optional<PsdPlanes>& planes, const Box& box, const Box& part, std::int64_t y,
              ByteVector& scratch) const {
        if (!planes) return {};
        scratch.resize(planes->RowBytes());
        const Bytes row = planes->Row(0, y - box.top, scratch);
        const auto bytesPerSample = static_cast<std::uint64_t>(header_.depth / 8);
        return Slice(row, static_cast<std::uint64_t>(part.left - box.left) * bytesPerSample,
                     static_cast<std::uint64_t>(part.Width()) * bytesPerSample);
    }

    Result<void> LoadPixels(const PsdLayerRecord& record, Layer& layer) {
        const Box part = record.box.Intersected(Canvas());
        if (part.Empty() || !LayerBudget::Plausible(record.box, Canvas())) return {};
        TRY(budget_.Take(record.box, part));
        std::array<std::optional<PsdPlanes>, kMostPlanes> planes;
        const auto colorPlanes = static_cast<std::size_t>(colors_.Planes());
        for (std::size_t i = 0; i < colorPlanes; ++i)
            planes[i] = Open(record, static_cast<int>(i), record.box);
        planes[kAlphaPlane] = Open(record, PsdLayerRecord::Channel::kAlpha, record.box);
        if (!planes[0]) return {};

        TRY_ASSIGN(layer.picture, Picture::Create(part.Width(), part.Height(), Alpha::Straight, limits_));
        layer.left = static_cast<int>(part.left);
        layer.top = static_cast<int>(part.top);
        anyPixels_ = true;
        std::array<ByteVector, kMostPlanes> scratch;
        PsdColors::Scratch steps;
        for (std::int64_t y = part.top; y < part.bottom; ++y) {
            std::array<Bytes, kMostPlanes> rows;
            for (std::size_t i = 0; i < rows.size(); ++i)
                rows[i] = Row(planes[i], record.box, part, y, scratch[i]);
            // A row without its first colour stays transparent, unless the layer is opaque.
            if (rows[0].empty() && planes[kAlphaPlane]) continue;
            if (planes[kAlphaPlane] && rows[kAlphaPlane].empty()) continue;
            colors_.ToPixels(std::span(rows).first(colorPlanes), rows[kAlphaPlane], PsdColors::Matte::None,
                             layer.picture.MutableRow(static_cast<int>(y - part.top)), steps);
        }
        return {};
    }

    Result<void> LoadMask(const PsdLayerRecord& record, Layer& layer) {
        if (!record.mask || record.mask->disabled) return {};
        const PsdLayerRecord::Mask& stored = *record.mask;
        const auto value = [&](std::uint8_t byte) {
            return stored.inverted ? static_cast<std::uint8_t>(255 - byte) : byte;
        };
        LayerMask mask;
        mask.outside = value(stored.outside);
        mask.box = stored.box.Intersected(Canvas());
        std::optional<PsdPlanes> planes;
        if (mask.box.Empty()) {
            mask.box = {};  // only its outside is on the canvas
        } else if (!LayerBudget::Plausible(stored.box, Canvas())) {
            return {};  // better not applied than guessed
        } else {
            TRY(budget_.Take(stored.box, mask.box));
            planes = Open(record, PsdLayerRecord::Channel::kMask, stored.box);
            if (!planes) return {};
        }
        mask.values.assign(mask.box.Area(), mask.outside);
        const auto width = static_cast<std::size_t>(mask.box.Width());
        ByteVector scratch;
        ByteVector narrow;
        for (std::int64_t y = mask.box.top; y < mask.box.bottom; ++y) {
            const Bytes row = Row(planes, stored.box, mask.box, y, scratch);
            if (row.empty()) break;
            const auto target = mask.values.begin() + (y - mask.box.top) * static_cast<std::ptrdiff_t>(width);
            std::ranges::transform(colors_.NarrowAlpha(row, width, narrow), target, value);
        }
        layer.mask = std::move(mask);
        return {};
    }

    const PsdHeader& header_;
    const PsdColors& colors_;
    const Limits& limits_;
    LayerBudget budget_;
    bool anyPixels_ = false;
};

}  // namespace

Result<Picture> ComposePsdLayers(const std::vector<PsdLayerRecord>& records, const PsdHeader& header,
                                 const PsdColors& colors, const Limits& limits) {
    if (header.depth == 1) return Unsupported("a bitmap has no layers");
    TRY_ASSIGN(const std::vector<Node> tree, BuildTree(records));
    LayerBuilder builder(header, colors, limits);
    TRY_ASSIGN(std::vector<Layer> layers, builder.Build(tree));
    if (!builder.AnyPixels())
        return Unsupported("no merged picture was kept and no layer has pixels to show");
    TRY_ASSIGN(Picture picture, ComposeLayers(std::move(layers), static_cast<int>(header.width),
                                              static_cast<int>(header.height), limits));
    colors.ToSrgb(picture.MutablePixels());
    return picture;
}

}  // namespace tessara
