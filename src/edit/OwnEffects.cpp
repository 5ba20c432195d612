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
namespace {

using namespace own;
using Planes = ChannelPlanes;

/// To a 32-bit integer; none where the value does not fit.
std::optional<ColorNumber> RoundToColor(double value) {
    if (!(std::abs(value) < 2147483647.0)) return std::nullopt;
    return static_cast<ColorNumber>(Round(value));
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
    ForEachChannels(bounds, 1 / Depth, HeatRule());
}

void OwnEffects::ChannelEffect(int EffectCode, double Depth, ImageBounds bounds) {
    if (EffectCode == kRects) return ForEachColor(bounds, Depth, Rects);
    if (EffectCode == kCrazyLines) return ForEachColor(bounds, Depth, CrazyLines);
    ForEachChannels(bounds, EffectCode == kIce ? Depth + 0.5 : Depth, ChannelRule(EffectCode));
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
