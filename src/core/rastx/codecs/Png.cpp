// Reading PNG. The compressed stream is inflated piece by piece; only rows are held beside the picture.

#include "core/rastx/codecs/Png.h"

#include <algorithm>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/codecs/PngChunks.h"
#include "core/rastx/codecs/PngFilter.h"
#include "core/rastx/codecs/PngFormat.h"
#include "core/rastx/codecs/PngRowConverter.h"
#include "core/rastx/codecs/PngStream.h"

namespace tessara {
namespace {

using namespace png;

/// The pixels of one pass of an interlaced picture, and the block that each stands for until later passes
/// come.
struct Pass {
    int firstX, firstY, stepX, stepY, blockWidth, blockHeight;

    std::int64_t Columns(std::int64_t width) const { return (width - firstX + stepX - 1) / stepX; }
    std::int64_t Rows(std::int64_t height) const { return (height - firstY + stepY - 1) / stepY; }
};
constexpr Pass kAdam7[] = {
    {0, 0, 8, 8, 8, 8}, {4, 0, 8, 8, 4, 8}, {0, 4, 4, 8, 4, 4}, {2, 0, 4, 4, 2, 4},
    {0, 2, 2, 4, 2, 2}, {1, 0, 2, 2, 1, 2}, {0, 1, 1, 2, 1, 1},
};

class PictureReader {
  public:
    PictureReader(const Header& header, RowSource& source, RowConverter& converter, Picture& picture)
        : header_(header),
          source_(source),
          converter_(converter),
          picture_(picture),
          prior_(header.RowSize(header.width)),
          current_(header.RowSize(header.width)) {}

    /// Rows that hold something, from the top.
    int ReadAll() { return header_.interlaced ? ReadPasses() : ReadRows(); }

  private:
    bool ReadRow(std::span<Pixel> pixels) {
        const std::size_t size = header_.RowSize(static_cast<std::int64_t>(pixels.size()));
        const Bytes stored = source_.Take(size + 1);
        if (stored.empty() ||
            !Unfilter(stored[0], stored.subspan(1), prior_, header_.BytesPerPixel(), current_))
            return false;
        converter_.Convert(current_.View().first(size), pixels);
        std::swap(prior_, current_);
        return true;
    }

    int ReadRows() {
        const std::span<Pixel> pixels = picture_.MutablePixels();
        const auto width = static_cast<std::size_t>(picture_.Width());
        int y = 0;
        while (y < picture_.Height() && ReadRow(pixels.subspan(static_cast<std::size_t>(y) * width, width)))
            ++y;
        return y;
    }

    int ReadPasses() {
        std::vector<Pixel> row(static_cast<std::size_t>(header_.width));
        int rows = 0;
        for (const Pass& pass : kAdam7) {
            const std::int64_t columns = pass.Columns(header_.width);
            if (columns <= 0) continue;
            prior_.Clear();
            for (std::int64_t i = 0; i < pass.Rows(header_.height); ++i) {
                const std::span pixels = std::span(row).first(static_cast<std::size_t>(columns));
                if (!ReadRow(pixels)) return rows;
                const int y = pass.firstY + static_cast<int>(i) * pass.stepY;
                Scatter(pass, y, pixels);
                rows = std::max(rows, std::min(picture_.Height(), y + pass.blockHeight));
            }
        }
        return rows;
    }

    void Scatter(const Pass& pass, int y, std::span<const Pixel> row) {
        const int end = std::min(picture_.Height(), y + pass.blockHeight);
        for (int line = y; line < end; ++line) {
            const std::span<Pixel> target = picture_.MutableRow(line);
            std::size_t x = static_cast<std::size_t>(pass.firstX);
            for (const Pixel pixel : row) {
                const std::size_t count =
                    std::min(static_cast<std::size_t>(pass.blockWidth), target.size() - x);
                std::fill_n(target.begin() + static_cast<std::ptrdiff_t>(x), count, pixel);
                x += static_cast<std::size_t>(pass.stepX);
            }
        }
    }

    const Header& header_;
    RowSource& source_;
    RowConverter& converter_;
    Picture& picture_;
    PaddedRow prior_, current_;
};

}  // namespace

bool RecognisePng(Bytes file) {
    return HasSignature(file, kSignature);
}

Result<Picture> DecodePng(Bytes file, const DecodeOptions& options) {
    if (!RecognisePng(file)) return Damaged("not a PNG file");
    ByteReader reader(file.subspan(kSignature.size()));
    Description description;
    TRY_ASSIGN(description.header, ReadHeader(ReadChunk(reader), file.size(), options.limits));
    Chunk chunk = ReadChunk(reader);
    for (; !chunk.type.empty() && chunk.type != "IDAT"; chunk = ReadChunk(reader))
        ReadAncillary(chunk, description);
    const Header& header = description.header;
    if (header.colorType == kPalette && description.palette.empty()) return Damaged("the palette is missing");

    RowConverter converter(description);
    const Alpha alpha = converter.HasAlpha() ? Alpha::Straight : Alpha::None;
    TRY_ASSIGN(Picture picture, Picture::Create(header.width, header.height, alpha, options.limits));
    RowSource source(reader, chunk.data, header.RowSize(header.width));
    const int rows = PictureReader(header, source, converter, picture).ReadAll();
    if (rows == 0) return Damaged("the file holds no row of its picture");
    picture.FillRows(rows, picture.Height(), alpha == Alpha::None ? kWhite : kTransparent);
    picture.DropUnusedAlpha();
    picture.SetMeta(std::move(description.metadata));
    return picture;
}

}  // namespace tessara
