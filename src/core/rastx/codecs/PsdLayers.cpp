#include "core/rastx/codecs/PsdLayers.h"

#include <algorithm>
#include <utility>

#include "core/ByteReader.h"

namespace tessara {
namespace {

/// A length that PSB files store in 64 bits.
std::uint64_t ReadLength(ByteReader& reader, bool large) {
    return large ? reader.U64Be() : reader.U32Be();
}

/// Tagged blocks whose length has 64 bits in PSB files.
constexpr std::uint32_t kLongBlocks[] = {PsdKey("LMsk"), PsdKey("Lr16"), PsdKey("Lr32"), PsdKey("Layr"),
                                         PsdKey("Mt16"), PsdKey("Mt32"), PsdKey("Mtrn"), PsdKey("Alph"),
                                         PsdKey("FMsk"), PsdKey("lnk2"), PsdKey("FEid"), PsdKey("FXid"),
                                         PsdKey("PxSD")};

/// Calls `visit(key, data)` for each tagged block up to the end or to what is none.
template <typename Visit>
void ForEachTaggedBlock(ByteReader reader, bool large, const Visit& visit) {
    while (reader.Left() >= 12) {
        // Some lengths include the padding and some do not.
        for (int padding = 0; padding < 3 && reader.Peek() == 0; ++padding) reader.Skip(1);
        const std::uint32_t signature = reader.U32Be();
        if (signature != PsdKey("8BIM") && signature != PsdKey("8B64")) return;
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
    if (reader.U32Be() != PsdKey("8BIM")) return;
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
        if (key == PsdKey("lsct") || key == PsdKey("lsdk")) ReadDivider(data, record);
        if (key == PsdKey("iOpa") && !data.empty()) record.fill = data[0];
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
    if (reader.Overrun() || signature != PsdKey("8BIM")) return false;
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
        const bool holdsLayers = key == PsdKey("Lr16") || key == PsdKey("Lr32") || key == PsdKey("Layr");
        if (holdsLayers && layers.records.empty()) ReadLayerInfo(data, header.large, layers);
    });
    return layers;
}

}  // namespace tessara
