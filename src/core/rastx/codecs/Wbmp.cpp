#include "core/rastx/codecs/Wbmp.h"

#include <algorithm>
#include <array>
#include <optional>

#include "core/ByteReader.h"
#include "core/rastx/ErrorDiffusion.h"
#include "core/rastx/Rows.h"

// Wireless bitmap, type 0 (WAP-237 Wireless Application Environment, section 4.5.1). There is no magic
// number.
//
//   0            type, as a multi-byte integer
//   0            fixed header; bit 7 would announce extension headers
//   width        multi-byte integers: groups of seven bits, the most significant first; bit 7 says that
//   height       another group follows
//   rows         from top to bottom, eight pixels a byte, the leftmost in bit 7; 1 is white

namespace tessara {
namespace {

struct Header {
    std::uint32_t width = 0;
    std::uint32_t height = 0;

    std::uint64_t RowBytes() const { return (std::uint64_t{width} + 7) / 8; }
    std::uint64_t DataBytes() const { return RowBytes() * height; }
};

/// None where the number ends nowhere or is larger than any size that is read.
std::optional<std::uint32_t> ReadMultiByte(ByteReader& reader) {
    constexpr int kMostBytes = 5;
    constexpr std::uint32_t kLargest = 0xffff;
    std::uint32_t value = 0;
    for (int i = 0; i < kMostBytes && !reader.AtEnd(); ++i) {
        const std::uint8_t byte = reader.U8();
        value = value << 7 | (byte & 0x7fu);
        if (value > kLargest) return std::nullopt;
        if (!(byte & 0x80)) return value;
    }
    return std::nullopt;
}

std::optional<Header> ReadHeader(ByteReader& reader) {
    if (reader.Left() < 4 || reader.U8() != 0 || reader.U8() != 0) return std::nullopt;
    const auto width = ReadMultiByte(reader);
    const auto height = ReadMultiByte(reader);
    if (!width || !height || *width == 0 || *height == 0) return std::nullopt;
    return Header{*width, *height};
}

void WriteMultiByte(ByteWriter& writer, std::uint32_t value) {
    int shift = 0;
    while (value >> shift >= 0x80) shift += 7;
    for (; shift > 0; shift -= 7) writer.U8((value >> shift & 0x7f) | 0x80);
    writer.U8(value & 0x7f);
}

/// A file that is cut short is shown as far as it goes, but what is left of it must be some part of a large
/// picture.
bool IsPlausible(const Header& header, std::size_t dataBytes) {
    constexpr std::uint64_t kAlwaysPlausible = std::uint64_t{512} << 10;
    return header.DataBytes() <= std::max(kAlwaysPlausible, std::uint64_t{dataBytes} * 16);
}

}  // namespace

bool RecogniseWbmp(Bytes file) {
    ByteReader reader(file);
    const auto header = ReadHeader(reader);
    return header && reader.Left() == header->DataBytes();
}

Result<Picture> DecodeWbmp(Bytes file, const DecodeOptions& options) {
    ByteReader reader(file);
    const auto header = ReadHeader(reader);
    if (!header) return Damaged("not a wireless bitmap of type 0");
    TRY(options.limits.Check(header->width, header->height));
    if (reader.Left() < header->RowBytes()) return Damaged("not one row of the picture is there");
    if (!IsPlausible(*header, reader.Left())) return Damaged("the picture is larger than the file");

    TRY_ASSIGN(Picture picture, Picture::Create(header->width, header->height, Alpha::None, options.limits));
    constexpr Pixel kColors[] = {kBlack, kWhite};
    const auto pixels = picture.MutablePixels();
    ByteVector bits(header->width);
    int y = 0;
    for (; y < picture.Height() && reader.Left() >= header->RowBytes(); ++y) {
        UnpackBits(reader.Take(header->RowBytes()), 1, bits);
        PaletteToPixels(
            bits, kColors,
            pixels.subspan(std::size_t{header->width} * static_cast<std::size_t>(y), bits.size()));
    }
    picture.FillRows(y, picture.Height(), kWhite);
    return picture;
}

Result<void> EncodeWbmp(const Picture& picture, const EncodeOptions&, ByteSink& sink) {
    if (picture.Empty()) return BadArgument("an empty picture");
    ByteWriter header;
    header.U8(0).U8(0);
    WriteMultiByte(header, static_cast<std::uint32_t>(picture.Width()));
    WriteMultiByte(header, static_cast<std::uint32_t>(picture.Height()));
    TRY(sink.Write(header.Written()));

    const auto width = static_cast<std::size_t>(picture.Width());
    std::vector<Pixel> flat(picture.HasAlpha() ? width : 0);
    ByteVector luma(width);
    ErrorDiffusion<int> diffusion(picture.Width());
    for (int y = 0; y < picture.Height(); ++y) {
        auto row = picture.Row(y);
        if (picture.HasAlpha()) {
            FlattenRow(row, kWhite, flat);
            row = flat;
        }
        PixelsToLuma(row, luma);
        ByteVector packed((width + 7) / 8);
        diffusion.NextRow([&](int x, int sixteenths) {
            const auto column = static_cast<std::size_t>(x);
            const int wanted = luma[column] + ((sixteenths + 8) >> 4);
            if (wanted < 128) return wanted;
            packed[column / 8] |= static_cast<std::uint8_t>(0x80 >> column % 8);
            return wanted - 255;
        });
        TRY(sink.Write(packed));
    }
    return {};
}

}  // namespace tessara
