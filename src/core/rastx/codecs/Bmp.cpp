#include "core/rastx/codecs/Bmp.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Dib.h"

// A bitmap file, all little-endian:
//
//   0   "BM"
//   2   u32  length of the file, unreliable
//   6   u32  0, or a hot spot
//   10  u32  offset of the pixels
//   14  a device independent bitmap, see Dib.cpp
//
// An OS/2 array ("BA") puts such a header of 14 bytes before each of its files.

namespace tessara {
namespace {

constexpr std::size_t kFileHeaderSize = 14;
constexpr std::uint32_t kInfoHeaderSize = 40;
constexpr std::uint32_t kV5HeaderSize = 124;
constexpr std::uint32_t kBitFields = 3;

bool IsArray(Bytes file) {
    return HasSignature(file, "BA") && HasSignature(file, "BM", kFileHeaderSize);
}

std::int32_t PerMetre(double dotsPerInch) {
    constexpr double kMetresPerInch = 0.0254;
    return static_cast<std::int32_t>(std::lround(std::clamp(dotsPerInch / kMetresPerInch, 0.0, 1e9)));
}

/// The two headers up to the colours used, which are what both kinds of file share.
Result<ByteWriter> Headers(const Picture& picture, std::uint32_t infoSize, std::uint32_t bitsPerPixel,
                           std::uint32_t compression, std::uint64_t stride) {
    if (picture.Empty()) return BadArgument("there is no picture to write");
    const std::uint64_t imageSize = stride * static_cast<std::uint64_t>(picture.Height());
    const std::uint64_t offset = kFileHeaderSize + infoSize;
    if (offset + imageSize > UINT32_MAX) return TooBig("the picture is too large for a bitmap file");
    const Resolution resolution = picture.Meta().resolution;
    ByteWriter writer;
    writer.Text("BM").U32Le(static_cast<std::uint32_t>(offset + imageSize)).U32Le(0);
    writer.U32Le(static_cast<std::uint32_t>(offset)).U32Le(infoSize);
    writer.I32Le(picture.Width()).I32Le(picture.Height()).U16Le(1).U16Le(bitsPerPixel).U32Le(compression);
    writer.U32Le(static_cast<std::uint32_t>(imageSize));
    writer.I32Le(PerMetre(resolution.x)).I32Le(PerMetre(resolution.y)).U32Le(0).U32Le(0);
    return writer;
}

/// Writes the rows from the bottom up, many at a time. `pack(row, bytes)` fills the bytes of one row, whose
/// padding is 0 already.
template <typename Pack>
Result<void> WriteRows(const Picture& picture, std::uint64_t stride, ByteSink& sink, const Pack& pack) {
    // More than a file's buffer, which then passes it on as it is, and still no more than the cache holds.
    constexpr std::uint64_t kBlockSize = std::uint64_t{512} << 10;
    const auto rowsPerBlock = static_cast<int>(kBlockSize / stride + 1);
    std::vector<std::uint8_t> block(stride *
                                    static_cast<std::uint64_t>(std::min(rowsPerBlock, picture.Height())));
    for (int bottom = picture.Height(); bottom > 0; bottom -= rowsPerBlock) {
        const int rows = std::min(rowsPerBlock, bottom);
        const std::span<std::uint8_t> used(block.data(), stride * static_cast<std::uint64_t>(rows));
        for (int i = 0; i < rows; ++i)
            pack(picture.Row(bottom - 1 - i), used.subspan(stride * static_cast<std::uint64_t>(i), stride));
        TRY(sink.Write(used));
    }
    return {};
}

}  // namespace

bool RecogniseBmp(Bytes file) {
    return HasSignature(file, "BM") || IsArray(file) || LooksLikeDib(file);
}

Result<Picture> DecodeBmp(Bytes file, const DecodeOptions& options) {
    const std::size_t start = IsArray(file) ? kFileHeaderSize : 0;
    if (!HasSignature(file, "BM", start)) return DecodeDib(file, std::nullopt, {}, options);
    ByteReader reader(file);
    reader.Skip(start + 10);
    const std::uint64_t pixels = reader.U32Le();
    if (reader.Overrun()) return Damaged("the bitmap's file header is cut");
    // Offsets count from the start of the file, also inside an array.
    const std::uint64_t headers = start + kFileHeaderSize;
    DibOptions dibOptions;
    dibOptions.pixelOffset = pixels > headers ? pixels - headers : 0;
    return DecodeDib(reader.Rest(), std::nullopt, dibOptions, options);
}

Result<void> EncodeBmp(const Picture& picture, const EncodeOptions&, ByteSink& sink) {
    const std::uint64_t stride = (static_cast<std::uint64_t>(picture.Width()) * 3 + 3) / 4 * 4;
    TRY_ASSIGN(const ByteWriter headers, Headers(picture, kInfoHeaderSize, 24, 0, stride));
    TRY(sink.Write(headers.Written()));
    if (!picture.HasAlpha()) return WriteRows(picture, stride, sink, PixelsToBgr);
    std::vector<Pixel> flat(static_cast<std::size_t>(picture.Width()));
    return WriteRows(picture, stride, sink, [&](std::span<const Pixel> row, std::span<std::uint8_t> bytes) {
        FlattenRow(row, kWhite, flat);
        PixelsToBgr(flat, bytes);
    });
}

Result<void> EncodeBmpWithAlpha(const Picture& picture, ByteSink& sink) {
    if (!picture.HasAlpha()) return EncodeBmp(picture, {}, sink);
    const std::uint64_t stride = static_cast<std::uint64_t>(picture.Width()) * sizeof(Pixel);
    TRY_ASSIGN(ByteWriter headers, Headers(picture, kV5HeaderSize, 32, kBitFields, stride));
    constexpr std::uint32_t kSrgb = 0x73524742;
    constexpr std::uint32_t kImages = 4;  // rendering intent: perceptual
    headers.U32Le(0xff0000).U32Le(0x00ff00).U32Le(0x0000ff).U32Le(0xff000000);
    headers.U32Le(kSrgb).Zeros(36 + 12).U32Le(kImages).Zeros(12);
    TRY(sink.Write(headers.Written()));
    return WriteRows(picture, stride, sink, [](std::span<const Pixel> row, std::span<std::uint8_t> bytes) {
        std::memcpy(bytes.data(), row.data(), bytes.size());
    });
}

}  // namespace tessara
