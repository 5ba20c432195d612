#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>

#include "core/Bytes.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"

namespace tessara {

/// How the samples of a picture lie in the file, with the values that hold where a field is missing.
struct TifLayout {
    std::uint32_t width = 0, height = 0;
    int bits = 1;  ///< of each sample
    int samples = 1;
    int format = SAMPLEFORMAT_UINT;
    int photometric = PHOTOMETRIC_MINISBLACK;
    int compression = COMPRESSION_NONE;
    int predictor = 1;
    int orientation = 1;
    bool planar = false;    ///< each sample in chunks of its own
    bool swapped = false;   ///< numbers stand in the byte order that this machine does not have
    bool reversed = false;  ///< the leftmost pixel of a byte is in its lowest bits

    // A chunk is a strip or a tile.
    bool tiled = false;
    std::uint32_t chunkWidth = 0, chunkHeight = 0;
    std::uint32_t chunksAcross = 0, chunksDown = 0;
    std::uint32_t chunksPerPlane = 0;

    /// YCbCr stores blocks of so many luma samples, each followed by one Cb and one Cr. A line of blocks
    /// holds as many rows; in all other pictures a line is a row.
    std::uint32_t blockWidth = 1, blockHeight = 1;
    bool Blocks() const { return photometric == PHOTOMETRIC_YCBCR && !planar && samples == 3; }

    int alphaSample = -1;        ///< which sample is alpha; none: -1
    bool premultiplied = false;  ///< colours are stored multiplied by alpha

    int Colors() const;
    std::uint32_t LinesOf(std::uint32_t rows) const { return (rows + blockHeight - 1) / blockHeight; }
    std::uint64_t BytesPerLine() const;
    std::uint64_t BytesPerChunk() const { return BytesPerLine() * LinesOf(chunkHeight); }
};

/// A TIFF file in memory, standing at the first picture that is no thumbnail. Speaks with libtiff, quietly.
class TifFile {
  public:
    static Result<TifFile> Open(Bytes file);

    Bytes File() const { return file_->bytes; }
    TIFF* Handle() const { return handle_.get(); }
    const TifLayout& Layout() const { return layout_; }
    Resolution DotsPerInch() const;
    Bytes IccProfile() const;

  private:
    struct MemoryFile {
        Bytes bytes;
        std::uint64_t position = 0;
    };
    struct Closer {
        void operator()(TIFF* handle) const { TIFFClose(handle); }
    };

    static tmsize_t Read(thandle_t self, void* target, tmsize_t size);
    static toff_t Seek(thandle_t self, toff_t offset, int whence);
    static TIFF* OpenHandle(MemoryFile& file);
    void GoToFirstFullPicture();
    Result<void> ReadLayout();
    void ReadExtraSamples();
    Result<void> ReadChunkGrid();

    std::unique_ptr<MemoryFile> file_;  // before the handle: libtiff holds its address
    std::unique_ptr<TIFF, Closer> handle_;
    TifLayout layout_;
};

}  // namespace tessara
