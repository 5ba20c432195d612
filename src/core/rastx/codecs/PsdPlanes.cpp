#include "core/rastx/codecs/PsdPlanes.h"

#include <algorithm>

#include "core/ByteReader.h"
#include "core/Inflate.h"

namespace tessara {
namespace {

/// PackBits (TIFF 6.0, section 9). A row that yields too little ends in zeros, one that yields too much is
/// cut.
void UnpackRow(Bytes packed, std::span<std::uint8_t> row) {
    std::size_t in = 0;
    std::size_t out = 0;
    while (in < packed.size() && out < row.size()) {
        const std::size_t code = packed[in++];
        if (code < 128) {
            const std::size_t count = std::min({code + 1, packed.size() - in, row.size() - out});
            std::copy_n(packed.begin() + static_cast<std::ptrdiff_t>(in), count,
                        row.begin() + static_cast<std::ptrdiff_t>(out));
            in += count;
            out += count;
        } else if (code > 128 && in < packed.size()) {
            const std::size_t count = std::min(257 - code, row.size() - out);
            std::fill_n(row.begin() + static_cast<std::ptrdiff_t>(out), count, packed[in++]);
            out += count;
        }
    }
    std::fill(row.begin() + static_cast<std::ptrdiff_t>(out), row.end(), std::uint8_t{0});
}

void UndoPrediction(Bytes stored, int depth, std::span<std::uint8_t> row) {
    if (depth == 16) {
        std::uint32_t sum = 0;
        for (std::size_t i = 0; i + 1 < stored.size(); i += 2) {
            sum += (std::uint32_t{stored[i]} << 8) + stored[i + 1];
            row[i] = static_cast<std::uint8_t>(sum >> 8);
            row[i + 1] = static_cast<std::uint8_t>(sum);
        }
        return;
    }
    // The bytes of floating-point samples are stored as four rows, the most significant ones first.
    const std::size_t planes = depth == 32 ? 4 : 1;
    const std::size_t samples = stored.size() / planes;
    std::uint8_t sum = 0;
    for (std::size_t plane = 0; plane < planes; ++plane)
        for (std::size_t i = 0; i < samples; ++i)
            row[planes * i + plane] = sum = static_cast<std::uint8_t>(sum + stored[plane * samples + i]);
}

}  // namespace

Result<PsdPlanes> PsdPlanes::Open(Bytes stored, const Shape& shape, std::uint64_t mostMemory) {
    ByteReader reader(stored);
    const std::uint16_t code = reader.U16Be();
    if (reader.Overrun()) return Damaged("the samples are missing");
    if (code > 3) return Damaged("the samples are packed in an unknown way");
    PsdPlanes planes;
    planes.shape_ = shape;
    planes.compression_ = static_cast<Compression>(code);
    switch (planes.compression_) {
        case Compression::Raw:
            planes.data_ = reader.Rest();
            break;
        case Compression::PackBits:
            TRY(planes.ReadRowLengths(reader.Rest()));
            break;
        case Compression::Zip:
        case Compression::ZipPredicted:
            TRY(planes.InflateAll(reader.Rest(), mostMemory));
            break;
    }
    return planes;
}

Result<void> PsdPlanes::ReadRowLengths(Bytes stored) {
    const std::uint64_t rows = Index(shape_.stored, 0);
    const std::uint64_t tableBytes = rows * (shape_.large ? 4 : 2);
    ByteReader reader(stored);
    const Bytes table = reader.Take(tableBytes);
    if (reader.Overrun()) return Damaged("the table of row lengths is cut off");
    data_ = reader.Rest();

    ByteReader lengths(table);
    rowEnds_.resize(Index(shape_.wanted, 0));
    std::uint64_t end = 0;
    for (std::uint64_t& rowEnd : rowEnds_) rowEnd = end += shape_.large ? lengths.U32Be() : lengths.U16Be();
    // A pair of bytes makes at most 128: half of that must be there, or the sizes are invented.
    const std::uint64_t firstPlane =
        std::min<std::uint64_t>(rowEnds_[Index(0, shape_.height - 1)], data_.size());
    if (firstPlane * 128 < RowBytes() * static_cast<std::uint64_t>(RowsPresent(0)))
        return Damaged("the samples are too few for the size");
    return {};
}

Result<void> PsdPlanes::InflateAll(Bytes stored, std::uint64_t mostMemory) {
    const std::uint64_t whole = Index(shape_.wanted, 0) * RowBytes();
    const std::uint64_t size = std::min(whole, MostInflated(stored.size()));
    if (size > mostMemory) return TooBig("the samples need too much memory");
    inflated_ = LargeBuffer(static_cast<std::size_t>(size));
    if (!inflated_.Valid()) return TooBig("no memory for the samples");
    const std::span<std::uint8_t> target(inflated_.Data(), inflated_.Size());
    data_ = target.first(InflateInto(stored, target));
    return {};
}

std::int64_t PsdPlanes::RowsPresent(int plane) const {
    const std::uint64_t before = Index(plane, 0);
    std::uint64_t rows;
    if (compression_ == Compression::PackBits) {
        const auto complete = std::ranges::upper_bound(rowEnds_, std::uint64_t{data_.size()});
        rows = static_cast<std::uint64_t>(complete - rowEnds_.begin());
    } else {
        rows = data_.size() / RowBytes();
    }
    return rows <= before ? 0 : std::min(shape_.height, static_cast<std::int64_t>(rows - before));
}

Bytes PsdPlanes::Row(int plane, std::int64_t row, std::span<std::uint8_t> scratch) const {
    const std::uint64_t index = Index(plane, row);
    if (compression_ == Compression::PackBits) {
        const std::uint64_t begin = index == 0 ? 0 : rowEnds_[index - 1];
        if (rowEnds_[index] > data_.size()) return {};
        UnpackRow(Slice(data_, begin, rowEnds_[index] - begin), scratch);
        return scratch;
    }
    const Bytes stored = Slice(data_, index * RowBytes(), RowBytes());
    if (stored.size() < RowBytes()) return {};
    if (compression_ != Compression::ZipPredicted) return stored;
    UndoPrediction(stored, shape_.depth, scratch);
    return scratch;
}

}  // namespace tessara
