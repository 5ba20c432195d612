#pragma once

#include <functional>

#include "core/rastx/Picture.h"
#include "edit/OwnEffectRules.h"

namespace tessara {

/// The corners of a picture, inclusive.
struct ImageBounds {
    int X0 = 0, Y0 = 0, X1 = -1, Y1 = -1;
};
ImageBounds GetImageBounds(const Picture& picture);

/// The channels of a colour number: each byte from the lowest, as whole numbers.
void SplitColor(ColorNumber color, double& R, double& G, double& B);

/// The twelve effects that the program computes itself. They read `Pic_Image` and write `Pic_TempImage`,
/// which has the same size; pixels that an effect does not write keep what `Pic_TempImage` held. Channels are
/// computed one after another from values already changed, in double precision, and rounded to the nearest,
/// ties to even.
class OwnEffects {
  public:
    struct Options {
        /// Pixels of `TransparentColor` stay as they are.
        bool keepTransparent = false;
        ColorNumber TransparentColor = -1;
        /// The progress bar's end, where an effect sets its own, and its value at the start of each row.
        std::function<void(int max)> progressMax = {};
        std::function<void(int value)> progress = {};
    };

    OwnEffects(const Picture& Pic_Image, Picture& Pic_TempImage, Options options);

    /// Runs the effect of `EffectCode`. With a `Depth` of exactly 0 nothing is computed and `showSource` is
    /// called instead.
    void ApplyOwnEffect(int EffectCode, double Depth, const std::function<void()>& showSource);

    void HeatEffect(double Depth, ImageBounds bounds);
    void ChannelEffect(int EffectCode, double Depth, ImageBounds bounds);
    void WaveEffect(double Depth, ImageBounds bounds);

  private:
    /// The effects whose new pixel depends on the old one alone.
    void ForEachChannels(ImageBounds bounds, double Depth, own::PlaneRule rule);
    /// The effects that compute a colour number from the neighbours' numbers.
    template <typename Rule>
    void ForEachColor(ImageBounds bounds, double Depth, const Rule& rule);
    void StartRow(int value) const {
        if (options_.progress) options_.progress(value);
    }
    bool IsKept(ColorNumber color) const {
        return options_.keepTransparent && color == options_.TransparentColor;
    }

    const Picture& source_;
    Picture& target_;
    Options options_;
};

}  // namespace tessara
