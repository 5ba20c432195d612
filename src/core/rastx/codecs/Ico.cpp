#include "core/rastx/codecs/Ico.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <tuple>
#include <vector>

#include "core/ByteReader.h"
#include "core/Parallel.h"
#include "core/rastx/codecs/Dib.h"
#include "core/rastx/codecs/Png.h"
#include "core/rastx/effects/Resample.h"

// A Windows icon or cursor, all little-endian:
//
//   0   u16  0
//   2   u16  1 icon, 2 cursor
//   4   u16  number of pictures, then 16 bytes for each:
//            u8  width, height (0: 256), colours, 0
//            u16 planes and bits per pixel, or a cursor's hot spot
//            u32 length and offset of the data
//   a picture is a PNG file, or a device independent bitmap (see Dib.cpp) whose height counts twice: the
//   pixels, and under them a mask of 1 bit per pixel, 1 where the screen shows through
//
// Sizes and depths of the directory are often wrong; those of the pictures themselves are used.
// Source: the Windows reference, "Icons" and NEWHEADER/RESDIR.

namespace tessara {
namespace {

constexpr std::size_t kDirectorySize = 6;
constexpr std::size_t kEntrySize = 16;
constexpr int kLargestSide = 256;
constexpr std::size_t kMostTries = 32;  // a hostile file can hold any number of damaged pictures

struct Entry {
    Bytes data;
    bool png = false;
    bool hasMask = true;
    bool whole = false;
    std::int64_t area = 0;
    int bitsPerPixel = 0;
};

std::optional<Entry> PngEntry(Bytes data) {
    constexpr std::size_t kSizeOffset = 16;
    ByteReader reader(data);
    reader.Skip(kSizeOffset);
    const std::int64_t width = reader.U32Be();
    const std::int64_t height = reader.U32Be();
    if (reader.Overrun() || !Limits{}.Check(width, height)) return {};
    return Entry{.data = data, .png = true, .whole = true, .area = width * height, .bitsPerPixel = 32};
}

/// A bitmap as high as the directory says, instead of twice that, forgot its mask, if its data bear that out.
std::optional<Entry> BitmapEntry(Bytes data, std::int64_t heightInDirectory) {
    const std::optional<DibShape> shape = DibShapeOf(data);
    if (!shape) return {};
    const auto holdsRows = [&](std::int64_t rows) {
        return shape->rowsStart + shape->stride * static_cast<std::uint64_t>(rows) <= data.size();
    };
    Entry entry{.data = data, .bitsPerPixel = shape->bitsPerPixel};
    entry.hasMask = shape->height != heightInDirectory || !holdsRows(shape->height);
    const std::int64_t height = entry.hasMask ? shape->height / 2 : shape->height;
    if (!Limits{}.Check(shape->width, height)) return {};
    entry.whole = holdsRows(height);
    entry.area = shape->width * height;
    return entry;
}

/// The place and height of a picture as the directory tells them.
struct DirectoryRow {
    std::int64_t height = 0;
    std::uint64_t offset = 0;
    std::uint64_t end = 0;  ///< where the next picture begins: the lengths are not reliable enough to be used
};

std::vector<DirectoryRow> ReadDirectory(Bytes file) {
    enum Type : std::uint16_t { kIcon = 1, kCursor = 2 };
    ByteReader reader(file);
    const std::uint16_t reserved = reader.U16Le();
    const std::uint16_t type = reader.U16Le();
    const std::size_t count = reader.U16Le();
    if (reserved != 0 || (type != kIcon && type != kCursor)) return {};
    std::vector<DirectoryRow> rows;
    for (std::size_t i = 0; i < count && reader.Left() >= kEntrySize; ++i) {
        reader.Skip(1);
        const std::uint8_t height = reader.U8();
        reader.Skip(10);
        rows.push_back({height == 0 ? kLargestSide : height, reader.U32Le(), 0});
    }
    const std::uint64_t end = kDirectorySize + kEntrySize * count;
    std::erase_if(rows,
                  [&](const DirectoryRow& row) { return row.offset < end || row.offset >= file.size(); });
    // The order in the file, each picture once; the first row of several that share one counts.
    std::ranges::stable_sort(rows, {}, &DirectoryRow::offset);
    const auto sameOffset = [](const DirectoryRow& a, const DirectoryRow& b) { return a.offset == b.offset; };
    rows.erase(std::unique(rows.begin(), rows.end(), sameOffset), rows.end());
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].end = i + 1 < rows.size() ? rows[i + 1].offset : file.size();
    return rows;
}

/// The pictures that can be read at first sight, the best first: whole, large, deep.
std::vector<Entry> FindEntries(Bytes file) {
    std::vector<Entry> entries;
    for (const DirectoryRow& row : ReadDirectory(file)) {
        const Bytes data = Slice(file, row.offset, row.end - row.offset);
        const auto entry = RecognisePng(data) ? PngEntry(data) : BitmapEntry(data, row.height);
        if (entry) entries.push_back(*entry);
    }
    std::ranges::stable_sort(entries, std::greater{}, [](const Entry& entry) {
        return std::tuple(entry.whole, entry.area, entry.bitsPerPixel);
    });
    if (entries.size() > kMostTries) entries.erase(entries.begin() + kMostTries, entries.end());
    return entries;
}

Result<Picture> DecodeEntry(const Entry& entry, const DecodeOptions& options) {
    if (entry.png) return DecodePng(entry.data, options.Nested());
    DibOptions dibOptions;
    dibOptions.iconWithMask = entry.hasMask;
    dibOptions.alphaWhereUsed = true;
    return DecodeDib(entry.data, std::nullopt, dibOptions, options);
}

Picture WithTransparentColor(Picture picture, ColorNumber color) {
    const Pixel key = PixelFromColor(color);
    for (Pixel& pixel : picture.MutablePixels())
        if (pixel.r == key.r && pixel.g == key.g && pixel.b == key.b) pixel = kTransparent;
    picture.SetAlpha(Alpha::Straight);
    return picture;
}

Result<Picture> ShrinkToFit(const Picture& picture) {
    const int longSide = std::max(picture.Width(), picture.Height());
    if (longSide <= kLargestSide) return picture;
    const auto fitted = [&](int side) {
        return static_cast<int>(std::lround(static_cast<double>(side) * kLargestSide / longSide));
    };
    return Resample(picture, fitted(picture.Width()), fitted(picture.Height()), ResampleQuality::Best,
                    HardwareThreads());
}

/// A bitmap of 32 bits with its mask, for systems that do not know the alpha in it.
ByteVector EncodeBitmapEntry(const Picture& picture) {
    constexpr std::uint32_t kHeaderSize = 40;
    const auto width = static_cast<std::uint32_t>(picture.Width());
    const auto height = static_cast<std::uint32_t>(picture.Height());
    const std::uint32_t maskStride = (width + 31) / 32 * 4;
    ByteWriter writer;
    writer.U32Le(kHeaderSize).U32Le(width).U32Le(2 * height).U16Le(1).U16Le(32).U32Le(0);
    writer.U32Le((4 * width + maskStride) * height).Zeros(16);
    for (int y = picture.Height() - 1; y >= 0; --y)
        for (const Pixel pixel : picture.Row(y)) writer.U8(pixel.b).U8(pixel.g).U8(pixel.r).U8(pixel.a);
    ByteVector mask(maskStride);
    for (int y = picture.Height() - 1; y >= 0; --y) {
        std::ranges::fill(mask, std::uint8_t{0});
        for (std::size_t x = 0; x < width; ++x)
            if (picture.Row(y)[x].a < 128) mask[x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
        writer.Append(mask);
    }
    return writer.TakeBytes();
}

/// A PNG file in an icon has always four channels: Windows refuses all others, and some readers lose the
/// palette.
Result<ByteVector> EncodeEntry(const Picture& picture) {
    if (std::max(picture.Width(), picture.Height()) < kLargestSide) return EncodeBitmapEntry(picture);
    MemorySink sink;
    TRY(EncodePngRgba(picture, sink));
    return sink.TakeBytes();
}

}  // namespace

bool RecogniseIco(Bytes file) {
    return !FindEntries(file).empty();
}

Result<Picture> DecodeIco(Bytes file, const DecodeOptions& options) {
    if (options.nestingLeft < 1) return Damaged("too many pictures inside one another");
    Failure failure = Damaged("the icon holds no picture");
    for (const Entry& entry : FindEntries(file)) {
        Result<Picture> picture = DecodeEntry(entry, options);
        if (picture) return picture;
        failure = picture.Error();
    }
    return failure;
}

Result<void> EncodeIco(const Picture& picture, const EncodeOptions& options, ByteSink& sink) {
    if (picture.Empty()) return BadArgument("there is no picture to write");
    TRY_ASSIGN(const Picture small,
               ShrinkToFit(options.transparent ? WithTransparentColor(picture, options.color) : picture));
    TRY_ASSIGN(const ByteVector entry, EncodeEntry(small));
    ByteWriter directory;
    directory.U16Le(0).U16Le(1).U16Le(1);
    directory.U8(static_cast<std::uint32_t>(small.Width())).U8(static_cast<std::uint32_t>(small.Height()));
    directory.U8(0).U8(0).U16Le(1).U16Le(32).U32Le(static_cast<std::uint32_t>(entry.size()));
    directory.U32Le(kDirectorySize + kEntrySize);
    TRY(sink.Write(directory.Written()));
    return sink.Write(entry);
}

}  // namespace tessara
