#include "core/rastx/codecs/Tif.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Exif.h"
#include "core/rastx/Rows.h"
#include "core/rastx/TiffDirectory.h"
#include "core/rastx/codecs/Jpg.h"
#include "tiff/TifChunks.h"
#include "tiff/TifColors.h"
#include "tiff/TifFile.h"

// TIFF 6.0 and its supplements. libtiff finds the directory and unpacks the rarer compressions; the samples
// are turned into pixels here.

namespace tessara {
namespace {

/// How much of a chunk's memory a byte of the file can fill at most, roughly, by compression.
std::uint64_t LargestGain(int compression) {
    switch (compression) {
        case COMPRESSION_NONE:
            return 1;
        case COMPRESSION_PACKBITS:
            return 64;
        case COMPRESSION_LZW:
        case COMPRESSION_ADOBE_DEFLATE:
        case COMPRESSION_DEFLATE:
            return 3000;
        default:
            return 65536;  // a bit for a white row of a fax
    }
}

/// Whether the file is long enough for a usable part of the picture that it claims to hold.
Result<void> CheckPlausible(const TifFile& file, const Limits& limits) {
    constexpr std::uint64_t kLargestLine = std::uint64_t{64} << 20;
    // Where only the first 64th of a picture arrived, nobody misses the file.
    constexpr std::uint64_t kSmallestPart = 64;
    const TifLayout& layout = file.Layout();
    TRY(limits.Check(layout.width, layout.height));
    const std::uint64_t samplesPerRow =
        std::uint64_t{layout.chunkWidth} * static_cast<unsigned>(layout.samples);
    if (layout.BytesPerLine() > kLargestLine || samplesPerRow > kLargestLine ||
        layout.BytesPerChunk() > limits.decodedBytes)
        return TooBig("a strip or tile needs too much memory");
    const std::uint64_t claimed = layout.BytesPerChunk() * layout.chunksAcross * layout.chunksDown;
    if (claimed / LargestGain(layout.compression) / kSmallestPart > file.File().size())
        return Damaged("the file is too short for its picture");
    return {};
}

struct Area {
    std::uint32_t x, y, width, height;
};

/// Puts the chunks of a file into a picture.
class ChunkAssembler {
  public:
    ChunkAssembler(const TifFile& file, TifColors& colors, Picture& picture)
        : layout_(file.Layout()),
          reader_(file),
          colors_(colors),
          picture_(picture),
          pixels_(picture.MutablePixels()) {}

    Result<void> Run() {
        bool any = false;
        for (std::uint32_t index = 0; index < layout_.chunksAcross * layout_.chunksDown; ++index) {
            const Area area = AreaOf(index);
            const std::uint32_t rows =
                colors_.Planes().size() == 1 ? PlaceChunk(index, area) : PlacePlanes(index, area);
            any |= rows > 0;
            if (rows < area.height)
                missing_.push_back({area.x, area.y + rows, area.width, area.height - rows});
        }
        if (!any) return Damaged("no strip or tile can be unpacked");
        for (const Area& area : missing_) Blank(area);
        return {};
    }

  private:
    Area AreaOf(std::uint32_t index) const {
        const std::uint32_t x = index % layout_.chunksAcross * layout_.chunkWidth;
        const std::uint32_t y = index / layout_.chunksAcross * layout_.chunkHeight;
        return {x, y, std::min(layout_.chunkWidth, layout_.width - x),
                std::min(layout_.chunkHeight, layout_.height - y)};
    }

    std::span<Pixel> RowOf(const Area& area, std::uint32_t row) const {
        return pixels_.subspan(std::size_t{area.y + row} * layout_.width + area.x, area.width);
    }

    /// Places what can be read of a chunk and returns the number of its rows.
    std::uint32_t PlaceChunk(std::uint32_t index, const Area& area) {
        const TifChunk chunk = reader_.Read(index, layout_.LinesOf(area.height));
        const auto bytesPerLine = static_cast<std::size_t>(layout_.BytesPerLine());
        const std::uint32_t rows = std::min(area.height, chunk.lines * layout_.blockHeight);
        for (std::uint32_t row = 0; row < rows; ++row) {
            const Bytes line = chunk.Line(row / layout_.blockHeight, bytesPerLine);
            colors_.Convert({&line, 1}, row % layout_.blockHeight, chunk.swapped, RowOf(area, row));
        }
        return rows;
    }

    /// The same where each sample has its own chunk: they are needed together, so all but the last are set
    /// aside.
    std::uint32_t PlacePlanes(std::uint32_t index, const Area& area) {
        const std::span<const std::uint32_t> planes = colors_.Planes();
        const auto bytesPerLine = static_cast<std::size_t>(layout_.BytesPerLine());
        setAside_.resize(planes.size());
        std::uint32_t rows = area.height;
        bool swapped = false;
        for (std::size_t i = 0; i < planes.size(); ++i) {
            const TifChunk chunk = reader_.Read(index + planes[i] * layout_.chunksPerPlane, rows);
            rows = chunk.lines;
            swapped = chunk.swapped;
            if (rows == 0) return 0;
            setAside_[i].assign(chunk.bytes.begin(),
                                chunk.bytes.begin() + static_cast<std::ptrdiff_t>(rows * bytesPerLine));
        }
        std::vector<Bytes> lines(planes.size());
        for (std::uint32_t row = 0; row < rows; ++row) {
            for (std::size_t i = 0; i < planes.size(); ++i)
                lines[i] = Bytes(setAside_[i]).subspan(row * bytesPerLine, bytesPerLine);
            colors_.Convert(lines, 0, swapped, RowOf(area, row));
        }
        return rows;
    }

    void Blank(const Area& area) {
        for (std::uint32_t row = 0; row < area.height; ++row)
            std::ranges::fill(RowOf(area, row), picture_.HasAlpha() ? kTransparent : kWhite);
    }

    const TifLayout& layout_;
    TifChunkReader reader_;
    TifColors& colors_;
    const Picture& picture_;
    std::span<Pixel> pixels_;
    std::vector<Area> missing_;
    std::vector<ByteVector> setAside_;
};

Result<Picture> ReadChunks(const TifFile& file, TifColors& colors, const Limits& limits) {
    const TifLayout& layout = file.Layout();
    TRY_ASSIGN(Picture picture, Picture::Create(layout.width, layout.height,
                                                colors.HasAlpha() ? Alpha::Straight : Alpha::None, limits));
    TRY(ChunkAssembler(file, colors, picture).Run());
    return picture;
}

/// Kinds of samples that are not read here (logarithmic ones, say) as libtiff would show them.
Result<Picture> ReadThroughLibtiff(const TifFile& file, const Limits& limits) {
    const TifLayout& layout = file.Layout();
    TIFFRGBAImage image;
    std::array<char, 1024> message{};
    if (!TIFFRGBAImageOK(file.Handle(), message.data()) ||
        !TIFFRGBAImageBegin(&image, file.Handle(), 1, message.data()))
        return Unsupported("samples of an unknown kind");
    image.req_orientation = image.orientation;  // the picture is turned later, and then completely
    Result<Picture> made = Picture::Create(layout.width, layout.height, Alpha::Straight, limits);
    bool read = false;
    if (made) {
        const std::span<Pixel> pixels = made.Value().MutablePixels();
        read = TIFFRGBAImageGet(&image, reinterpret_cast<std::uint32_t*>(pixels.data()), layout.width,
                                layout.height) != 0;
    }
    TIFFRGBAImageEnd(&image);
    if (!made) return made;
    if (!read) return Damaged("the samples cannot be unpacked");
    const std::span<Pixel> pixels = made.Value().MutablePixels();
    RgbaToPixels({reinterpret_cast<const std::uint8_t*>(pixels.data()), pixels.size() * sizeof(Pixel)},
                 pixels);
    Unpremultiply(pixels);
    return made;
}

/// JPEG that contradicts its directory (subsampling, colours, strips that make no sense) is often a whole
/// JPEG file that can be read by itself.
Result<Picture> ReadCarriedJpeg(const TifFile& file, const DecodeOptions& options) {
    const TifLayout& layout = file.Layout();
    std::uint64_t offset = 0;
    if (layout.compression == COMPRESSION_JPEG && layout.chunksPerPlane == 1)
        offset = TIFFGetStrileOffset(file.Handle(), 0);
    else if (layout.compression == COMPRESSION_OJPEG)
        TIFFGetField(file.Handle(), TIFFTAG_JPEGIFOFFSET, &offset);
    const Bytes jpeg = Slice(file.File(), offset);
    if (offset == 0 || !RecogniseJpg(jpeg) || options.nestingLeft <= 0)
        return Damaged("no JPEG file is carried");
    TRY_ASSIGN(Picture picture, DecodeJpg(jpeg, options.Nested()));
    if (std::cmp_not_equal(picture.Width(), layout.width) ||
        std::cmp_not_equal(picture.Height(), layout.height))
        return Damaged("the carried JPEG is another picture");
    return picture;
}

Result<Picture> ReadPicture(const TifFile& file, const DecodeOptions& options) {
    std::optional<TifColors> colors = TifColors::For(file);
    if (!colors) return ReadThroughLibtiff(file, options.limits);
    Result<Picture> picture = ReadChunks(file, *colors, options.limits);
    if (picture) return picture;
    Result<Picture> carried = ReadCarriedJpeg(file, options);
    return carried ? carried : picture;
}

/// A TIFF begins like an EXIF block, so what both can tell of a picture is read as if the file were one.
Metadata ReadMetadata(const TifFile& file) {
    Metadata metadata{file.DotsPerInch(), nullptr};
    Result<ByteVector> exif = MakeExif(ReadExifDirectories(file.File()));
    if (exif && !exif.Value().empty())
        metadata.exif = std::make_shared<const ByteVector>(std::move(exif).Value());
    return metadata;
}

Result<Picture> ReadTif(Bytes file, const DecodeOptions& options) {
    TRY_ASSIGN(const TifFile opened, TifFile::Open(file));
    TRY(CheckPlausible(opened, options.limits));
    TRY_ASSIGN(Picture picture, ReadPicture(opened, options));
    picture.DropUnusedAlpha();
    picture.SetMeta(ReadMetadata(opened));
    return ApplyOrientation(std::move(picture), opened.Layout().orientation);
}

}  // namespace

/// The entry of the TIFF module.
extern "C" __attribute__((visibility("default"))) void TessaraReadTiff(Bytes file,
                                                                       const DecodeOptions& options,
                                                                       Result<Picture>& read) {
    read = ReadTif(file, options);
}

}  // namespace tessara
