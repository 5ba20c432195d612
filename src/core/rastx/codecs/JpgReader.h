#pragma once

#include "core/Bytes.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"
#include "core/rastx/codecs/JpgLibrary.h"

namespace tessara::jpg {

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

}  // namespace tessara::jpg
