#include "core/rastx/codecs/PspBlocks.h"

#include <algorithm>

namespace tessara {

Bytes PspContent::Chunk() {
    if (version_ == 3) return reader_.TakeUpTo(std::exchange(initial_, 0));
    constexpr std::uint32_t kLengthBytes = 4;
    if (AtBlock() || reader_.Left() < kLengthBytes) return {};
    const std::uint32_t length = reader_.U32Le();
    // A chunk that does not even hold its own length leads nowhere.
    if (length < kLengthBytes) return reader_.TakeUpTo(UINT64_MAX).first(0);
    return reader_.TakeUpTo(length - kLengthBytes);
}

std::optional<PspBlock> PspContent::Block() {
    const std::size_t headerBytes = version_ == 3 ? 14 : 10;
    if (!AtBlock() || reader_.Left() < headerBytes) return std::nullopt;
    reader_.Skip(4);
    const auto id = static_cast<PspId>(reader_.U16Le());
    const std::uint32_t initial = version_ == 3 ? reader_.U32Le() : 0;
    const std::uint32_t length = reader_.U32Le();
    const bool cut = length > reader_.Left();
    return PspBlock{id, PspContent(reader_.TakeUpTo(length), version_, initial), cut};
}

PspChannel ReadPspChannel(PspContent content) {
    ByteReader chunk(content.Chunk());
    const std::uint32_t packed = chunk.U32Le();
    chunk.Skip(4);  // the unpacked length is that of another layout: not of this plane
    PspChannel channel;
    channel.use = static_cast<PspChannel::Use>(chunk.U16Le());
    channel.component = chunk.U16Le();
    if (!chunk.Overrun()) channel.data = content.Take(packed);
    return channel;
}

std::vector<Pixel> ReadPspPalette(PspContent content) {
    ByteReader chunk(content.Chunk());
    const std::uint32_t count = std::min(chunk.U32Le(), 256u);
    ByteReader entries(content.Take(4 * std::uint64_t{count}));
    std::vector<Pixel> palette(entries.Size() / 4);
    for (Pixel& color : palette) {
        color = {entries.U8(), entries.U8(), entries.U8(), 255};
        entries.Skip(1);
    }
    return palette;
}

}  // namespace tessara
