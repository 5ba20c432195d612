#pragma once

#include <array>
#include <optional>
#include <span>
#include <vector>

#include "core/Bytes.h"
#include "core/rastx/ColorProfile.h"
#include "tiff/TifFile.h"
#include "tiff/TifSamples.h"

namespace tessara {

/// Turns lines of samples into pixels: kind of colours, number of bits, palette, profile and alpha of one
/// file.
class TifColors {
  public:
    /// None where the samples are of a kind that is not read here.
    static std::optional<TifColors> For(const TifFile& file);

    /// The planes of the file that hold anything of the picture; 0 alone where samples stand side by side.
    std::span<const std::uint32_t> Planes() const { return planes_; }
    bool HasAlpha() const { return layout_.alphaSample >= 0; }

    /// One row of a chunk out of its line of each plane; `swapped` as TifChunk has it.
    void Convert(std::span<const Bytes> lines, std::uint32_t rowInLine, bool swapped,
                 std::span<Pixel> pixels);

  private:
    enum class Route { Unknown, Indexed, Rgb, Rgba, Cmyk, Blocks, Wide };

    explicit TifColors(const TifFile& file);

    Route ChooseRoute() const;
    void ListPlanes();
    void OpenProfile(Bytes icc);
    void MakePalette(TIFF* handle);
    void MakeYCbCr(TIFF* handle);
    TifSampleType SampleType(bool swapped) const;

    void ConvertIndexed(Bytes line, std::span<Pixel> pixels);
    void ConvertWide(std::span<const Bytes> lines, bool swapped, std::span<Pixel> pixels);
    void UnpackChannels(std::span<const Bytes> lines, bool swapped, std::size_t width);
    void DivideByAlpha();
    void WideToPixels(std::span<Pixel> pixels);
    void WideInksToPixels(std::span<Pixel> pixels);
    void WideLabToPixels(std::span<Pixel> pixels) const;

    TifLayout layout_;
    Route route_ = Route::Unknown;
    bool darkIsHigh_ = false;  ///< grey runs from white to black
    std::vector<std::uint32_t> planes_;
    std::optional<ColorProfile> profile_;
    std::vector<Pixel> palette_;  ///< of a picture with a palette, or the greys of one of few bits
    bool plainGreys_ = false;     ///< 8 bits of grey that mean just themselves
    std::optional<TifYCbCr> yCbCr_;

    // Scratch rows: bytes of indexes or inks, samples as they stand in the file, and each channel by itself
    // (colours first, then alpha).
    ByteVector bytes_;
    std::vector<std::uint16_t> interleaved_;
    std::array<std::vector<std::uint16_t>, 5> channels_;
};

}  // namespace tessara
