// Writing PNG in the leanest form that holds the picture exactly. Rows are filtered and deflated as they
// come.

#include <isa-l/igzip_lib.h>
#include <libdeflate.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "core/rastx/Exif.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Png.h"
#include "core/rastx/codecs/PngFilter.h"
#include "core/rastx/codecs/PngForm.h"
#include "core/rastx/codecs/PngFormat.h"

namespace tessara {
namespace {

using namespace png;

/// Makes rows of samples.
class RowPacker {
  public:
    RowPacker(Form form, ColorTable& table) : form_(form), table_(table) {}

    void Pack(std::span<const Pixel> pixels, std::span<std::uint8_t> row) {
        switch (form_.colorType) {
            case kRgb:
                return PixelsToRgb(pixels, row);
            case kRgbAlpha:
                return PixelsToRgba(pixels, row);
            case kGreyAlpha:
                for (std::size_t i = 0; i < pixels.size(); ++i) {
                    row[2 * i] = pixels[i].g;
                    row[2 * i + 1] = pixels[i].a;
                }
                return;
            case kGrey:
                return PackSamples(pixels, row, [unit = 255 / ((1 << form_.depth) - 1)](Pixel pixel) {
                    return static_cast<unsigned>(pixel.g / unit);
                });
            default:
                return PackSamples(pixels, row,
                                   [this](Pixel pixel) { return unsigned{table_.IndexOf(pixel)}; });
        }
    }

  private:
    template <typename SampleOf>
    void PackSamples(std::span<const Pixel> pixels, std::span<std::uint8_t> row, const SampleOf& sampleOf) {
        const auto depth = static_cast<unsigned>(form_.depth);
        const std::size_t perByte = 8 / depth;
        Pixel last = pixels[0];
        unsigned sample = sampleOf(last);
        std::size_t x = 0;
        for (std::uint8_t& byte : row) {
            unsigned bits = 0;
            for (std::size_t i = 0; i < perByte; ++i, ++x) {
                if (x < pixels.size() && pixels[x] != last) sample = sampleOf(last = pixels[x]);
                bits = bits << depth | (x < pixels.size() ? sample : 0);
            }
            byte = static_cast<std::uint8_t>(bits);
        }
    }

    Form form_;
    ColorTable& table_;
};

Result<void> WriteChunk(ByteSink& sink, std::string_view type, Bytes data) {
    const ByteVector head =
        ByteWriter().U32Be(static_cast<std::uint32_t>(data.size())).Text(type).TakeBytes();
    std::uint32_t crc = libdeflate_crc32(0, type.data(), type.size());
    // Asked about no memory at all, the library would start anew.
    if (!data.empty()) crc = libdeflate_crc32(crc, data.data(), data.size());
    TRY(sink.Write(head));
    TRY(sink.Write(data));
    return sink.Write(ByteWriter().U32Be(crc).Written());
}

Result<void> WritePalette(ByteSink& sink, const std::vector<Pixel>& colors) {
    ByteWriter palette;
    ByteWriter alpha;
    for (const Pixel color : colors) {
        palette.U8(color.r).U8(color.g).U8(color.b);
        if (color.a != 255) alpha.U8(color.a);
    }
    TRY(WriteChunk(sink, "PLTE", palette.Written()));
    return alpha.Size() == 0 ? Result<void>() : WriteChunk(sink, "tRNS", alpha.Written());
}

Result<void> WriteHead(ByteSink& sink, const Picture& picture, Form form) {
    TRY(sink.Write(ByteWriter().Text(kSignature).Written()));
    ByteWriter header;
    header.U32Be(static_cast<std::uint32_t>(picture.Width()))
        .U32Be(static_cast<std::uint32_t>(picture.Height()));
    header.U8(static_cast<std::uint32_t>(form.depth)).U8(form.colorType).U8(0).U8(0).U8(0);
    TRY(WriteChunk(sink, "IHDR", header.Written()));
    constexpr std::uint8_t kRelativeColorimetric[] = {1};
    TRY(WriteChunk(sink, "sRGB", kRelativeColorimetric));

    const Metadata& metadata = picture.Meta();
    const double x = metadata.resolution.x * kInchesPerMetre;
    const double y = metadata.resolution.y * kInchesPerMetre;
    if (metadata.resolution.Known() && std::max(x, y) < INT32_MAX) {
        constexpr int kMetre = 1;
        const auto rounded = [](double value) { return static_cast<std::uint32_t>(std::llround(value)); };
        TRY(WriteChunk(sink, "pHYs", ByteWriter().U32Be(rounded(x)).U32Be(rounded(y)).U8(kMetre).Written()));
    }
    const ByteVector exif = ExifOf(picture);
    return exif.empty() ? Result<void>() : WriteChunk(sink, "eXIf", exif);
}

/// Deflates while the rows come, in chunks of a fixed size.
class Deflater {
  public:
    explicit Deflater(ByteSink& sink)
        : sink_(sink),
          stream_(std::make_unique<isal_zstream>()),
          levelBuffer_(std::make_unique_for_overwrite<std::uint8_t[]>(ISAL_DEF_LVL3_DEFAULT)) {
        isal_deflate_init(stream_.get());
        stream_->level = 3;
        stream_->level_buf = levelBuffer_.get();
        stream_->level_buf_size = ISAL_DEF_LVL3_DEFAULT;
        stream_->gzip_flag = IGZIP_ZLIB;
        Restart();
    }

    Result<void> Add(Bytes bytes, bool last) {
        stream_->next_in = const_cast<std::uint8_t*>(bytes.data());
        stream_->avail_in = static_cast<std::uint32_t>(bytes.size());
        stream_->end_of_stream = last;
        while (stream_->avail_in > 0 || (last && stream_->internal_state.state != ZSTATE_END)) {
            if (isal_deflate(stream_.get()) != COMP_OK) return CannotWrite("deflate failed");
            if (stream_->avail_out == 0) TRY(WriteOut());
        }
        return last ? WriteOut() : Result<void>();
    }

  private:
    static constexpr std::size_t kChunkSize = std::size_t{256} << 10;

    void Restart() {
        stream_->next_out = chunk_.data();
        stream_->avail_out = static_cast<std::uint32_t>(chunk_.size());
    }
    Result<void> WriteOut() {
        const Bytes full = Bytes(chunk_).first(chunk_.size() - stream_->avail_out);
        Restart();
        return full.empty() ? Result<void>() : WriteChunk(sink_, "IDAT", full);
    }

    ByteSink& sink_;
    std::unique_ptr<isal_zstream> stream_;
    std::unique_ptr<std::uint8_t[]> levelBuffer_;
    std::vector<std::uint8_t> chunk_ = std::vector<std::uint8_t>(kChunkSize);
};

/// Gives the rows of a picture as they are deflated: a filter's number, then the samples or their
/// differences.
class StoredRows {
  public:
    StoredRows(const Picture& picture, Form form, ColorTable& table, bool filtered)
        : picture_(picture),
          bytesPerPixel_(form.BytesPerPixel()),
          filtered_(filtered),
          packer_(form, table),
          filter_(form.RowSize(picture.Width())),
          prior_(form.RowSize(picture.Width())),
          current_(form.RowSize(picture.Width())) {}

    std::size_t Size() const { return current_.Size() + 1; }
    void Store(int y, std::span<std::uint8_t> stored) {
        packer_.Pack(picture_.Row(y), current_.Span());
        if (filtered_) {
            filter_.Store(current_, prior_, bytesPerPixel_, stored);
            std::swap(prior_, current_);
            return;
        }
        stored[0] = static_cast<std::uint8_t>(Filter::None);
        std::ranges::copy(current_.View(), stored.begin() + 1);
    }

  private:
    const Picture& picture_;
    std::size_t bytesPerPixel_;
    bool filtered_;
    RowPacker packer_;
    RowFilter filter_;
    PaddedRow prior_, current_;
};

/// Differences say nothing between the numbers of palette colours, or between pixels that share a byte.
bool WorthFiltering(Form form) {
    return form.colorType != kPalette && form.depth == 8;
}

Result<void> WriteStreamed(ByteSink& sink, const Picture& picture, Form form, ColorTable& table) {
    constexpr std::size_t kBatch = std::size_t{128} << 10;
    StoredRows rows(picture, form, table, WorthFiltering(form));
    Deflater deflater(sink);
    const std::size_t rowsPerBatch = std::max<std::size_t>(1, kBatch / rows.Size());
    std::vector<std::uint8_t> batch(rowsPerBatch * rows.Size());
    std::size_t used = 0;
    for (int y = 0; y < picture.Height(); ++y) {
        rows.Store(y, std::span(batch).subspan(used, rows.Size()));
        used += rows.Size();
        const bool last = y + 1 == picture.Height();
        if (used < batch.size() && !last) continue;
        TRY(deflater.Add(Bytes(batch).first(used), last));
        used = 0;
    }
    return {};
}

/// All rows at once at a higher level; empty where memory for the compressor is wanting.
ByteVector DeflateWhole(const Picture& picture, Form form, ColorTable& table, bool filtered) {
    // Measured so that no picture takes noticeably longer than the streamed ones.
    constexpr std::size_t kThorough = std::size_t{1} << 18;
    const int level = picture.PixelCount() <= kThorough ? 6 : 3;
    StoredRows rows(picture, form, table, filtered);
    ByteVector plain(rows.Size() * static_cast<std::size_t>(picture.Height()));
    for (int y = 0; y < picture.Height(); ++y)
        rows.Store(y, std::span(plain).subspan(static_cast<std::size_t>(y) * rows.Size(), rows.Size()));
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), &libdeflate_free_compressor);
    if (!compressor) return {};
    ByteVector deflated(libdeflate_zlib_compress_bound(compressor.get(), plain.size()));
    deflated.resize(libdeflate_zlib_compress(compressor.get(), plain.data(), plain.size(), deflated.data(),
                                             deflated.size()));
    return deflated;
}

Result<void> WritePixels(ByteSink& sink, const Picture& picture, Form form, ColorTable& table) {
    constexpr std::size_t kSmall = std::size_t{1} << 20;
    constexpr std::size_t kTriedTwice = std::size_t{1}
                                        << 16;  // small drawings are often best without a filter
    if (picture.PixelCount() > kSmall) return WriteStreamed(sink, picture, form, table);
    ByteVector best = DeflateWhole(picture, form, table, WorthFiltering(form));
    if (WorthFiltering(form) && picture.PixelCount() <= kTriedTwice) {
        ByteVector unfiltered = DeflateWhole(picture, form, table, false);
        if (unfiltered.size() < best.size()) best = std::move(unfiltered);
    }
    if (best.empty()) return WriteStreamed(sink, picture, form, table);
    return WriteChunk(sink, "IDAT", best);
}

Result<void> WriteFile(ByteSink& sink, const Picture& picture, Form form, ColorTable& table) {
    TRY(WriteHead(sink, picture, form));
    if (form.colorType == kPalette) TRY(WritePalette(sink, table.Colors()));
    TRY(WritePixels(sink, picture, form, table));
    return WriteChunk(sink, "IEND", {});
}

}  // namespace

Result<void> EncodePng(const Picture& picture, const EncodeOptions&, ByteSink& sink) {
    ColorTable table;
    const Form form = ChooseForm(picture, table);
    return WriteFile(sink, picture, form, table);
}

Result<void> EncodePngRgba(const Picture& picture, ByteSink& sink) {
    ColorTable unused;
    return WriteFile(sink, picture, {kRgbAlpha, 8}, unused);
}

}  // namespace tessara
