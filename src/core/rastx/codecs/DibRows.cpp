#include <algorithm>
#include <bit>
#include <vector>

#include "core/Parallel.h"
#include "core/rastx/Rows.h"
#include "core/rastx/codecs/DibPixels.h"

namespace tessara::dib {
namespace {

constexpr Masks kMasks555{0x7c00, 0x03e0, 0x001f, 0};
constexpr Masks kMasks888{0xff0000, 0x00ff00, 0x0000ff, 0};
constexpr std::uint32_t kFourthByte = 0xff000000;

/// One colour of a bit field, scaled to 8 bits by a table.
class Channel {
  public:
    Channel(std::uint32_t mask, std::uint8_t valueWithoutMask) : mask_(mask) {
        if (mask == 0) {
            values_ = {valueWithoutMask};
            return;
        }
        const int width = std::bit_width(mask) - std::countr_zero(mask);
        shift_ = std::countr_zero(mask) + std::max(0, width - 16);  // 16 bits tell enough of longer fields
        const std::uint32_t maximum = mask >> shift_;
        values_.reserve(maximum + 1);
        for (std::uint32_t value = 0; value <= maximum; ++value)
            values_.push_back(ScaleTo8Bits(value, maximum));
    }
    std::uint8_t Of(std::uint32_t pixel) const { return values_[(pixel & mask_) >> shift_]; }

  private:
    std::uint32_t mask_;
    int shift_ = 0;
    std::vector<std::uint8_t> values_;
};

/// Converts uncompressed rows of any depth.
class RowConverter {
  public:
    RowConverter(const DibHeader& header, const Masks& masks, std::vector<Pixel> colors)
        : bitsPerPixel_(header.bitsPerPixel),
          colors_(std::move(colors)),
          red_(masks.red, 0),
          green_(masks.green, 0),
          blue_(masks.blue, 0),
          alpha_(masks.alpha, 255),
          lieAsPixels_(masks.red == kMasks888.red && masks.green == kMasks888.green &&
                       masks.blue == kMasks888.blue && (masks.alpha == 0 || masks.alpha == kFourthByte)),
          opaque_(masks.alpha == 0) {}

    void Convert(Bytes row, std::span<Pixel> pixels, std::vector<std::uint8_t>& indexes) const {
        if (bitsPerPixel_ == 24) return BgrToPixels(row, pixels);
        if (bitsPerPixel_ == 32) return lieAsPixels_ ? Copy(row, pixels) : ConvertFields<4>(row, pixels);
        if (bitsPerPixel_ == 16) return ConvertFields<2>(row, pixels);
        if (bitsPerPixel_ == 8) return PaletteToPixels(row, colors_, pixels);
        indexes.resize(pixels.size());
        UnpackBits(row, static_cast<int>(bitsPerPixel_), indexes);
        PaletteToPixels(indexes, colors_, pixels);
    }

  private:
    void Copy(Bytes row, std::span<Pixel> pixels) const {
        const auto set = static_cast<std::uint8_t>(opaque_ ? 255 : 0);
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = {row[4 * i], row[4 * i + 1], row[4 * i + 2],
                         static_cast<std::uint8_t>(row[4 * i + 3] | set)};
    }

    template <unsigned bytes>
    void ConvertFields(Bytes row, std::span<Pixel> pixels) const {
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            std::uint32_t value = 0;
            for (unsigned k = 0; k < bytes; ++k) value |= std::uint32_t{row[bytes * i + k]} << (8 * k);
            pixels[i] = {blue_.Of(value), green_.Of(value), red_.Of(value), alpha_.Of(value)};
        }
    }

    unsigned bitsPerPixel_;
    std::vector<Pixel> colors_;
    Channel red_, green_, blue_, alpha_;
    bool lieAsPixels_;
    bool opaque_;
};

}  // namespace

Masks MasksOf(const DibHeader& header, bool fourthByteCounts) {
    Masks masks = header.masks;
    if ((masks.red | masks.green | masks.blue) == 0) {
        const Masks& usual = header.bitsPerPixel == 16 ? kMasks555 : kMasks888;
        masks = {usual.red, usual.green, usual.blue, masks.alpha};
    }
    if (header.bitsPerPixel == 32 && fourthByteCounts && masks.alpha == 0) masks.alpha = kFourthByte;
    return masks;
}

Result<Picture> DecodeRows(const DibHeader& header, Bytes bits, const Masks& masks, std::vector<Pixel> colors,
                           const Limits& limits) {
    TRY(limits.Check(header.width, header.height));
    const auto height = static_cast<std::uint64_t>(header.height);
    const std::uint64_t stride = header.Stride();
    // The last row of a file may come without its padding.
    const std::uint64_t held = (bits.size() + (stride - header.UnpaddedRow())) / stride;
    const int present = static_cast<int>(std::min(height, held));
    TRY(CheckAgainstData(height * static_cast<std::uint64_t>(header.width), height * stride,
                         static_cast<std::uint64_t>(present) * stride));
    TRY_ASSIGN(Picture picture, Picture::Create(header.width, header.height,
                                                masks.alpha != 0 ? Alpha::Straight : Alpha::None, limits));
    const RowConverter converter(header, masks, std::move(colors));
    const std::span<Pixel> pixels = picture.MutablePixels();
    const auto width = static_cast<std::size_t>(picture.Width());
    const int minimumRows = static_cast<int>((std::size_t{1} << 20) / width) + 1;
    ParallelRows(present, HardwareThreads(), minimumRows, [&](int begin, int end) {
        std::vector<std::uint8_t> indexes;
        for (int i = begin; i < end; ++i) {
            const int y = header.topDown ? i : picture.Height() - 1 - i;
            converter.Convert(Slice(bits, static_cast<std::uint64_t>(i) * stride, stride),
                              pixels.subspan(static_cast<std::size_t>(y) * width, width), indexes);
        }
    });
    Pixel missing = kWhite;
    if (masks.alpha != 0) missing.a = 0;
    header.topDown ? picture.FillRows(present, picture.Height(), missing)
                   : picture.FillRows(0, picture.Height() - present, missing);
    return picture;
}

}  // namespace tessara::dib
