// Writing JPEG through libjpeg-turbo.

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include "core/rastx/Exif.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/Jpg.h"
#include "core/rastx/codecs/JpgLibrary.h"

namespace tessara {
namespace {

using namespace jpg;

/// A file that is being compressed. What the sink refuses is remembered and told at the end; the library need
/// not know.
class Writer {
  public:
    explicit Writer(ByteSink& sink) : sink_(sink) {
        InstallErrorState(Common(), errors_);
        destination_.manager.init_destination = [](j_compress_ptr jpeg) { Destination(jpeg).Restart(); };
        destination_.manager.empty_output_buffer = [](j_compress_ptr jpeg) -> boolean {
            Destination(jpeg).Flush(kBufferSize);
            return TRUE;
        };
        destination_.manager.term_destination = [](j_compress_ptr jpeg) {
            Destination(jpeg).Flush(kBufferSize - Destination(jpeg).manager.free_in_buffer);
        };
        destination_.sink = &sink_;
    }
    ~Writer() { jpeg_destroy_compress(&jpeg_); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    Result<void> Start(const Picture& picture, const EncodeOptions& options);
    Result<void> WriteRows(std::span<const Pixel> rows);
    Result<void> Finish();

  private:
    static constexpr std::size_t kBufferSize = 64 * 1024;

    /// The library's view of the sink; the manager stands first, so that its address is that of the whole.
    struct SinkBuffer {
        jpeg_destination_mgr manager{};
        ByteSink* sink = nullptr;
        std::optional<Failure> failure;
        std::array<std::uint8_t, kBufferSize> bytes;

        void Restart() {
            manager.next_output_byte = bytes.data();
            manager.free_in_buffer = bytes.size();
        }
        void Flush(std::size_t used) {
            if (!failure)
                if (const Result<void> written = sink->Write(Bytes(bytes).first(used)); !written)
                    failure = written.Error();
            Restart();
        }
    };
    static SinkBuffer& Destination(j_compress_ptr jpeg) { return *reinterpret_cast<SinkBuffer*>(jpeg->dest); }

    j_common_ptr Common() { return reinterpret_cast<j_common_ptr>(&jpeg_); }
    void SetForm(const Picture& picture, const EncodeOptions& options);
    Result<void> Checked(bool succeeded) {
        if (!succeeded) return FailureOf(errors_, Common());
        if (destination_.failure) return *destination_.failure;
        return {};
    }

    ByteSink& sink_;
    ErrorState errors_;
    SinkBuffer destination_;
    jpeg_compress_struct jpeg_{};
};

/// Colours, quality and resolution; runs guarded.
void Writer::SetForm(const Picture& picture, const EncodeOptions& options) {
    constexpr int kFullColorFrom = 90;  // below, colour is stored at half the resolution
    constexpr std::size_t kSmall = 1'000'000;
    jpeg_.image_width = static_cast<JDIMENSION>(picture.Width());
    jpeg_.image_height = static_cast<JDIMENSION>(picture.Height());
    jpeg_.input_components = 4;
    jpeg_.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&jpeg_);
    if (options.grey) jpeg_set_colorspace(&jpeg_, JCS_GRAYSCALE);
    const int quality = std::clamp(options.quality, 1, 100);
    jpeg_set_quality(&jpeg_, quality, TRUE);
    if (quality >= kFullColorFrom) jpeg_.comp_info[0].h_samp_factor = jpeg_.comp_info[0].v_samp_factor = 1;
    // Tables made to measure need the whole picture first: memory and time that only small ones are given.
    jpeg_.optimize_coding = picture.PixelCount() <= kSmall;
    if (options.progressive) jpeg_simple_progression(&jpeg_);

    const Resolution resolution = picture.Meta().resolution;
    if (resolution.Known() && std::max(resolution.x, resolution.y) < UINT16_MAX) {
        jpeg_.density_unit = 1;
        jpeg_.X_density = static_cast<UINT16>(std::max(1L, std::lround(resolution.x)));
        jpeg_.Y_density = static_cast<UINT16>(std::max(1L, std::lround(resolution.y)));
    }
}

Result<void> Writer::Start(const Picture& picture, const EncodeOptions& options) {
    ByteVector exif = ExifOf(picture);
    if (!exif.empty()) exif = ByteWriter().Text(kExifSignature).Append(exif).TakeBytes();
    if (exif.size() > kLongestMarker - 2) exif.clear();
    return Checked(Guarded(errors_, [&] {
        jpeg_create_compress(&jpeg_);
        jpeg_.dest = &destination_.manager;
        SetForm(picture, options);
        jpeg_start_compress(&jpeg_, TRUE);
        if (!exif.empty())
            jpeg_write_marker(&jpeg_, kExifMarker, exif.data(), static_cast<unsigned>(exif.size()));
    }));
}

Result<void> Writer::WriteRows(std::span<const Pixel> rows) {
    return Checked(Guarded(errors_, [&] {
        std::array<JSAMPROW, 16> starts;
        const std::size_t count = rows.size() / jpeg_.image_width;
        // The library does not write to its input, but its types do not say so.
        auto* bytes = const_cast<JSAMPROW>(reinterpret_cast<const JSAMPLE*>(rows.data()));
        for (std::size_t i = 0; i < count; ++i) starts[i] = bytes + i * 4 * jpeg_.image_width;
        jpeg_write_scanlines(&jpeg_, starts.data(), static_cast<JDIMENSION>(count));
    }));
}

Result<void> Writer::Finish() {
    return Checked(Guarded(errors_, [&] { jpeg_finish_compress(&jpeg_); }));
}

}  // namespace

Result<void> EncodeJpg(const Picture& picture, const EncodeOptions& options, ByteSink& sink) {
    constexpr int kBand = 16;
    Writer writer(sink);
    TRY(writer.Start(picture, options));
    std::vector<Pixel> flat;
    for (int y = 0; y < picture.Height(); y += kBand) {
        const auto width = static_cast<std::size_t>(picture.Width());
        const auto rows = static_cast<std::size_t>(std::min(kBand, picture.Height() - y));
        std::span<const Pixel> band =
            picture.Pixels().subspan(static_cast<std::size_t>(y) * width, rows * width);
        if (picture.HasAlpha()) {
            flat.resize(band.size());
            FlattenRow(band, kWhite, flat);
            band = flat;
        }
        TRY(writer.WriteRows(band));
    }
    return writer.Finish();
}

}  // namespace tessara
