#include "edit/OwnEffects.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "core/Multiversion.h"

namespace tessara {

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

namespace {

using Planes = ChannelPlanes;

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

/// Rounds to the nearest, ties to even: at the size of the constant a double has no bits left behind the
/// point. Exact for every number below 2^51, and unlike the library's call it vectorises.
double Round(double value) {
    constexpr double kNoFraction = 6755399441055744.0;  // 1.5 * 2^52
    return (value + kNoFraction) - kNoFraction;
}

/// To a 32-bit integer; none where the value does not fit.
std::optional<ColorNumber> RoundToColor(double value) {
    if (!(std::abs(value) < 2147483647.0)) return std::nullopt;
    return static_cast<ColorNumber>(Round(value));
}

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

TESSARA_MULTIVERSION void SplitPixels(const Pixel* pixels, std::size_t count, Planes& planes) {
    for (std::size_t i = 0; i < count; ++i) {
        planes.R[i] = pixels[i].r;
        planes.G[i] = pixels[i].g;
        planes.B[i] = pixels[i].b;
    }
}

TESSARA_MULTIVERSION void JoinPixels(const Planes& planes, std::size_t count, Pixel* pixels) {
    for (std::size_t i = 0; i < count; ++i) {
        Channels c = planes.At(i);
        ClampChannels(c.R, c.G, c.B);
        pixels[i] = {static_cast<std::uint8_t>(static_cast<int>(Round(c.B))),
                     static_cast<std::uint8_t>(static_cast<int>(Round(c.G))),
                     static_cast<std::uint8_t>(static_cast<int>(Round(c.R))), 255};
    }
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

/// Reads colour numbers; -1 outside of the picture. One row with its neighbours, a number of margin at each
/// end.
class ColorRows {
  public:
    explicit ColorRows(const Picture& picture) : picture_(picture) {
        for (auto& row : rows_) row.assign(static_cast<std::size_t>(picture.Width()) + 2, -1);
        Read(-1, rows_[0]);
        Read(0, rows_[1]);
        Read(1, rows_[2]);
    }
    /// Goes to the next row.
    void Advance() {
        ++y_;
        std::rotate(rows_.begin(), rows_.begin() + 1, rows_.end());
        Read(y_ + 1, rows_[2]);
    }
    /// Point(x + dx, y + dy) of the current row y.
    double At(int x, int dx, int dy) const {
        return rows_[static_cast<std::size_t>(1 + dy)][static_cast<std::size_t>(x + dx + 1)];
    }

  private:
    void Read(int y, std::vector<ColorNumber>& row) const {
        if (y < 0 || y >= picture_.Height()) {
            std::fill(row.begin(), row.end(), -1);
            return;
        }
        std::ranges::transform(picture_.Row(y), row.begin() + 1, ColorFromPixel);
    }

    const Picture& picture_;
    std::array<std::vector<ColorNumber>, 3> rows_;
    int y_ = 0;
};

double Rects(const ColorRows& rows, int x, double Depth) {
    const double neighbours = rows.At(x, 1, 0) + rows.At(x, -1, 0) + rows.At(x, 0, 1) + rows.At(x, 0, -1);
    return Depth * std::abs(rows.At(x, 0, 0)) - Depth * (std::abs(neighbours) / 4);
}

double CrazyLines(const ColorRows& rows, int x, double Depth) {
    double sum = 0;
    for (int dy = -1; dy <= 1; ++dy) sum += rows.At(x, -1, dy) + rows.At(x, 1, dy);
    sum += rows.At(x, 0, -1) + rows.At(x, 0, 1);
    return sum / 8 / Depth;
}

}  // namespace

ImageBounds GetImageBounds(const Picture& picture) {
    return {0, 0, picture.Width() - 1, picture.Height() - 1};
}

void SplitColor(ColorNumber color, double& R, double& G, double& B) {
    R = color % 256;
    G = color / 256 % 256;
    B = color / 65536 % 256;
}

void ClampChannels(double& R, double& G, double& B) {
    // Compiles to two instructions without a branch.
    const auto clamp = [](double value) { return std::max(0.0, std::min(255.0, value)); };
    R = clamp(R);
    G = clamp(G);
    B = clamp(B);
}

OwnEffects::OwnEffects(const Picture& Pic_Image, Picture& Pic_TempImage, Options options)
    : source_(Pic_Image), target_(Pic_TempImage), options_(std::move(options)) {}

void OwnEffects::ForEachChannels(ImageBounds bounds, double Depth, PlaneRule rule) {
    const std::span<Pixel> target = target_.MutablePixels();
    auto in = std::make_unique<Planes>();
    auto out = std::make_unique<Planes>();
    for (int y = bounds.Y0; y <= bounds.Y1; ++y) {
        StartRow(y);
        const auto row = source_.Row(y);
        const auto written = target.subspan(static_cast<std::size_t>(y) * row.size(), row.size());
        for (std::size_t x = 0; x < row.size(); x += Planes::kSize) {
            const std::size_t count = std::min(Planes::kSize, row.size() - x);
            SplitPixels(&row[x], count, *in);
            rule(*in, Depth, *out);
            JoinPixels(*out, count, &written[x]);
        }
        if (!options_.keepTransparent) continue;
        for (std::size_t x = 0; x < row.size(); ++x)
            if (IsKept(ColorFromPixel(row[x]))) written[x] = row[x];
    }
}

/// The effects that compute a colour number from the neighbours' numbers.
template <typename Rule>
void OwnEffects::ForEachColor(ImageBounds bounds, double Depth, const Rule& rule) {
    const std::span<Pixel> target = target_.MutablePixels();
    ColorRows rows(source_);
    for (int y = bounds.Y0; y <= bounds.Y1; ++y, rows.Advance()) {
        StartRow(y);
        const auto in = source_.Row(y);
        const auto out = target.subspan(static_cast<std::size_t>(y) * in.size(), in.size());
        for (int x = bounds.X0; x <= bounds.X1; ++x) {
            const auto i = static_cast<std::size_t>(x);
            if (IsKept(ColorFromPixel(in[i])))
                out[i] = in[i];
            else if (const auto color = RoundToColor(rule(rows, x, Depth)))
                out[i] = PixelFromColor(*color);
        }
    }
}

void OwnEffects::ApplyOwnEffect(int EffectCode, double Depth, const std::function<void()>& showSource) {
    if (Depth == 0) {
        showSource();
        return;
    }
    const ImageBounds bounds = GetImageBounds(source_);
    if (EffectCode == kHeat)
        HeatEffect(Depth, bounds);
    else if (EffectCode == kWave)
        WaveEffect(Depth, bounds);
    else if (EffectCode >= 17)
        ChannelEffect(EffectCode, Depth, bounds);
}

void OwnEffects::HeatEffect(double Depth, ImageBounds bounds) {
    // A higher slider value gives a darker picture.
    ForEachChannels(bounds, 1 / Depth, HeatPlanes);
}

void OwnEffects::ChannelEffect(int EffectCode, double Depth, ImageBounds bounds) {
    if (EffectCode == kRects) return ForEachColor(bounds, Depth, Rects);
    if (EffectCode == kCrazyLines) return ForEachColor(bounds, Depth, CrazyLines);
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
    const PlaneRule rule = row == std::end(kRules) ? CopyPlanes : row->rule;
    ForEachChannels(bounds, EffectCode == kIce ? Depth + 0.5 : Depth, rule);
}

void OwnEffects::WaveEffect(double Depth, ImageBounds bounds) {
    const int Wide = bounds.X1 - bounds.X0 + 1;
    const int High = bounds.Y1 - bounds.Y0 + 1;
    if (options_.progressMax) options_.progressMax(High * 2);
    std::vector<double> columnShift;
    for (int x = bounds.X0; x <= bounds.X1; ++x) columnShift.push_back(Depth * (std::sin(double(x)) * 6));
    // The first of two passes only gathers the shifts, which stand in the line above.
    for (int y = bounds.Y0; y <= bounds.Y1; ++y) StartRow(y);

    const std::span<const Pixel> source = source_.Pixels();
    const std::span<Pixel> target = target_.MutablePixels();
    for (int y = bounds.Y0; y <= bounds.Y1; ++y) {
        StartRow(y + High);
        const double rowShift = Depth * (y - 3);
        for (int x = bounds.X0; x <= bounds.X1; ++x) {
            const auto Row = static_cast<float>(rowShift + columnShift[static_cast<std::size_t>(x)]);
            const auto to = static_cast<std::int64_t>(Round(Row));
            if (to < 0 || to >= High) continue;  // no such position to write to
            const auto i =
                static_cast<std::size_t>(to) * static_cast<std::size_t>(Wide) + static_cast<std::size_t>(x);
            const auto from =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(Wide) + static_cast<std::size_t>(x);
            target[i] =
                IsKept(ColorFromPixel(source[i])) ? PixelFromColor(options_.TransparentColor) : source[from];
        }
    }
}

}  // namespace tessara
