#pragma once

#include <memory>
#include <optional>
#include <span>

#include "core/Bytes.h"
#include "core/rastx/Picture.h"

namespace tessara {

/// The colour space that the samples of a file are in.
enum class SampleColors { Grey, Rgb, Cmyk, Lab };

/// An embedded ICC profile, ready to convert samples to sRGB (relative colorimetric with black point
/// compensation).
class ColorProfile {
  public:
    /// None where the profile is damaged, belongs to another colour space, or is sRGB itself: then there is
    /// nothing to convert, and a plain sRGB file pays nothing.
    static std::optional<ColorProfile> Open(Bytes icc, SampleColors colors);

    /// Grey and RGB: converts pixels in place; alpha stays.
    void ConvertPixels(std::span<Pixel> pixels) const;
    /// CMYK: four bytes a pixel, 255 = full ink.
    void ConvertCmyk(Bytes cmyk, std::span<Pixel> pixels) const;
    /// Lab: three bytes a pixel, L 0 to 255 for 0 to 100, a and b offset by 128.
    void ConvertLab(Bytes lab, std::span<Pixel> pixels) const;

  private:
    class Transform;
    std::shared_ptr<const Transform> transform_;
};

/// CMYK without a profile, 255 = full ink: each channel is (1 - ink)(1 - black).
void CmykToPixels(Bytes cmyk, std::span<Pixel> pixels);
/// CIE Lab under D50 (L 0 to 100) to sRGB.
Pixel LabToPixel(double lightness, double a, double b);

}  // namespace tessara
