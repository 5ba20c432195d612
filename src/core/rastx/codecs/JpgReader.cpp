#include "core/rastx/codecs/JpgReader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>

#include "core/ByteReader.h"

namespace tessara::jpg {

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

}  // namespace tessara::jpg
