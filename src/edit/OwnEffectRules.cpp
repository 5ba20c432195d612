#include "edit/OwnEffectRules.h"

#include <cmath>

#include "core/Multiversion.h"

namespace tessara::own {
namespace {

using Planes = ChannelPlanes;

Channels Heat(Channels c, double Depth) {
    c.R = std::abs(128 * (c.R * c.R) / (c.G + c.B + 10));
    c.B = std::abs(128 * (c.B * c.B) / (c.R + c.G + 10));
    c.G = std::abs(128 * (c.G * c.G) / (c.B + c.R + 10));
    constexpr double kLargest = 32767;
    while (c.R > kLargest || c.G > kLargest || c.B > kLargest) {
        if (c.R > kLargest)
            c.R -= kLargest;
        else if (c.G > kLargest)
            c.G -= kLargest;
        else
            c.B -= kLargest;
    }
    return {c.R * Depth, c.G * Depth, c.B * Depth};
}

Channels Night(Channels c, double Depth) {
    const auto darken = [=](double value) { return (std::abs(value * value) / 256) / Depth; };
    return {darken(c.R), darken(c.G), darken(c.B)};
}

Channels Ice(Channels c, double Depth) {
    c.R = Depth * std::abs(1.5 * (c.R - c.G - c.B));
    c.G = Depth * std::abs(1.5 * (c.G - c.B - c.R));
    c.B = Depth * std::abs(1.5 * (c.B - c.R - c.G));
    return c;
}

Channels Aqua(Channels c, double Depth) {
    const auto square = [](double value) { return value * value; };
    c.R = (square(c.G - c.B) / 125) / Depth;
    c.G = (square(c.R - c.B) / 125) / Depth;
    c.B = (square(c.R - c.G) / 125) / Depth;
    return c;
}

/// Strange, with the sine of the arc tangent of a quotient given.
template <typename SinAtan>
TESSARA_ALWAYS_INLINE Channels StrangeBy(Channels c, double Depth, const SinAtan& sinAtan) {
    const bool guard = c.G == 0 || c.B == 0;
    c.G = guard ? 1 : c.G;
    c.B = guard ? 1 : c.B;
    c.R = std::abs(sinAtan(c.G / c.B) * 125 + 20) / Depth;
    c.G = std::abs(sinAtan(c.R / c.B) * 125 + 20) / Depth;
    c.B = std::abs(sinAtan(c.R / c.G) * 125 + 20) / Depth;
    return c;
}
/// sin(atan(q)) is q / sqrt(1 + q^2), to the last bits.
TESSARA_ALWAYS_INLINE Channels QuickStrange(Channels c, double Depth) {
    return StrangeBy(c, Depth, [](double q) { return q / std::sqrt(1 + q * q); });
}
Channels ExactStrange(Channels c, double Depth) {
    return StrangeBy(c, Depth, [](double q) { return std::sin(std::atan(q)); });
}

Channels Darkness(Channels c, double Depth) {
    c.R = std::abs(c.R - 64 * Depth);
    c.G = std::abs(c.R - 64 * Depth);
    c.B = std::abs(c.R - 64 * Depth);
    return c;
}

Channels Africa(Channels c, double Depth) {
    c.R = std::abs(((c.G * c.B) / 256) / Depth);
    c.G = std::abs(((c.R * c.B) / 256) / Depth);
    c.B = std::abs(((c.R * c.G) / 256) / Depth);
    return c;
}

Channels Comic(Channels c, double Depth) {
    c.R = (std::abs(c.R * (c.G - c.B + c.G + c.R)) / 256) / Depth;
    c.G = (std::abs(c.R * (c.B - c.G + c.B + c.R)) / 256) / Depth;
    c.B = (std::abs(c.G * (c.B - c.G + c.B + c.R)) / 256) / Depth;
    ClampChannels(c.R, c.G, c.B);
    const double grey = (Round(c.R) + Round(c.G) + Round(c.B)) / 3;
    return {grey, grey, grey};
}

Channels BlackAndWhite(Channels c, double Depth) {
    const double threshold = 150 * Depth;
    const double value = c.R < threshold && c.G < threshold && c.B < threshold ? 0 : 255;
    return {value, value, value};
}

/// A rule over whole planes, compiled for several instruction sets.
#define CHANNEL_RULE(Name, Rule)                                                           \
    TESSARA_MULTIVERSION void Name(const Planes& in, double Depth, Planes& out) {          \
        for (std::size_t i = 0; i < Planes::kSize; ++i) out.Set(i, Rule(in.At(i), Depth)); \
    }
CHANNEL_RULE(HeatPlanes, Heat)
CHANNEL_RULE(NightPlanes, Night)
CHANNEL_RULE(IcePlanes, Ice)
CHANNEL_RULE(AquaPlanes, Aqua)
CHANNEL_RULE(QuickStrangePlanes, QuickStrange)
CHANNEL_RULE(DarknessPlanes, Darkness)
CHANNEL_RULE(AfricaPlanes, Africa)
CHANNEL_RULE(ComicPlanes, Comic)
CHANNEL_RULE(BlackAndWhitePlanes, BlackAndWhite)
#undef CHANNEL_RULE

/// The quick results are off by less than 1e-10. Whether one lies so close to a half that this could decide
/// its rounding.
TESSARA_MULTIVERSION bool IsUndecided(const Planes& planes) {
    constexpr double kDecided = 0.5 - 1e-7;
    unsigned undecided = 0;
    for (std::size_t i = 0; i < Planes::kSize; ++i) {
        undecided |= std::abs(planes.R[i] - Round(planes.R[i])) > kDecided;
        undecided |= std::abs(planes.G[i] - Round(planes.G[i])) > kDecided;
        undecided |= std::abs(planes.B[i] - Round(planes.B[i])) > kDecided;
    }
    return undecided != 0;
}

void StrangePlanes(const Planes& in, double Depth, Planes& out) {
    QuickStrangePlanes(in, Depth, out);
    if (!IsUndecided(out)) return;
    for (std::size_t i = 0; i < Planes::kSize; ++i) out.Set(i, ExactStrange(in.At(i), Depth));
}

void CopyPlanes(const Planes& in, double, Planes& out) {
    out = in;
}

}  // namespace

PlaneRule HeatRule() {
    return HeatPlanes;
}

PlaneRule ChannelRule(int EffectCode) {
    struct Row {
        int code;
        PlaneRule rule;
    };
    constexpr Row kRules[] = {
        {kNight, NightPlanes},       {kIce, IcePlanes},
        {kAqua, AquaPlanes},         {kStrange, StrangePlanes},
        {kDarkness, DarknessPlanes}, {kAfrica, AfricaPlanes},
        {kComic, ComicPlanes},       {kBlackAndWhite, BlackAndWhitePlanes},
    };
    const auto row = std::ranges::find(kRules, EffectCode, &Row::code);
    return row == std::end(kRules) ? CopyPlanes : row->rule;
}

}  // namespace tessara::own
