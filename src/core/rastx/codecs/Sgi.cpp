#include "core/rastx/codecs/Sgi.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Partial.h"

// The SGI Image File Format, version 1.00. All numbers are big-endian; rows run from the bottom up and each
// channel stands for itself.
//
//    0  u16  0x01da                      10  u16  channels
//    2  u8   1 with run lengths         104  u32  colours: 0 as usual, 1 three in a byte, 2 indexes without a
//    3  u8   bytes per sample: 1, 2               palette, 3 the file is a palette
//    4  u16  dimensions: 1 one row,     512  samples; or with run lengths the offset of each row of each
//            2 one channel, 3                channel, u32, then the lengths of all, then their codes
//    6  u16  width
//    8  u16  height

namespace tessara {
namespace {

constexpr std::uint16_t kMagic = 0x01da;
constexpr std::size_t kColorsOffset = 104;
constexpr std::size_t kHeaderSize = 512;
constexpr std::size_t kMostChannels = 4;

enum class Colors : std::uint32_t { Usual, ThreeInAByte, Indexes, PaletteFile };

struct Header {
    bool runLengths = false;
    std::size_t sampleBytes = 0;
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t channels = 0;  ///< in the file
    Colors colors{};

    std::size_t UsedChannels() const { return std::min(channels, kMostChannels); }
    bool HasAlpha() const { return UsedChannels() == 2 || UsedChannels() == 4; }
    std::uint64_t RowBytes() const { return width * sampleBytes; }
    std::uint64_t TableEntries() const { return std::uint64_t{height} * channels; }
};

Result<Header> ReadHeader(Bytes file) {
    ByteReader reader(file);
    if (reader.U16Be() != kMagic) return Unsupported("no SGI picture");
    Header header;
    const std::uint8_t storage = reader.U8();
    header.sampleBytes = reader.U8();
    const std::uint16_t dimensions = reader.U16Be();
    header.width = reader.U16Be();
    header.height = reader.U16Be();
    header.channels = reader.U16Be();
    reader.Seek(kColorsOffset);
    header.colors = static_cast<Colors>(reader.U32Be());
    reader.Seek(kHeaderSize);
    if (reader.Overrun()) return Damaged("the header is cut short");
    if (storage > 1 || header.sampleBytes < 1 || header.sampleBytes > 2 || dimensions < 1 || dimensions > 3)
        return Unsupported("an unknown kind of SGI picture");
    header.runLengths = storage == 1;
    if (dimensions == 1) header.height = 1;
    if (dimensions < 3) header.channels = 1;  // the field is 0 in some files then
    if (header.colors >= Colors::PaletteFile) return Unsupported("a palette, not a picture");
    if (header.channels == 0) return Damaged("the picture has no channels");
    return header;
}

/// Both kinds of storage as rows of one byte a sample.
class ChannelReader {
  public:
    ChannelReader(Bytes file, const Header& header) : file_(file), header_(header) {}

    /// Fills `samples` with a row, counted from the bottom, or tells that the file does not hold it. What a
    /// damaged row lacks is 0.
    bool Read(std::size_t row, std::size_t channel, std::span<std::uint8_t> samples) const {
        const std::uint64_t index = row + std::uint64_t{channel} * header_.height;
        if (!header_.runLengths) return ReadPlain(kHeaderSize + index * header_.RowBytes(), samples);
        const std::uint64_t offset = CodesOffset(index);
        if (offset == 0) return false;
        if (header_.sampleBytes == 1)
            Unpack<1>(Slice(file_, offset), samples);
        else
            Unpack<2>(Slice(file_, offset), samples);
        return true;
    }

    /// Rows of the first channel that have a place in the file.
    std::uint64_t PossibleRows() const {
        if (!header_.runLengths) return Slice(file_, kHeaderSize).size() / header_.RowBytes();
        std::uint64_t rows = 0;
        for (std::size_t row = 0; row < header_.height; ++row) rows += CodesOffset(row) != 0;
        return rows;
    }

  private:
    /// Where the codes of a row begin, or 0 where that is no place for them.
    std::uint64_t CodesOffset(std::uint64_t index) const {
        ByteReader reader(file_);
        reader.Seek(kHeaderSize + 4 * index);
        const std::uint32_t offset = reader.U32Be();
        const bool good = offset >= kHeaderSize + 8 * header_.TableEntries() && offset < file_.size();
        return good ? offset : 0;
    }

    bool ReadPlain(std::uint64_t offset, std::span<std::uint8_t> samples) const {
        const Bytes row = Slice(file_, offset, header_.RowBytes());
        if (row.size() < header_.RowBytes()) return false;
        if (header_.sampleBytes == 1)
            std::ranges::copy(row, samples.begin());
        else
            for (std::size_t i = 0; i < samples.size(); ++i)
                samples[i] = Narrow16(row[2 * i] << 8 | row[2 * i + 1]);
        return true;
    }

    /// The row ends with a code of 0, when it is full, or with the file. The stored lengths are not asked:
    /// some writers count samples in them, some leave out the last code.
    template <std::size_t sampleBytes>
    static void Unpack(Bytes codes, std::span<std::uint8_t> samples) {
        const auto sample = [&](std::size_t at) {
            if constexpr (sampleBytes == 1) return codes[at];
            return Narrow16(codes[at] << 8 | codes[at + 1]);
        };
        std::size_t at = 0;
        std::size_t done = 0;
        while (done < samples.size() && at + 2 * sampleBytes <= codes.size()) {
            const std::uint8_t code = codes[at + sampleBytes - 1];
            std::size_t count = std::min<std::size_t>(code & 0x7f, samples.size() - done);
            if (count == 0) break;
            at += sampleBytes;
            if (code & 0x80) {
                count = std::min(count, (codes.size() - at) / sampleBytes);
                if constexpr (sampleBytes == 1)
                    std::ranges::copy(codes.subspan(at, count), samples.subspan(done).begin());
                else
                    for (std::size_t i = 0; i < count; ++i) samples[done + i] = sample(at + i * sampleBytes);
                at += count * sampleBytes;
            } else {
                std::ranges::fill(samples.subspan(done, count), sample(at));
                at += sampleBytes;
            }
            done += count;
        }
        std::ranges::fill(samples.subspan(done), std::uint8_t{0});
    }

    Bytes file_;
    const Header& header_;
};

/// Blue, green and red packed in 2, 3 and 3 bits.
Pixel UnpackColor(std::uint8_t value) {
    return {ScaleTo8Bits(value >> 6, 3), ScaleTo8Bits(value >> 3 & 7, 7), ScaleTo8Bits(value & 7, 7), 255};
}

/// The channels of one row.
class Channels {
  public:
    explicit Channels(const Header& header)
        : header_(header), samples_(header.UsedChannels() * header.width) {}

    bool Read(const ChannelReader& reader, std::size_t row) {
        for (std::size_t channel = 0; channel < header_.UsedChannels(); ++channel)
            if (!reader.Read(row, channel,
                             std::span(samples_).subspan(channel * header_.width, header_.width)))
                return false;
        return true;
    }

    void ToPixels(std::span<Pixel> pixels) const {
        if (header_.channels == 1 && header_.colors == Colors::ThreeInAByte)
            std::ranges::transform(samples_, pixels.begin(), UnpackColor);
        else if (header_.channels == 1)
            GreyToPixels(samples_, pixels);
        else if (header_.channels == 2)
            PlanesToPixels(Channel(0), Channel(0), Channel(0), Channel(1), pixels);
        else
            PlanesToPixels(Channel(0), Channel(1), Channel(2), header_.HasAlpha() ? Channel(3) : Bytes{},
                           pixels);
    }

  private:
    Bytes Channel(std::size_t channel) const {
        return Bytes(samples_).subspan(channel * header_.width, header_.width);
    }

    const Header& header_;
    ByteVector samples_;
};

}  // namespace

bool RecogniseSgi(Bytes file) {
    return ReadHeader(file).Ok();
}

Result<Picture> DecodeSgi(Bytes file, const DecodeOptions& options) {
    TRY_ASSIGN(const Header header, ReadHeader(file));
    const auto width = static_cast<std::int64_t>(header.width);
    const auto height = static_cast<std::int64_t>(header.height);
    TRY(options.limits.Check(width, height));
    const ChannelReader reader(file, header);
    TRY(CheckDataFor(std::uint64_t{header.width} * header.height, reader.PossibleRows() * header.width));
    const Alpha alpha = header.HasAlpha() ? Alpha::Straight : Alpha::None;
    TRY_ASSIGN(Picture picture, Picture::Create(width, height, alpha, options.limits));
    Channels channels(header);
    std::vector<int> missing;
    for (int y = 0; y < picture.Height(); ++y) {
        if (channels.Read(reader, header.height - 1 - static_cast<std::size_t>(y)))
            channels.ToPixels(picture.MutableRow(y));
        else
            missing.push_back(y);
    }
    if (missing.size() == header.height) return Damaged("the file holds no complete row");
    for (const int y : missing) picture.FillRows(y, y + 1, MissingPixel(picture));
    picture.DropUnusedAlpha();
    return picture;
}

}  // namespace tessara
