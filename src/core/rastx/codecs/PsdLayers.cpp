#include "core/rastx/codecs/PsdLayers.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "core/ByteReader.h"
#include "core/rastx/codecs/PsdPlanes.h"

namespace tessara {
namespace {

constexpr std::uint32_t Key(std::string_view letters) {
    std::uint32_t key = 0;
    for (const char letter : letters) key = key << 8 | static_cast<std::uint8_t>(letter);
    return key;
}

struct BlendKey {
    std::uint32_t key;
    BlendMode mode;
};
constexpr BlendKey kBlendKeys[] = {
    {Key("norm"), BlendMode::Normal},      {Key("diss"), BlendMode::Dissolve},
    {Key("dark"), BlendMode::Darken},      {Key("mul "), BlendMode::Multiply},
    {Key("idiv"), BlendMode::ColorBurn},   {Key("lbrn"), BlendMode::LinearBurn},
    {Key("dkCl"), BlendMode::DarkerColor}, {Key("lite"), BlendMode::Lighten},
    {Key("scrn"), BlendMode::Screen},      {Key("div "), BlendMode::ColorDodge},
    {Key("lddg"), BlendMode::LinearDodge}, {Key("lgCl"), BlendMode::LighterColor},
    {Key("over"), BlendMode::Overlay},     {Key("sLit"), BlendMode::SoftLight},
    {Key("hLit"), BlendMode::HardLight},   {Key("vLit"), BlendMode::VividLight},
    {Key("lLit"), BlendMode::LinearLight}, {Key("pLit"), BlendMode::PinLight},
    {Key("hMix"), BlendMode::HardMix},     {Key("diff"), BlendMode::Difference},
    {Key("smud"), BlendMode::Exclusion},   {Key("fsub"), BlendMode::Subtract},
    {Key("fdiv"), BlendMode::Divide},      {Key("hue "), BlendMode::Hue},
    {Key("sat "), BlendMode::Saturation},  {Key("colr"), BlendMode::Color},
    {Key("lum "), BlendMode::Luminosity},
};

BlendMode BlendModeOf(std::uint32_t key) {
    const auto found = std::ranges::find(kBlendKeys, key, &BlendKey::key);
    return found == std::end(kBlendKeys) ? BlendMode::Normal : found->mode;
}

/// A length that PSB files store in 64 bits.
std::uint64_t ReadLength(ByteReader& reader, bool large) {
    return large ? reader.U64Be() : reader.U32Be();
}

/// Tagged blocks whose length has 64 bits in PSB files.
constexpr std::uint32_t kLongBlocks[] = {Key("LMsk"), Key("Lr16"), Key("Lr32"), Key("Layr"), Key("Mt16"),
                                         Key("Mt32"), Key("Mtrn"), Key("Alph"), Key("FMsk"), Key("lnk2"),
                                         Key("FEid"), Key("FXid"), Key("PxSD")};

/// Calls `visit(key, data)` for each tagged block up to the end or to what is none.
template <typename Visit>
void ForEachTaggedBlock(ByteReader reader, bool large, const Visit& visit) {
    while (reader.Left() >= 12) {
        // Some lengths include the padding and some do not.
        for (int padding = 0; padding < 3 && reader.Peek() == 0; ++padding) reader.Skip(1);
        const std::uint32_t signature = reader.U32Be();
        if (signature != Key("8BIM") && signature != Key("8B64")) return;
        const std::uint32_t key = reader.U32Be();
        const bool isLong = large && std::ranges::find(kLongBlocks, key) != std::end(kLongBlocks);
        const std::uint64_t length = ReadLength(reader, isLong);
        visit(key, reader.TakeUpTo(length));
    }
}

Box ReadBox(ByteReader& reader) {
    Box box;
    box.top = reader.I32Be();
    box.left = reader.I32Be();
    box.bottom = reader.I32Be();
    box.right = reader.I32Be();
    return box;
}

std::optional<PsdLayerRecord::Mask> ReadMask(Bytes data) {
    if (data.size() < 18) return std::nullopt;
    ByteReader reader(data);
    PsdLayerRecord::Mask mask;
    mask.box = ReadBox(reader);
    mask.outside = reader.U8();
    const std::uint8_t flags = reader.U8();
    mask.disabled = flags & 2;
    mask.inverted = flags & 4;
    return mask;
}

void ReadDivider(Bytes data, PsdLayerRecord& record) {
    ByteReader reader(data);
    const std::uint32_t type = reader.U32Be();
    if (type == 1 || type == 2) record.divider = PsdLayerRecord::Divider::Group;
    if (type == 3) record.divider = PsdLayerRecord::Divider::End;
    if (reader.U32Be() != Key("8BIM")) return;
    const std::uint32_t key = reader.U32Be();
    if (key != 0) record.blendKey = key;
}

/// What follows the fixed part of a record: the mask, blend ranges, the name, tagged blocks.
void ReadExtra(Bytes extra, bool large, PsdLayerRecord& record) {
    ByteReader reader(extra);
    record.mask = ReadMask(reader.TakeUpTo(reader.U32Be()));
    reader.TakeUpTo(reader.U32Be());
    const std::uint32_t nameLength = reader.U8();
    reader.TakeUpTo((nameLength + 1 + 3) / 4 * 4 - 1);
    ForEachTaggedBlock(reader, large, [&](std::uint32_t key, Bytes data) {
        if (key == Key("lsct") || key == Key("lsdk")) ReadDivider(data, record);
        if (key == Key("iOpa") && !data.empty()) record.fill = data[0];
    });
}

/// Reads one record; the channels get their lengths only, as bytes that are found later.
bool ReadRecord(ByteReader& reader, bool large, PsdLayerRecord& record, std::vector<std::uint64_t>& lengths) {
    record.box = ReadBox(reader);
    const int channels = reader.U16Be();
    for (int i = 0; i < channels && !reader.Overrun(); ++i) {
        record.channels.push_back({reader.I16Be(), {}});
        lengths.push_back(ReadLength(reader, large));
    }
    const std::uint32_t signature = reader.U32Be();
    record.blendKey = reader.U32Be();
    record.opacity = reader.U8();
    record.clipped = reader.U8() != 0;
    record.hidden = reader.U8() & 2;
    reader.Skip(1);
    const std::uint32_t extra = reader.U32Be();
    if (reader.Overrun() || signature != Key("8BIM")) return false;
    ReadExtra(reader.TakeUpTo(extra), large, record);
    return true;
}

/// The count of layers, their records, and behind all of them their samples.
void ReadLayerInfo(Bytes info, bool large, PsdLayers& layers) {
    ByteReader reader(info);
    const int count = reader.I16Be();
    if (reader.Overrun()) return;
    layers.mergedHasAlpha |= count < 0;
    std::vector<std::uint64_t> lengths;
    for (int i = 0; i < std::abs(count); ++i) {
        PsdLayerRecord record;
        // Without the records the places of the samples are not known.
        if (!ReadRecord(reader, large, record, lengths)) return layers.records.clear();
        layers.records.push_back(std::move(record));
    }
    auto length = lengths.begin();
    for (PsdLayerRecord& record : layers.records)
        for (PsdLayerRecord::Channel& channel : record.channels) channel.samples = reader.TakeUpTo(*length++);
}

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
            layer.kind = record.blendKey == Key("pass") ? Layer::Kind::PassThroughGroup : Layer::Kind::Group;
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
        std::array<std::optional<PsdPlanes>, 5> planes;
        const auto colorPlanes = static_cast<std::size_t>(colors_.Planes());
        for (std::size_t i = 0; i < colorPlanes; ++i)
            planes[i] = Open(record, static_cast<int>(i), record.box);
        planes[4] = Open(record, -1, record.box);
        if (!planes[0]) return {};

        TRY_ASSIGN(layer.picture, Picture::Create(part.Width(), part.Height(), Alpha::Straight, limits_));
        layer.left = static_cast<int>(part.left);
        layer.top = static_cast<int>(part.top);
        anyPixels_ = true;
        std::array<ByteVector, 5> scratch;
        PsdColors::Scratch steps;
        for (std::int64_t y = part.top; y < part.bottom; ++y) {
            std::array<Bytes, 5> rows;
            for (std::size_t i = 0; i < rows.size(); ++i)
                rows[i] = Row(planes[i], record.box, part, y, scratch[i]);
            // A row without its first colour stays transparent, unless the layer is opaque.
            if (rows[0].empty() && planes[4]) continue;
            if (planes[4] && rows[4].empty()) continue;
            colors_.ToPixels(std::span(rows).first(colorPlanes), rows[4], PsdColors::Matte::None,
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
            planes = Open(record, -2, stored.box);
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

Bytes PsdLayerRecord::Samples(int id) const {
    const auto found = std::ranges::find(channels, id, &Channel::id);
    return found == channels.end() ? Bytes() : found->samples;
}

PsdLayers ReadPsdLayers(Bytes section, const PsdHeader& header) {
    PsdLayers layers;
    ByteReader reader(section);
    ReadLayerInfo(reader.TakeUpTo(ReadLength(reader, header.large)), header.large, layers);
    reader.TakeUpTo(reader.U32Be());  // the mask of the whole document
    // Documents of 16 and 32 bits keep their layers here.
    ForEachTaggedBlock(reader, header.large, [&](std::uint32_t key, Bytes data) {
        const bool holdsLayers = key == Key("Lr16") || key == Key("Lr32") || key == Key("Layr");
        if (holdsLayers && layers.records.empty()) ReadLayerInfo(data, header.large, layers);
    });
    return layers;
}

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
