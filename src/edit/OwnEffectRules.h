#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace tessara {

/// Values above 255 become 255, values below 0 become 0.
inline void ClampChannels(double& R, double& G, double& B) {
    // Compiles to two instructions without a branch.
    const auto clamp = [](double value) { return std::max(0.0, std::min(255.0, value)); };
    R = clamp(R);
    G = clamp(G);
    B = clamp(B);
}

/// What the effects that the program computes itself make of one pixel, where it depends on the old one
/// alone.
namespace own {

enum Code {
    kHeat = 19,
    kNight = 20,
    kIce = 21,
    kAqua = 22,
    kStrange = 23,
    kDarkness = 24,
    kAfrica = 25,
    kRects = 27,
    kComic = 28,
    kCrazyLines = 29,
    kBlackAndWhite = 30,
    kWave = 114,
};

struct Channels {
    double R, G, B;
};

/// The channels of a stretch of a row, each for itself, so that a rule works on several pixels at once.
struct ChannelPlanes {
    static constexpr std::size_t kSize = 512;
    std::array<double, kSize> R, G, B;
    Channels At(std::size_t i) const { return {R[i], G[i], B[i]}; }
    void Set(std::size_t i, Channels c) {
        R[i] = c.R;
        G[i] = c.G;
        B[i] = c.B;
    }
};

/// Rounds to the nearest, ties to even: at the size of the constant a double has no bits left behind the
/// point. Exact for every number below 2^51, and unlike the library's call it vectorises.
inline double Round(double value) {
    constexpr double kNoFraction = 6755399441055744.0;  // 1.5 * 2^52
    return (value + kNoFraction) - kNoFraction;
}

/// Computes every pixel of the planes.
using PlaneRule = void (*)(const ChannelPlanes& in, double Depth, ChannelPlanes& out);

PlaneRule HeatRule();
/// The rule of another effect; a code that has none copies.
PlaneRule ChannelRule(int EffectCode);

}  // namespace own
}  // namespace tessara
