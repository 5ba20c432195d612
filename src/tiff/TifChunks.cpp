#include "tiff/TifChunks.h"

#include <algorithm>
#include <cstring>

#include "core/Multiversion.h"
#include "tiff/TifLzw.h"

namespace tessara {
namespace {

/// Finding out how much of a damaged chunk can be used unpacks it a dozen times; not done to giants.
constexpr std::uint64_t kLargestSalvaged = std::uint64_t{256} << 20;

template <typename Sample>
void Accumulate(std::uint8_t* line, std::size_t count, std::size_t stride) {
    for (std::size_t i = stride; i < count; ++i) {
        Sample left;
        Sample difference;
        std::memcpy(&left, line + (i - stride) * sizeof(Sample), sizeof(Sample));
        std::memcpy(&difference, line + i * sizeof(Sample), sizeof(Sample));
        const auto sum = static_cast<Sample>(left + difference);
        std::memcpy(line + i * sizeof(Sample), &sum, sizeof(Sample));
    }
}

/// Sums kept in registers: the general loop would wait for each stored byte to come back.
template <std::size_t samples>
void AccumulateBytes(std::uint8_t* line, std::size_t count) {
    std::uint8_t sum[samples] = {};
    for (std::size_t i = 0; i + samples <= count; i += samples)
        for (std::size_t c = 0; c < samples; ++c)
            line[i + c] = sum[c] = static_cast<std::uint8_t>(sum[c] + line[i + c]);
}

/// Turns a line of differences to the sample on the left into samples.
void UndoPrediction(std::span<std::uint8_t> line, int bits, std::size_t stride) {
    if (bits == 16) return Accumulate<std::uint16_t>(line.data(), line.size() / 2, stride);
    if (stride == 1) return AccumulateBytes<1>(line.data(), line.size());
    if (stride == 3) return AccumulateBytes<3>(line.data(), line.size());
    if (stride == 4) return AccumulateBytes<4>(line.data(), line.size());
    Accumulate<std::uint8_t>(line.data(), line.size(), stride);
}

TESSARA_MULTIVERSION void SwapPairs(std::uint8_t* bytes, std::size_t count) {
    for (std::size_t i = 0; i + 1 < count; i += 2) std::swap(bytes[i], bytes[i + 1]);
}

}  // namespace

TifChunkReader::TifChunkReader(const TifFile& file)
    : file_(file),
      layout_(file.Layout()),
      bytesPerLine_(static_cast<std::size_t>(file.Layout().BytesPerLine())) {}

std::span<std::uint8_t> TifChunkReader::Unpacked(std::uint32_t lines) {
    if (!buffer_.Valid()) buffer_ = LargeBuffer(static_cast<std::size_t>(layout_.BytesPerChunk()));
    if (!buffer_.Valid()) return {};
    return {buffer_.Data(), lines * bytesPerLine_};
}

/// The bytes of a chunk that the file really has.
Bytes TifChunkReader::Stored(std::uint32_t index) const {
    const std::uint64_t offset = TIFFGetStrileOffset(file_.Handle(), index);
    if (offset == 0) return {};
    // The size of an uncompressed chunk is known; some files give a wrong one.
    if (layout_.compression == COMPRESSION_NONE) return Slice(file_.File(), offset, layout_.BytesPerChunk());
    return Slice(file_.File(), offset, TIFFGetStrileByteCount(file_.Handle(), index));
}

bool TifChunkReader::UnpacksHere(Bytes stored) const {
    const bool deflate =
        layout_.compression == COMPRESSION_ADOBE_DEFLATE || layout_.compression == COMPRESSION_DEFLATE;
    const bool lzw = layout_.compression == COMPRESSION_LZW && !IsOldTifLzw(stored);
    if (!(deflate || lzw) || layout_.reversed) return false;
    return layout_.predictor == PREDICTOR_NONE ||
           (layout_.predictor == PREDICTOR_HORIZONTAL && !layout_.Blocks() &&
            (layout_.bits == 8 || layout_.bits == 16));
}

TifChunk TifChunkReader::Read(std::uint32_t index, std::uint32_t lines) {
    const Bytes stored = Stored(index);
    // Old-style JPEG keeps its tables and sometimes its data elsewhere; libtiff knows where.
    if (stored.empty() && layout_.compression != COMPRESSION_OJPEG) return {};
    if (layout_.compression == COMPRESSION_NONE && !layout_.reversed) {
        const std::uint64_t whole = std::min<std::uint64_t>(lines, stored.size() / bytesPerLine_);
        return {stored, static_cast<std::uint32_t>(whole), layout_.swapped};
    }
    return UnpacksHere(stored) ? Unpack(stored, lines) : ReadWithLibtiff(index, stored, lines);
}

TifChunk TifChunkReader::Unpack(Bytes stored, std::uint32_t lines) {
    const std::span<std::uint8_t> target = Unpacked(lines);
    const std::size_t unpacked =
        layout_.compression == COMPRESSION_LZW ? UnpackTifLzw(stored, target) : Inflate(stored, target);
    TifChunk chunk{target, static_cast<std::uint32_t>(unpacked / bytesPerLine_), layout_.swapped};
    if (layout_.predictor == PREDICTOR_NONE) return chunk;

    if (layout_.bits == 16 && layout_.swapped) SwapPairs(target.data(), chunk.lines * bytesPerLine_);
    chunk.swapped = false;
    const auto stride = static_cast<std::size_t>(layout_.planar ? 1 : layout_.samples);
    for (std::uint32_t line = 0; line < chunk.lines; ++line)
        UndoPrediction(target.subspan(line * bytesPerLine_, bytesPerLine_), layout_.bits, stride);
    return chunk;
}

/// Unpacks as much as there is. What is wrong behind that (a checksum, more data than needed) does no harm.
std::size_t TifChunkReader::Inflate(Bytes stored, std::span<std::uint8_t> target) {
    if (!inflate_) inflate_ = std::make_unique<inflate_state>();
    isal_inflate_init(inflate_.get());
    inflate_->crc_flag = ISAL_ZLIB;
    inflate_->next_in = const_cast<std::uint8_t*>(stored.data());
    inflate_->avail_in = static_cast<std::uint32_t>(std::min<std::size_t>(stored.size(), UINT32_MAX));
    inflate_->next_out = target.data();
    inflate_->avail_out = static_cast<std::uint32_t>(std::min<std::size_t>(target.size(), UINT32_MAX));
    isal_inflate(inflate_.get());
    return static_cast<std::size_t>(inflate_->next_out - target.data());
}

TifChunk TifChunkReader::ReadWithLibtiff(std::uint32_t index, Bytes stored, std::uint32_t lines) {
    const std::span<std::uint8_t> target = Unpacked(lines);
    if (DecodeWithLibtiff(index, stored, lines)) return {target, lines, false};
    if (target.size() > kLargestSalvaged) return {};
    // libtiff does not say how far it came. The largest number of lines that it unpacks without complaint is
    // good.
    std::uint32_t good = 0;
    std::uint32_t bad = lines;
    while (bad - good > 1) {
        const std::uint32_t middle = good + (bad - good) / 2;
        (DecodeWithLibtiff(index, stored, middle) ? good : bad) = middle;
    }
    // Once more: a failed attempt leaves the lines before prediction and byte order are applied.
    if (good == 0 || !DecodeWithLibtiff(index, stored, good)) return {};
    return {target, good, false};
}

bool TifChunkReader::DecodeWithLibtiff(std::uint32_t index, Bytes stored, std::uint32_t lines) {
    TIFF* handle = file_.Handle();
    const std::span<std::uint8_t> target = Unpacked(lines);
    if (target.empty()) return false;
    // A fax that ends early counts as decoded; what follows is to be white.
    if (layout_.bits == 1)
        std::memset(target.data(), layout_.photometric == PHOTOMETRIC_MINISWHITE ? 0 : 0xff, target.size());
    const auto size = static_cast<tmsize_t>(target.size());
    if (layout_.compression == COMPRESSION_OJPEG)
        return (layout_.tiled ? TIFFReadEncodedTile(handle, index, target.data(), size)
                              : TIFFReadEncodedStrip(handle, index, target.data(), size)) == size;
    // Given the bytes, libtiff makes do with a chunk that the end of the file cuts short. It turns the bits
    // round in place.
    if (layout_.reversed) {
        reversible_.assign(stored.begin(), stored.end());
        stored = reversible_;
    }
    return TIFFReadFromUserBuffer(handle, index, const_cast<std::uint8_t*>(stored.data()),
                                  static_cast<tmsize_t>(stored.size()), target.data(), size) != 0;
}

}  // namespace tessara
