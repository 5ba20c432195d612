#pragma once

#include <array>
#include <optional>
#include <span>

#include "core/Bytes.h"
#include "core/rastx/ColorProfile.h"
#include "core/rastx/Picture.h"
#include "core/rastx/codecs/PsdFormat.h"

namespace tessara {

/// What the samples of a document mean; the same for the merged picture and for layers.
class PsdColors {
  public:
    /// `palette`: of indexed documents, 256 reds, greens and blues. `transparentIndex`: the colour that
    /// stands for transparency there, -1 for none.
    PsdColors(const PsdHeader& header, Bytes palette, int transparentIndex, Bytes icc);

    /// Planes that make up the colour; a plane for alpha may follow them.
    int Planes() const { return planes_; }
    /// Whether a channel behind the colour planes can be transparency.
    bool MayHaveAlpha() const;
    bool HasTransparentIndex() const { return transparentIndex_; }

    /// Memory for the steps of one row, kept from row to row.
    struct Scratch {
        std::array<ByteVector, 5> narrow;
        ByteVector mixed;
    };
    /// Whether colours were mixed with white where they are transparent, as in merged pictures.
    enum class Matte : bool { None, White };

    /// One row of samples to pixels in the document's RGB or grey, or in sRGB for the other models. `color`
    /// has Planes() rows; an empty one is missing from the file and is stood in for. An empty `alpha` is
    /// opaque.
    void ToPixels(std::span<const Bytes> color, Bytes alpha, Matte matte, std::span<Pixel> pixels,
                  Scratch& scratch) const;
    /// Samples of a row that are darker than any colour of their alpha is on white; none without alpha.
    std::int64_t CountTooDarkOnWhite(std::span<const Bytes> color, Bytes alpha, std::size_t count) const;
    /// Samples of alpha or of a mask to bytes.
    Bytes NarrowAlpha(Bytes samples, std::size_t count, ByteVector& narrow) const;
    /// The last step to sRGB, after layers were composed.
    void ToSrgb(std::span<Pixel> pixels) const;

  private:
    Bytes Narrow(Bytes samples, std::size_t count, ByteVector& narrow) const;
    Bytes WithoutWhite(Bytes samples, Bytes alpha, int white, std::size_t count, ByteVector& narrow) const;
    void LabToPixels(std::span<const Bytes> color, std::span<const Bytes> narrow, std::span<Pixel> pixels,
                     ByteVector& mixed, Matte matte) const;

    PsdMode mode_;
    int depth_;
    int planes_;
    bool transparentIndex_ = false;
    std::array<Pixel, 256> palette_;
    std::optional<ColorProfile> profile_;
};

}  // namespace tessara
