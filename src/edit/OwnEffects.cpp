#include "edit/OwnEffects.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace tessara {
namespace {

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

/// Rounds to the nearest, ties to even: at this size a double has no bits left behind the point. Much faster
/// than the library's call, and the same for every number below 2^51.
std::int64_t Round(double value) {
    constexpr double kNoFraction = 6755399441055744.0;  // 1.5 * 2^52
    return static_cast<std::int64_t>(std::bit_cast<std::uint64_t>(value + kNoFraction) -
                                     std::bit_cast<std::uint64_t>(kNoFraction));
}

/// To a 32-bit integer; none where the value does not fit.
std::optional<ColorNumber> RoundToColor(double value) {
    if (!(std::abs(value) < 2147483647.0)) return std::nullopt;
    return static_cast<ColorNumber>(Round(value));
}

Channels Clamped(Channels c) {
    ClampChannels(c.R, c.G, c.B);
    return c;
}

Pixel PixelFromChannels(Channels c) {
    c = Clamped(c);
    return {static_cast<std::uint8_t>(Round(c.B)), static_cast<std::uint8_t>(Round(c.G)),
            static_cast<std::uint8_t>(Round(c.R)), 255};
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
Channels StrangeBy(Channels c, double Depth, const SinAtan& sinAtan) {
    if (c.G == 0 || c.B == 0) c.G = c.B = 1;
    c.R = std::abs(sinAtan(c.G / c.B) * 125 + 20) / Depth;
    c.G = std::abs(sinAtan(c.R / c.B) * 125 + 20) / Depth;
    c.B = std::abs(sinAtan(c.R / c.G) * 125 + 20) / Depth;
    return c;
}

/// sin(atan(q)) is q / sqrt(1 + q^2), to the last bits. Where a result lies so close to a half that those
/// bits could decide its rounding, the two functions are called.
Channels Strange(Channels c, double Depth) {
    const Channels quick = StrangeBy(c, Depth, [](double q) { return q / std::sqrt(1 + q * q); });
    constexpr double kUndecided = 1e-4;
    const auto undecided = [](double value) {
        return value < 256 && std::abs(value - static_cast<double>(Round(value))) > 0.5 - kUndecided;
    };
    if (!undecided(quick.R) && !undecided(quick.G) && !undecided(quick.B)) return quick;
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
    SplitColor(ColorFromPixel(PixelFromChannels(c)), c.R, c.G, c.B);
    const double grey = (c.R + c.G + c.B) / 3;
    return {grey, grey, grey};
}

Channels BlackAndWhite(Channels c, double Depth) {
    const double threshold = 150 * Depth;
    const double value = c.R < threshold && c.G < threshold && c.B < threshold ? 0 : 255;
    return {value, value, value};
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
    for (double* value : {&R, &G, &B}) *value = std::clamp(*value, 0.0, 255.0);
}

OwnEffects::OwnEffects(const Picture& Pic_Image, Picture& Pic_TempImage, Options options)
    : source_(Pic_Image), target_(Pic_TempImage), options_(std::move(options)) {}

/// The effects whose new pixel depends on the old one alone.
template <typename Rule>
void OwnEffects::ForEachChannels(ImageBounds bounds, const Rule& rule) {
    const std::span<Pixel> target = target_.MutablePixels();
    for (int y = bounds.Y0; y <= bounds.Y1; ++y) {
        StartRow(y);
        const auto in = source_.Row(y);
        const auto out = target.subspan(static_cast<std::size_t>(y) * in.size(), in.size());
        for (std::size_t x = 0; x < in.size(); ++x) {
            const Pixel p = in[x];
            out[x] = IsKept(ColorFromPixel(p))
                         ? p
                         : PixelFromChannels(rule(Channels{double(p.r), double(p.g), double(p.b)}));
        }
    }
}

/// The effects that compute a colour number from the neighbours' numbers.
template <typename Rule>
void OwnEffects::ForEachColor(ImageBounds bounds, const Rule& rule) {
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
            else if (const auto color = RoundToColor(rule(rows, x)))
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
    Depth = 1 / Depth;  // a higher slider value gives a darker picture
    ForEachChannels(bounds, [=](Channels c) { return Heat(c, Depth); });
}

void OwnEffects::ChannelEffect(int EffectCode, double Depth, ImageBounds bounds) {
    const auto channels = [&](auto rule) {
        ForEachChannels(bounds, [=](Channels c) { return rule(c, Depth); });
    };
    const auto colors = [&](auto rule) {
        ForEachColor(bounds, [=](const ColorRows& rows, int x) { return rule(rows, x, Depth); });
    };
    if (EffectCode == kIce) Depth += 0.5;
    // Lambdas rather than function names: each loop then has its rule inlined.
    switch (EffectCode) {
        case kNight:
            return channels([](Channels c, double d) { return Night(c, d); });
        case kIce:
            return channels([](Channels c, double d) { return Ice(c, d); });
        case kAqua:
            return channels([](Channels c, double d) { return Aqua(c, d); });
        case kStrange:
            return channels([](Channels c, double d) { return Strange(c, d); });
        case kDarkness:
            return channels([](Channels c, double d) { return Darkness(c, d); });
        case kAfrica:
            return channels([](Channels c, double d) { return Africa(c, d); });
        case kComic:
            return channels([](Channels c, double d) { return Comic(c, d); });
        case kBlackAndWhite:
            return channels([](Channels c, double d) { return BlackAndWhite(c, d); });
        case kRects:
            return colors([](const ColorRows& r, int x, double d) { return Rects(r, x, d); });
        case kCrazyLines:
            return colors([](const ColorRows& r, int x, double d) { return CrazyLines(r, x, d); });
        default:
            return channels([](Channels c, double) { return c; });
    }
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
            const std::int64_t to = Round(Row);
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
