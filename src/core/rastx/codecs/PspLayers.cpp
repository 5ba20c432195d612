#include "core/rastx/codecs/PspLayers.h"

#include <algorithm>

namespace tessara {
namespace {

BlendMode BlendModeOf(std::uint8_t code) {
    constexpr BlendMode kModes[] = {
        BlendMode::Normal,       BlendMode::Darken,     BlendMode::Lighten,       BlendMode::Hue,
        BlendMode::Saturation,   BlendMode::Color,      BlendMode::Luminosity,    BlendMode::Multiply,
        BlendMode::Screen,       BlendMode::Dissolve,   BlendMode::Overlay,       BlendMode::HardLight,
        BlendMode::SoftLight,    BlendMode::Difference, BlendMode::ColorDodge,    BlendMode::ColorBurn,
        BlendMode::Exclusion,    BlendMode::HslHue,     BlendMode::HslSaturation, BlendMode::HslColor,
        BlendMode::HslLightness,
    };
    return code < std::size(kModes) ? kModes[code] : BlendMode::Normal;
}

Box ReadBox(ByteReader& reader) {
    Box box;
    box.left = reader.I32Le();
    box.top = reader.I32Le();
    box.right = reader.I32Le();
    box.bottom = reader.I32Le();
    return box;
}

/// Only a part of each rectangle is stored; it is given relative to the rectangle's corner.
Box ReadStoredBox(ByteReader& reader, const Box& whole) {
    const Box part = ReadBox(reader);
    return {whole.left + part.left, whole.top + part.top, whole.left + part.right, whole.top + part.bottom};
}

Result<PspLayer> ReadInformation(Bytes chunk, int version) {
    ByteReader reader(chunk);
    constexpr std::uint32_t kFixedName = 256;  // of version 3
    reader.Skip(version == 3 ? kFixedName : reader.U16Le());
    PspLayer layer;
    const std::uint8_t type = reader.U8();
    // Version 3 has rasters and floating selections only, with other numbers.
    layer.type = version == 3 ? PspLayer::Type::Raster : static_cast<PspLayer::Type>(type);
    const Box whole = ReadBox(reader);
    layer.box = ReadStoredBox(reader, whole);
    layer.opacity = reader.U8();
    layer.blend = reader.U8();
    layer.visible = version == 3 ? reader.U8() != 0 : (reader.U8() & 1) != 0;
    reader.Skip(2);
    const Box wholeMask = ReadBox(reader);
    layer.maskBox = ReadStoredBox(reader, wholeMask);
    reader.Skip(1);
    layer.maskDisabled = reader.U8() != 0;
    layer.maskInverted = reader.U8() != 0;
    if (reader.Overrun()) return Damaged("a layer is cut off");
    return layer;
}

Result<PspLayer> ReadLayer(PspContent content, int version) {
    TRY_ASSIGN(PspLayer layer, ReadInformation(content.Chunk(), version));
    // Between the information and the channels lie extensions, as blocks, and a chunk that counts the
    // channels.
    while (!content.AtEnd()) {
        if (!content.AtBlock()) {
            if (content.Chunk().empty()) break;
            continue;
        }
        std::optional<PspBlock> block = content.Block();
        if (!block) break;
        if (block->id == PspId::Channel) layer.channels.push_back(ReadPspChannel(block->content));
        if (block->id == PspId::Group) layer.memberCount = ByteReader(block->content.Chunk()).U32Le();
    }
    return layer;
}

/// Moves the layers that belong to a group into it.
class GroupGatherer {
  public:
    explicit GroupGatherer(std::vector<PspLayer> flat) : flat_(std::move(flat)) {}

    Result<std::vector<PspLayer>> Gather() { return Gather(flat_.size(), 0); }

  private:
    Result<std::vector<PspLayer>> Gather(std::size_t count, int depth) {
        constexpr int kMostNested = 16;
        static_assert(kMostNested <= kMostNestedGroups);
        if (depth > kMostNested) return TooBig("groups lie too deep in one another");
        std::vector<PspLayer> layers;
        for (std::size_t i = 0; i < count && next_ < flat_.size(); ++i) {
            PspLayer layer = std::move(flat_[next_++]);
            if (layer.type == PspLayer::Type::Group) {
                TRY_ASSIGN(layer.members, Gather(layer.memberCount, depth + 1));
            }
            if (layer.visible) layers.push_back(std::move(layer));
        }
        return layers;
    }

    std::vector<PspLayer> flat_;
    std::size_t next_ = 0;
};

class LayerBuilder {
  public:
    LayerBuilder(const PspLayout& layout, const Box& canvas, const Limits& limits)
        : layout_(layout), canvas_(canvas), limits_(limits), budget_(limits) {}

    Result<std::vector<Layer>> Build(const std::vector<PspLayer>& stored, int depth = 0) {
        std::vector<Layer> layers;
        for (const PspLayer& layer : stored) {
            TRY_ASSIGN(Layer built, Build(layer, depth));
            const bool ground = depth == 0 && layers.empty() && layer.HasPixels();
            // A background keeps its full strength, whatever its opacity field says.
            if (ground && !layer.Channel(PspChannel::Use::Alpha) && built.mode == BlendMode::Normal)
                built.opacity = 255;
            layers.push_back(std::move(built));
        }
        return layers;
    }
    bool AnyPixels() const { return anyPixels_; }

  private:
    Result<Layer> Build(const PspLayer& stored, int depth) {
        Layer layer;
        layer.mode = BlendModeOf(stored.blend);
        layer.opacity = stored.opacity;
        if (stored.type == PspLayer::Type::Group) {
            layer.kind = Layer::Kind::Group;
            TRY_ASSIGN(layer.children, Build(stored.members, depth + 1));
        } else if (stored.type == PspLayer::Type::Mask) {
            if (stored.maskDisabled || !stored.Channel(PspChannel::Use::Mask)) return layer;
            layer.kind = Layer::Kind::Mask;
        } else if (stored.HasPixels()) {
            TRY(LoadPixels(stored, layer));
        }
        TRY(LoadMask(stored, layer));
        return layer;
    }

    Result<void> LoadPixels(const PspLayer& stored, Layer& layer) {
        const Box part = stored.box.Intersected(canvas_);
        if (part.Empty() || !LayerBudget::Plausible(stored.box, canvas_)) return {};
        TRY(budget_.Take(stored.box, part));
        TRY_ASSIGN(const PspBitmap bitmap,
                   PspBitmap::Open(stored.channels, PspChannel::Use::Color, PspChannel::Use::Alpha, layout_,
                                   stored.box.Width(), stored.box.Height(), limits_));
        if (bitmap.UsableRows() == 0) return {};
        TRY_ASSIGN(layer.picture, Picture::Create(part.Width(), part.Height(), Alpha::Straight, limits_));
        layer.left = static_cast<int>(part.left);
        layer.top = static_cast<int>(part.top);
        bitmap.ToPixels(OwnPart(part, stored.box), layer.picture.MutablePixels());
        anyPixels_ = true;
        return {};
    }

    Result<void> LoadMask(const PspLayer& stored, Layer& layer) {
        const PspChannel* channel = stored.Channel(PspChannel::Use::Mask);
        if (!channel || stored.maskDisabled) return {};
        const Box& box = stored.maskBox.Empty() ? stored.box : stored.maskBox;
        const std::uint8_t inversion = stored.maskInverted ? 255 : 0;
        LayerMask mask;
        mask.outside = inversion;
        mask.box = box.Intersected(canvas_);
        if (mask.box.Empty() || !LayerBudget::Plausible(box, canvas_)) mask.box = {};
        if (!mask.box.Empty()) TRY(budget_.Take(box, mask.box));
        mask.values.assign(mask.box.Area(), mask.outside);
        if (!mask.box.Empty()) {
            const int bits = layout_.BitsPerSample() == 16 ? 16 : 8;
            TRY_ASSIGN(const PspPlane plane, PspPlane::Unpack(channel->data, layout_.compression, box.Width(),
                                                              box.Height(), bits, limits_));
            CopyMask(plane, OwnPart(mask.box, box), inversion, mask.values);
        }
        layer.mask = std::move(mask);
        return {};
    }

    static void CopyMask(const PspPlane& plane, const Box& part, std::uint8_t inversion, ByteVector& values) {
        const auto width = static_cast<std::size_t>(part.Width());
        ByteVector scratch;
        auto target = values.begin();
        for (std::int64_t y = part.top; y < part.bottom; ++y) {
            const Bytes row = plane.Row(y, part.left, width, scratch);
            if (row.empty()) return;
            target = std::ranges::transform(row, target, [&](std::uint8_t value) -> std::uint8_t {
                         return value ^ inversion;
                     }).out;
        }
    }

    static Box OwnPart(const Box& part, const Box& box) {
        return {part.left - box.left, part.top - box.top, part.right - box.left, part.bottom - box.top};
    }

    const PspLayout& layout_;
    const Box& canvas_;
    const Limits& limits_;
    LayerBudget budget_;
    bool anyPixels_ = false;
};

}  // namespace

const PspChannel* PspLayer::Channel(PspChannel::Use use) const {
    const auto found = std::ranges::find(channels, use, &PspChannel::use);
    return found == channels.end() ? nullptr : &*found;
}

Result<std::vector<PspLayer>> ReadPspLayers(PspContent bank, int version) {
    std::vector<PspLayer> flat;
    bank.Chunk();
    while (std::optional<PspBlock> block = bank.Block()) {
        if (block->id != PspId::Layer) break;
        Result<PspLayer> layer = ReadLayer(block->content, version);
        if (!layer) break;
        flat.push_back(std::move(layer).Value());
    }
    return GroupGatherer(std::move(flat)).Gather();
}

bool CanDrawAll(const std::vector<PspLayer>& layers) {
    return std::ranges::all_of(layers, [](const PspLayer& layer) {
        if (layer.type == PspLayer::Type::Group) return CanDrawAll(layer.members);
        return layer.HasPixels() || layer.type == PspLayer::Type::Mask;
    });
}

bool HasOpaqueGround(const std::vector<PspLayer>& layers, const Box& canvas) {
    if (layers.empty() || std::ranges::find(layers, PspLayer::Type::Mask, &PspLayer::type) != layers.end())
        return false;
    const PspLayer& ground = layers.front();
    return ground.HasPixels() && !ground.Channel(PspChannel::Use::Alpha) &&
           !ground.Channel(PspChannel::Use::Mask) && ground.box.Intersected(canvas) == canvas;
}

Result<Picture> ComposePspLayers(const std::vector<PspLayer>& layers, const PspLayout& layout,
                                 const Box& canvas, const Limits& limits) {
    LayerBuilder builder(layout, canvas, limits);
    TRY_ASSIGN(std::vector<Layer> built, builder.Build(layers));
    if (!builder.AnyPixels()) return Unsupported("no layer has pixels to show");
    return ComposeLayers(std::move(built), static_cast<int>(canvas.right), static_cast<int>(canvas.bottom),
                         limits);
}

}  // namespace tessara
