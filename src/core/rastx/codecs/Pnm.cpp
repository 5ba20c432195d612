#include "core/rastx/codecs/Pnm.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Partial.h"

// Portable bitmaps (P1, P4), greymaps (P2, P5) and pixmaps (P3, P6), after the manual pages of Netpbm.
//
//   "P1".."P6"   width   height   largest value (not P1, P4)   one white space   raster
//
// The first three kinds are plain text, the others binary: 1 bit a pixel in rows of whole bytes, or one or
// two bytes a sample (big-endian where the largest value needs two). "#" begins a comment to the end of the
// line.

namespace tessara {
namespace {

constexpr std::uint32_t kLargestMaximum = 65535;

enum class Kind { Bitmap, Grey, Color };

struct Header {
    Kind kind{};
    bool plain = false;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t maximum = 1;
    std::size_t rasterOffset = 0;

    std::size_t Samples() const { return kind == Kind::Color ? 3 : 1; }
    std::size_t SampleBytes() const { return maximum > 255 ? 2 : 1; }
    /// Of the binary form.
    std::uint64_t RowBytes() const {
        return kind == Kind::Bitmap ? (std::uint64_t{width} + 7) / 8 : width * Samples() * SampleBytes();
    }
};

bool IsSpace(std::uint8_t c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsDigit(std::uint8_t c) {
    return c >= '0' && c <= '9';
}

void SkipComment(ByteReader& reader) {
    while (!reader.AtEnd() && reader.Peek() != '\n' && reader.Peek() != '\r') reader.Skip(1);
}

void SkipSpace(ByteReader& reader) {
    for (; !reader.AtEnd(); reader.Skip(1)) {
        if (reader.Peek() == '#') SkipComment(reader);
        if (!IsSpace(reader.Peek())) return;
    }
}

/// The next number after white space and comments; none where something else stands there. A number too large
/// for any use stops growing.
std::optional<std::uint32_t> ReadNumber(ByteReader& reader) {
    constexpr std::uint32_t kEnough = 100'000'000;
    SkipSpace(reader);
    if (!IsDigit(reader.Peek())) return std::nullopt;
    std::uint32_t value = 0;
    for (; IsDigit(reader.Peek()); reader.Skip(1))
        if (value < kEnough) value = value * 10 + (reader.Peek() - '0');
    return value;
}

/// Finds the first byte of a binary raster: exactly one white space follows the header. Two habits of writers
/// break that rule, a line end of two bytes and a comment; they are believed where the length proves them.
std::size_t FindRaster(ByteReader reader, std::uint64_t rasterBytes) {
    if (reader.Peek() == '#') SkipComment(reader);
    const bool carriageReturn = reader.Peek() == '\r';
    reader.Skip(1);
    const std::size_t start = reader.Position();
    if (reader.Left() == rasterBytes) return start;
    if (carriageReturn && reader.Peek() == '\n') reader.Skip(1);
    if (reader.Peek() == '#') {
        SkipComment(reader);
        reader.Skip(reader.Peek() == '\r' && reader.Peek(1) == '\n' ? 2 : 1);
    }
    return reader.Left() == rasterBytes ? reader.Position() : start;
}

Result<Header> ReadHeader(Bytes file) {
    ByteReader reader(file);
    reader.Skip(1);
    const int number = reader.U8() - '0';
    if (file.size() < 2 || file[0] != 'P' || number < 1 || number > 6)
        return Unsupported("no portable bitmap, greymap or pixmap");
    Header header;
    header.kind = static_cast<Kind>((number - 1) % 3);
    header.plain = number <= 3;
    const auto width = ReadNumber(reader);
    const auto height = ReadNumber(reader);
    const auto maximum = header.kind == Kind::Bitmap ? std::uint32_t{1} : ReadNumber(reader);
    if (!width || !height || !maximum) return Damaged("the header holds something else than numbers");
    if (*maximum == 0 || *maximum > kLargestMaximum) return Damaged("the largest value is out of range");
    header.width = *width;
    header.height = *height;
    header.maximum = *maximum;
    header.rasterOffset =
        header.plain ? reader.Position() : FindRaster(reader, header.RowBytes() * header.height);
    return header;
}

std::uint64_t PossiblePixels(const Header& header, std::size_t rasterBytes) {
    if (header.plain)
        return header.kind == Kind::Bitmap ? rasterBytes : (rasterBytes + 1) / 2 / header.Samples();
    if (header.kind == Kind::Bitmap) return std::uint64_t{rasterBytes} * 8;
    return rasterBytes / (header.Samples() * header.SampleBytes());
}

/// Samples to bytes: entry v is v scaled from the largest value to 255. Larger values than that are clamped.
ByteVector ScaleTable(const Header& header) {
    ByteVector table(header.SampleBytes() == 1 ? 256 : 65536);
    for (std::uint32_t value = 0; value < table.size(); ++value)
        table[value] =
            header.kind == Kind::Bitmap ? (value & 1 ? 0 : 255) : ScaleTo8Bits(value, header.maximum);
    return table;
}

/// The raster as rows of one byte a sample.
class RasterReader {
  public:
    RasterReader(Bytes raster, const Header& header)
        : header_(header),
          reader_(raster),
          scale_(ScaleTable(header)),
          row_(header.width * header.Samples()) {}

    /// The samples of the next row, fewer where the file ends or holds no number.
    Bytes Next() {
        if (header_.plain) return header_.kind == Kind::Bitmap ? NextPlainBits() : NextPlainNumbers();
        return header_.kind == Kind::Bitmap ? NextBits() : NextNumbers();
    }

  private:
    Bytes NextPlainBits() {
        std::size_t count = 0;
        for (; count < row_.size(); ++count) {
            SkipSpace(reader_);  // the digits may stand together
            const std::uint8_t digit = reader_.Peek();
            if (digit != '0' && digit != '1') break;
            reader_.Skip(1);
            row_[count] = scale_[digit - '0'];
        }
        return Bytes(row_).first(count);
    }

    Bytes NextPlainNumbers() {
        std::size_t count = 0;
        for (; count < row_.size(); ++count) {
            const auto value = ReadNumber(reader_);
            if (!value) break;
            row_[count] = scale_[std::min<std::size_t>(*value, scale_.size() - 1)];
        }
        return Bytes(row_).first(count);
    }

    Bytes NextBits() {
        const Bytes packed = reader_.TakeUpTo(header_.RowBytes());
        const auto samples = std::span(row_).first(std::min(row_.size(), packed.size() * 8));
        UnpackBits(packed, 1, samples);
        for (std::uint8_t& sample : samples) sample = scale_[sample];
        return samples;
    }

    Bytes NextNumbers() {
        const std::size_t bytes = header_.SampleBytes();
        const Bytes packed = reader_.TakeUpTo(header_.RowBytes());
        if (header_.maximum == 255) return packed;
        const auto samples = std::span(row_).first(packed.size() / bytes);
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = scale_[bytes == 1 ? packed[i] : packed[2 * i] << 8 | packed[2 * i + 1]];
        return samples;
    }

    const Header& header_;
    ByteReader reader_;
    ByteVector scale_;
    ByteVector row_;
};

}  // namespace

bool RecognisePnm(Bytes file) {
    return file.size() >= 3 && file[0] == 'P' && file[1] >= '1' && file[1] <= '6' &&
           (IsSpace(file[2]) || file[2] == '#');
}

Result<Picture> DecodePnm(Bytes file, const DecodeOptions& options) {
    TRY_ASSIGN(const Header header, ReadHeader(file));
    TRY(options.limits.Check(header.width, header.height));
    const Bytes raster = Slice(file, header.rasterOffset);
    TRY(CheckDataFor(std::uint64_t{header.width} * header.height, PossiblePixels(header, raster.size())));
    TRY_ASSIGN(Picture picture, Picture::Create(header.width, header.height, Alpha::None, options.limits));
    RasterReader reader(raster, header);
    for (int y = 0; y < picture.Height(); ++y) {
        const Bytes samples = reader.Next();
        const std::size_t count = samples.size() / header.Samples();
        const auto row = picture.MutableRow(y);
        if (header.kind == Kind::Color)
            RgbToPixels(samples, row.first(count));
        else
            GreyToPixels(samples, row.first(count));
        if (count == row.size()) continue;
        if (y == 0 && count == 0) return Damaged("the file holds no pixels");
        std::ranges::fill(row.subspan(count), kWhite);
        picture.FillRows(y + 1, picture.Height(), kWhite);
        break;
    }
    return picture;
}

}  // namespace tessara
