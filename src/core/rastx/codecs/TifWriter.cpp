#include <algorithm>
#include <cmath>
#include <vector>

#include "core/Multiversion.h"
#include "core/ZlibPacker.h"
#include "core/rastx/Exif.h"
#include "core/rastx/Rows.h"
#include "core/rastx/TiffDirectory.h"
#include "core/rastx/codecs/Tif.h"

// A TIFF of one picture (TIFF 6.0): header, strips, then what does not fit into the directory, and the
// directory.
//
//   0  "II", 42                    little endian
//   4  offset of the directory     overwritten when it is known

namespace tessara {
namespace {

using namespace tiff;

constexpr std::uint32_t kDeflate = 8;
constexpr std::uint32_t kHorizontalDifferences = 2;
constexpr std::uint32_t kUnassociatedAlpha = 2;
constexpr std::uint32_t kInch = 2;
constexpr std::uint64_t kLargestFile = UINT32_MAX;
constexpr std::size_t kStripSize = std::size_t{512} << 10;

/// What a pixel is written as.
enum class Samples { Bilevel, Grey, Rgb, Rgba };

Samples SamplesFor(const Picture& picture) {
    if (picture.HasAlpha()) return Samples::Rgba;
    bool bilevel = true;
    for (const Pixel pixel : picture.Pixels()) {
        if (pixel.r != pixel.g || pixel.g != pixel.b) return Samples::Rgb;
        bilevel &= pixel == kBlack || pixel == kWhite;
    }
    return bilevel ? Samples::Bilevel : Samples::Grey;
}

constexpr std::size_t SamplesPerPixel(Samples samples) {
    return samples == Samples::Rgba ? 4 : samples == Samples::Rgb ? 3 : 1;
}

std::size_t BytesPerRow(Samples samples, std::size_t width) {
    return samples == Samples::Bilevel ? (width + 7) / 8 : width * SamplesPerPixel(samples);
}

TESSARA_MULTIVERSION void Subtract(const std::uint8_t* samples, std::size_t count, std::size_t stride,
                                   std::uint8_t* differences) {
    std::copy_n(samples, std::min(stride, count), differences);
    for (std::size_t i = stride; i < count; ++i)
        differences[i] = static_cast<std::uint8_t>(samples[i] - samples[i - stride]);
}

void PackBilevel(std::span<const Pixel> pixels, std::span<std::uint8_t> row) {
    std::ranges::fill(row, std::uint8_t{0});
    for (std::size_t x = 0; x < pixels.size(); ++x)
        if (pixels[x].g != 0) row[x / 8] = static_cast<std::uint8_t>(row[x / 8] | 0x80 >> x % 8);
}

/// Makes rows of samples, as differences to the pixel on the left where that helps.
class RowPacker {
  public:
    explicit RowPacker(Samples samples, std::size_t width)
        : samples_(samples), row_(BytesPerRow(samples, width)) {}

    void Pack(std::span<const Pixel> pixels, std::span<std::uint8_t> target) {
        switch (samples_) {
            case Samples::Bilevel:
                return PackBilevel(pixels, target);
            case Samples::Grey:
                PixelsToGrey(pixels);
                break;
            case Samples::Rgb:
                PixelsToRgb(pixels, row_);
                break;
            case Samples::Rgba:
                PixelsToRgba(pixels, row_);
                break;
        }
        Subtract(row_.data(), row_.size(), SamplesPerPixel(samples_), target.data());
    }

  private:
    void PixelsToGrey(std::span<const Pixel> pixels) {
        for (std::size_t x = 0; x < pixels.size(); ++x) row_[x] = pixels[x].g;
    }

    Samples samples_;
    ByteVector row_;
};

struct Strips {
    std::uint32_t rowsPerStrip = 0;
    std::vector<std::uint32_t> offsets, sizes;
};

Result<Strips> WriteStrips(const Picture& picture, Samples samples, ByteSink& sink) {
    const auto width = static_cast<std::size_t>(picture.Width());
    const std::size_t bytesPerRow = BytesPerRow(samples, width);
    const int rowsPerStrip = static_cast<int>(
        std::clamp<std::size_t>(kStripSize / bytesPerRow, 1, static_cast<std::size_t>(picture.Height())));
    Strips strips{static_cast<std::uint32_t>(rowsPerStrip), {}, {}};
    ByteVector raw(bytesPerRow * static_cast<std::size_t>(rowsPerStrip));
    RowPacker rows(samples, width);
    ZlibPacker packer;
    for (int top = 0; top < picture.Height(); top += rowsPerStrip) {
        const int count = std::min(rowsPerStrip, picture.Height() - top);
        for (int row = 0; row < count; ++row)
            rows.Pack(picture.Row(top + row),
                      std::span(raw).subspan(static_cast<std::size_t>(row) * bytesPerRow, bytesPerRow));
        const Bytes packed = packer.Pack(Bytes(raw).first(static_cast<std::size_t>(count) * bytesPerRow));
        const std::uint64_t offset = sink.Position();
        if (offset + packed.size() > kLargestFile) return TooBig("a TIFF holds no more than 4 GiB");
        strips.offsets.push_back(static_cast<std::uint32_t>(offset));
        strips.sizes.push_back(static_cast<std::uint32_t>(packed.size()));
        TRY(sink.Write(packed));
    }
    return strips;
}

/// A number of dots per inch as a fraction.
std::vector<std::uint32_t> Fraction(double value) {
    constexpr double kParts = 10000;
    const bool whole = value == std::floor(value) || value > UINT32_MAX / kParts;
    const double scale = whole ? 1 : kParts;
    const double numerator = std::clamp(std::round(value * scale), 1.0, double{UINT32_MAX});
    return {static_cast<std::uint32_t>(numerator), static_cast<std::uint32_t>(scale)};
}

TiffDirectory Describe(const Picture& picture, Samples samples, const Strips& strips) {
    const std::size_t count = SamplesPerPixel(samples);
    const bool bilevel = samples == Samples::Bilevel;
    constexpr std::uint32_t kMinIsBlack = 1;
    constexpr std::uint32_t kRgb = 2;
    TiffDirectory directory;
    directory.Add(kImageWidth, kLong, {static_cast<std::uint32_t>(picture.Width())});
    directory.Add(kImageLength, kLong, {static_cast<std::uint32_t>(picture.Height())});
    directory.Add(kBitsPerSample, kShort, std::vector<std::uint32_t>(count, bilevel ? 1 : 8));
    directory.Add(kCompression, kShort, {kDeflate});
    directory.Add(kPhotometric, kShort, {count >= 3 ? kRgb : kMinIsBlack});
    directory.Add(kStripOffsets, kLong, strips.offsets);
    directory.Add(kSamplesPerPixel, kShort, {static_cast<std::uint32_t>(count)});
    directory.Add(kRowsPerStrip, kLong, {strips.rowsPerStrip});
    directory.Add(kStripByteCounts, kLong, strips.sizes);
    const Resolution resolution = picture.Meta().resolution;
    if (resolution.Known()) {
        directory.Add(kXResolution, kRational, Fraction(resolution.x));
        directory.Add(kYResolution, kRational, Fraction(resolution.y));
    }
    directory.Add(kPlanarConfiguration, kShort, {1});
    if (resolution.Known()) directory.Add(kResolutionUnit, kShort, {kInch});
    if (!bilevel) directory.Add(kPredictor, kShort, {kHorizontalDifferences});
    if (samples == Samples::Rgba) directory.Add(kExtraSamples, kShort, {kUnassociatedAlpha});
    return directory;
}

}  // namespace

Result<void> EncodeTif(const Picture& picture, const EncodeOptions&, ByteSink& sink) {
    TRY(WriteTiffHeader(sink));
    const Samples samples = SamplesFor(picture);
    TRY_ASSIGN(const Strips strips, WriteStrips(picture, samples, sink));
    TiffDirectory directory = Describe(picture, samples, strips);
    TRY(directory.Add(ReadExifDirectories(ExifOf(picture)), sink));
    return directory.WriteAsFirst(sink);
}

}  // namespace tessara
