// JPEG (ITU T.81) in JFIF and EXIF files, through libjpeg-turbo.
//
// The library reports a fatal error by a jump. Every call that may end so runs inside `Guarded`, as a step
// that holds nothing with a destructor.

#include "core/rastx/codecs/Jpg.h"

#include <jpeglib.h>
// After jpeglib.h, which it needs.
#include <jerror.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/ColorProfile.h"
#include "core/rastx/Exif.h"
#include "core/rastx/Rows.h"

namespace tessara {
namespace {

constexpr std::string_view kExifSignature("Exif\0\0", 6);
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kIccMarker = JPEG_APP0 + 2;
constexpr unsigned kLongestMarker = 0xffff;

/// What the library calls on errors and warnings, and what we remember of them.
struct ErrorState {
    jpeg_error_mgr manager{};
    std::jmp_buf escape{};
    std::int64_t missingFrom = INT64_MAX;  ///< first row of blocks for which the file has no complete data
};

ErrorState& StateOf(j_common_ptr jpeg) {
    return *static_cast<ErrorState*>(jpeg->client_data);
}

[[noreturn]] void EscapeFromError(j_common_ptr jpeg) {
    std::longjmp(StateOf(jpeg).escape, 1);
}

bool IsRestartMarker(int marker) {
    return marker >= JPEG_RST0 && marker <= JPEG_RST0 + 7;
}

/// The library warns once when the data of a scan end early, and makes up grey blocks from there on. Behind a
/// restart marker it finds its way again; later scans only refine what the first has given.
void NoteWarning(j_common_ptr common, int level) {
    if (level >= 0) return;
    ++common->err->num_warnings;
    if (common->err->msg_code != JWRN_HIT_MARKER || !common->is_decompressor) return;
    const auto* jpeg = reinterpret_cast<j_decompress_ptr>(common);
    if (jpeg->input_scan_number > 1 || IsRestartMarker(jpeg->unread_marker)) return;
    ErrorState& state = StateOf(common);
    state.missingFrom = std::min<std::int64_t>(state.missingFrom, jpeg->input_iMCU_row);
}

void KeepQuiet(j_common_ptr) {}

void InstallErrorState(j_common_ptr jpeg, ErrorState& state) {
    jpeg->err = jpeg_std_error(&state.manager);
    jpeg->client_data = &state;
    state.manager.error_exit = EscapeFromError;
    state.manager.emit_message = NoteWarning;
    state.manager.output_message = KeepQuiet;
}

template <typename Step>
bool Guarded(ErrorState& state, const Step& step) {
    if (setjmp(state.escape) != 0) return false;
    step();
    return true;
}

Failure FailureOf(ErrorState& state, j_common_ptr jpeg) {
    std::array<char, JMSG_LENGTH_MAX> message{};
    state.manager.format_message(jpeg, message.data());
    switch (state.manager.msg_code) {
        case JERR_OUT_OF_MEMORY:
        case JERR_IMAGE_TOO_BIG:
            return TooBig(message.data());
        case JERR_SOF_UNSUPPORTED:
        case JERR_BAD_PRECISION:
        case JERR_CONVERSION_NOTIMPL:
        case JERR_COMPONENT_COUNT:
            return Unsupported(message.data());
        default:
            return Damaged(message.data());
    }
}

/// A file that is being decompressed.
class Reader {
  public:
    Reader() { InstallErrorState(Common(), errors_); }
    ~Reader() { jpeg_destroy_decompress(&jpeg_); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    Result<void> ReadHeader(Bytes file);
    /// Whether the picture may be made, and whether a file of this length can hold it.
    Result<void> CheckSize(std::size_t fileSize, const Limits& limits) const;
    Result<void> Start();
    /// Reads rows of four bytes a pixel one behind the other; fewer where the library gives up.
    int ReadRows(std::uint8_t* pixels, int count);

    int Width() const { return static_cast<int>(frame_.width); }
    int Height() const { return static_cast<int>(frame_.height); }
    bool HasInks() const { return jpeg_.jpeg_color_space == JCS_CMYK || jpeg_.jpeg_color_space == JCS_YCCK; }
    bool IsGrey() const { return jpeg_.jpeg_color_space == JCS_GRAYSCALE; }
    /// Rows of a line of blocks: the unit in which data can be missing.
    int BandHeight() const { return jpeg_.max_v_samp_factor * DCTSIZE; }
    int BlockWidth() const { return jpeg_.max_h_samp_factor * DCTSIZE; }
    std::int64_t MissingFrom() const { return errors_.missingFrom; }

    Resolution JfifResolution() const;
    Bytes Exif() const;
    ByteVector Icc();

  private:
    j_common_ptr Common() { return reinterpret_cast<j_common_ptr>(&jpeg_); }
    Failure LibraryFailure() { return FailureOf(errors_, Common()); }
    std::uint64_t BlockCount() const;
    Result<void> GatherScans();
    void RememberFrame() {
        frame_ = {jpeg_.image_width,    jpeg_.image_height,     jpeg_.data_precision,
                  jpeg_.num_components, jpeg_.progressive_mode, jpeg_.arith_code};
    }
    /// From here on the library sees the end of the file, and the picture that it has begun.
    void EndInput() {
        jpeg_.image_width = frame_.width;
        jpeg_.image_height = frame_.height;
        jpeg_.data_precision = frame_.precision;
        jpeg_.num_components = frame_.components;
        jpeg_.progressive_mode = frame_.progressive;
        jpeg_.arith_code = frame_.arithmetic;
        jpeg_.src->bytes_in_buffer = 0;
        jpeg_.unread_marker = 0;
    }

    /// The library takes these fields over from a second frame before it refuses that: its memory and ours
    /// are laid out for the first.
    struct Frame {
        JDIMENSION width = 0, height = 0;
        int precision = 0, components = 0;
        boolean progressive = FALSE, arithmetic = FALSE;
    };

    ErrorState errors_;
    jpeg_decompress_struct jpeg_{};
    Frame frame_;
};

Result<void> Reader::ReadHeader(Bytes file) {
    const bool read = Guarded(errors_, [&] {
        jpeg_create_decompress(&jpeg_);
        jpeg_mem_src(&jpeg_, file.data(), file.size());
        jpeg_save_markers(&jpeg_, kExifMarker, kLongestMarker);
        jpeg_save_markers(&jpeg_, kIccMarker, kLongestMarker);
        jpeg_read_header(&jpeg_, TRUE);
    });
    if (!read) return LibraryFailure();
    RememberFrame();
    return {};
}

Result<void> Reader::CheckSize(std::size_t fileSize, const Limits& limits) const {
    TRY(limits.Check(Width(), Height()));
    // A flat picture takes one byte for some 350 pixels, far less only in arithmetic coding. The rest is for
    // files that are cut short: of those, less than a tenth may be left.
    const std::uint64_t mostPixelsPerByte = jpeg_.arith_code ? 500'000 : 4096;
    const std::uint64_t pixels = std::uint64_t{jpeg_.image_width} * jpeg_.image_height;
    if (pixels / mostPixelsPerByte > fileSize) return Damaged("the file is too short for its picture");
    const bool keepsCoefficients = jpeg_.progressive_mode || jpeg_.comps_in_scan < jpeg_.num_components;
    if (keepsCoefficients && BlockCount() * sizeof(JBLOCK) > limits.decodedBytes)
        return TooBig("a progressive picture of this size needs too much memory");
    return {};
}

Result<void> Reader::Start() {
    jpeg_.dct_method = JDCT_ISLOW;
    jpeg_.out_color_space = HasInks() ? JCS_CMYK : JCS_EXT_BGRA;
    jpeg_.buffered_image = jpeg_has_multiple_scans(&jpeg_);
    if (!Guarded(errors_, [&] { jpeg_start_decompress(&jpeg_); })) return LibraryFailure();
    if (jpeg_.buffered_image) TRY(GatherScans());
    return {};
}

std::uint64_t Reader::BlockCount() const {
    std::uint64_t count = 0;
    for (int i = 0; i < jpeg_.num_components; ++i)
        count += std::uint64_t{jpeg_.comp_info[i].width_in_blocks} * jpeg_.comp_info[i].height_in_blocks;
    return count;
}

/// Takes in all scans of a progressive file before the first row is made. A damaged scan leaves what those
/// before it have given.
Result<void> Reader::GatherScans() {
    // Each scan visits every block, however few bytes it has: a small file could keep us busy for hours.
    constexpr std::uint64_t kMostVisits = std::uint64_t{1} << 26;
    constexpr std::uint64_t kScansForAll = 64;
    const std::uint64_t mostScans =
        std::max(kScansForAll, kMostVisits / std::max<std::uint64_t>(1, BlockCount()));
    const bool sound = Guarded(errors_, [&] {
        while (static_cast<std::uint64_t>(jpeg_.input_scan_number) <= mostScans)
            if (jpeg_consume_input(&jpeg_) == JPEG_REACHED_EOI) break;
    });
    if (!sound && jpeg_.input_scan_number == 0) return LibraryFailure();
    EndInput();
    const bool started = Guarded(errors_, [&] { jpeg_start_output(&jpeg_, jpeg_.input_scan_number); });
    if (!started) return LibraryFailure();
    return {};
}

int Reader::ReadRows(std::uint8_t* pixels, int count) {
    const std::size_t stride = std::size_t{4} * frame_.width;
    const JDIMENSION first = jpeg_.output_scanline;
    const JDIMENSION end = first + static_cast<JDIMENSION>(count);
    // A failure shows in the number of rows.
    static_cast<void>(Guarded(errors_, [&] {
        std::array<JSAMPROW, 4> rows;
        while (jpeg_.output_scanline < end) {
            const JDIMENSION done = jpeg_.output_scanline - first;
            const auto wanted = std::min<JDIMENSION>(end - jpeg_.output_scanline, rows.size());
            for (JDIMENSION i = 0; i < wanted; ++i) rows[i] = pixels + (done + i) * stride;
            // Behind damage the library may wait for input that will never come.
            if (jpeg_read_scanlines(&jpeg_, rows.data(), wanted) == 0) break;
        }
    }));
    return static_cast<int>(jpeg_.output_scanline - first);
}

Resolution Reader::JfifResolution() const {
    constexpr int kPerInch = 1, kPerCentimetre = 2;
    if (!jpeg_.saw_JFIF_marker) return {};
    const double unit = jpeg_.density_unit == kPerInch ? 1 : jpeg_.density_unit == kPerCentimetre ? 2.54 : 0;
    return {jpeg_.X_density * unit, jpeg_.Y_density * unit};
}

Bytes Reader::Exif() const {
    for (auto marker = jpeg_.marker_list; marker; marker = marker->next) {
        const Bytes data(marker->data, marker->data_length);
        if (marker->marker == kExifMarker && HasSignature(data, kExifSignature))
            return data.subspan(kExifSignature.size());
    }
    return {};
}

ByteVector Reader::Icc() {
    JOCTET* data = nullptr;
    unsigned length = 0;
    const bool read = Guarded(errors_, [&] { jpeg_read_icc_profile(&jpeg_, &data, &length); });
    const std::unique_ptr<JOCTET, decltype(&std::free)> owner(data, &std::free);
    return read && data ? ByteVector(data, data + length) : ByteVector();
}

/// What happens to rows between the library and the picture.
struct RowConversion {
    int orientation = 1;
    std::optional<ColorProfile> profile;

    void ConvertInks(std::vector<std::uint8_t>& inks, std::span<Pixel> pixels) const {
        // Programs store ink inverted, 255 = none, with or without the marker that says so.
        for (std::uint8_t& ink : inks) ink = static_cast<std::uint8_t>(255 - ink);
        if (profile)
            profile->ConvertCmyk(inks, pixels);
        else
            CmykToPixels(inks, pixels);
    }
};

/// Makes the blocks at the right end of a line of blocks white which are nothing but the filling for missing
/// data, the colour of the last pixel. True where a block is left.
bool WhitenMissingBlocks(std::span<Pixel> rows, int width, int blockWidth) {
    const auto stride = static_cast<std::size_t>(width);
    const Pixel filling = rows.back();
    const auto isFilling = [&](std::size_t column) {
        // The top row and the left column of a block are blended with their neighbours' colours.
        for (std::size_t i = rows.size() > stride ? stride + column : column; i < rows.size(); i += stride)
            if (rows[i] != filling) return false;
        return true;
    };
    std::size_t kept = stride;
    while (kept > 0 && ((kept - 1) % static_cast<std::size_t>(blockWidth) == 0 || isFilling(kept - 1)))
        --kept;
    kept = (kept + static_cast<std::size_t>(blockWidth) - 1) / static_cast<std::size_t>(blockWidth) *
           static_cast<std::size_t>(blockWidth);
    for (std::size_t start = 0; start < rows.size(); start += stride)
        for (std::size_t x = kept; x < stride; ++x) rows[start + x] = kWhite;
    return kept > 0;
}

/// Decodes a picture band by band, each a line of blocks.
class PictureReader {
  public:
    PictureReader(Reader& reader, RowConversion conversion, Picture& picture)
        : reader_(reader), conversion_(std::move(conversion)), target_(picture.MutablePixels()) {}

    /// Whether anything at all could be read. What could not is white.
    bool ReadAll() {
        const bool direct = conversion_.orientation == 1;
        std::vector<Pixel> band(direct ? 0 : PixelsOf(reader_.BandHeight()));
        bool any = false;
        for (int y = 0; y < reader_.Height(); y += reader_.BandHeight()) {
            const int rows = std::min(reader_.BandHeight(), reader_.Height() - y);
            const std::span<Pixel> pixels =
                direct ? target_.subspan(PixelsOf(y), PixelsOf(rows)) : std::span(band).first(PixelsOf(rows));
            any |= ReadBand(y, pixels);
            if (!direct)
                PlaceOriented(pixels, y, reader_.Width(), reader_.Height(), conversion_.orientation, target_);
        }
        return any;
    }

  private:
    std::size_t PixelsOf(int rows) const {
        return static_cast<std::size_t>(rows) * static_cast<std::size_t>(reader_.Width());
    }

    bool ReadBand(int y, std::span<Pixel> pixels) {
        const int rows = static_cast<int>(pixels.size() / PixelsOf(1));
        const std::int64_t line = y / reader_.BandHeight();
        int got = 0;
        if (!failed_ && line <= reader_.MissingFrom()) {
            got = Decode(pixels, rows);
            failed_ = got < rows;
        }
        if (line > reader_.MissingFrom()) got = 0;
        std::ranges::fill(pixels.subspan(PixelsOf(got)), kWhite);
        bool any = got > 0;
        if (any && line == reader_.MissingFrom())
            any = WhitenMissingBlocks(pixels.first(PixelsOf(got)), reader_.Width(), reader_.BlockWidth());
        return any;
    }

    int Decode(std::span<Pixel> pixels, int rows) {
        if (!reader_.HasInks()) {
            const int got = reader_.ReadRows(reinterpret_cast<std::uint8_t*>(pixels.data()), rows);
            if (conversion_.profile) conversion_.profile->ConvertPixels(pixels.first(PixelsOf(got)));
            return got;
        }
        inks_.resize(4 * PixelsOf(rows));
        const int got = reader_.ReadRows(inks_.data(), rows);
        conversion_.ConvertInks(inks_, pixels);
        return got;
    }

    Reader& reader_;
    RowConversion conversion_;
    std::span<Pixel> target_;
    std::vector<std::uint8_t> inks_;
    bool failed_ = false;
};

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

bool RecogniseJpg(Bytes file) {
    return HasSignature(file, "\xff\xd8\xff");
}

Result<Picture> DecodeJpg(Bytes file, const DecodeOptions& options) {
    Reader reader;
    TRY(reader.ReadHeader(file));
    TRY(reader.CheckSize(file.size(), options.limits));

    const ExifFields exif = ReadExif(reader.Exif());
    const SampleColors colors = reader.HasInks()  ? SampleColors::Cmyk
                                : reader.IsGrey() ? SampleColors::Grey
                                                  : SampleColors::Rgb;
    RowConversion conversion{exif.orientation, ColorProfile::Open(reader.Icc(), colors)};
    Metadata metadata{reader.JfifResolution(), nullptr};
    if (!metadata.resolution.Known()) metadata.resolution = exif.resolution;
    const bool swaps = SwapsSides(exif.orientation);
    if (swaps) std::swap(metadata.resolution.x, metadata.resolution.y);
    if (ByteVector block = UprightExif(reader.Exif()); !block.empty())
        metadata.exif = std::make_shared<const ByteVector>(std::move(block));

    TRY(reader.Start());
    TRY_ASSIGN(Picture picture,
               Picture::Create(swaps ? reader.Height() : reader.Width(),
                               swaps ? reader.Width() : reader.Height(), Alpha::None, options.limits));
    picture.SetMeta(std::move(metadata));
    if (!PictureReader(reader, std::move(conversion), picture).ReadAll())
        return Damaged("the file holds no part of its picture");
    return picture;
}

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
