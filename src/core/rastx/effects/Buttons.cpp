#include "core/rastx/effects/Buttons.h"

#include <cmath>

namespace tessara::effects {
namespace {

constexpr float kStrongest = 0.8f;  // light that leaves a trace of the picture at full depth
constexpr float kDiagonal =
    0.7071f;  // the share of light from the upper left on a side that faces up or left

/// Light from -1, black, to 1, white.
TESSARA_ALWAYS_INLINE std::uint32_t Lit(std::uint32_t pixel, float light) {
    const float toWhite = light > 0 ? light : 0.0f;
    const float kept = 1 - (light > 0 ? light : -light);
    const auto channel = [&](std::uint32_t value) {
        return static_cast<std::uint32_t>(
            static_cast<int>(static_cast<float>(value & 255) * kept + 255 * toWhite + 0.5f));
    };
    return (pixel & kAlphaBits) | channel(pixel) | (channel(pixel >> 8) << 8) | (channel(pixel >> 16) << 16);
}

struct Sides {
    float width, height;
    float strength;
    float rim;  ///< in pixels
};

/// 1 at a side, 0 from `rim` pixels inwards; a pixel's centre counts.
TESSARA_ALWAYS_INLINE float Nearness(float distance, float rim) {
    const float share = 1 - distance / rim;
    return share > 0 ? share : 0.0f;
}

TESSARA_MULTIVERSION void SimpleRow(const Sides& sides, int y, std::size_t width, std::uint8_t* row) {
    const float top = static_cast<float>(y) + 0.5f;
    const float bottom = sides.height - top;
    const float nearerRow = top < bottom ? top : bottom;
    const float rowLight = top < bottom ? 1.0f : -1.0f;
    const Sides own = sides;
    for (std::size_t x = 0; x < width; ++x) {
        const float left = static_cast<float>(static_cast<int>(x)) + 0.5f;
        const float right = own.width - left;
        const float nearerColumn = left < right ? left : right;
        // The sides are a little less bright and dark than top and bottom, so that the mitres show.
        const float columnLight = left < right ? 0.75f : -0.75f;
        const float nearer = nearerRow < nearerColumn ? nearerRow : nearerColumn;
        const float light = nearerRow < nearerColumn ? rowLight : columnLight;
        StorePixel(row + 4 * x, Lit(LoadPixel(row + 4 * x), nearer < own.rim ? own.strength * light : 0.0f));
    }
}

TESSARA_MULTIVERSION void SmoothRow(const Sides& sides, int y, std::size_t width, std::uint8_t* row) {
    const Sides own = sides;
    const float top = Nearness(static_cast<float>(y) + 0.5f, own.rim);
    const float bottom = Nearness(own.height - static_cast<float>(y) - 0.5f, own.rim);
    const float rowLight = top * top - bottom * bottom;
    for (std::size_t x = 0; x < width; ++x) {
        const float place = static_cast<float>(static_cast<int>(x)) + 0.5f;
        const float left = Nearness(place, own.rim);
        const float right = Nearness(own.width - place, own.rim);
        float light = own.strength * (rowLight + left * left - right * right);
        light = light < kStrongest ? light : kStrongest;
        light = light > -kStrongest ? light : -kStrongest;
        StorePixel(row + 4 * x, Lit(LoadPixel(row + 4 * x), light));
    }
}

/// The inscribed ellipse.
struct Ellipse {
    float centerX, centerY, radiusX, radiusY;
};

Ellipse EllipseIn(int width, int height) {
    const float radiusX = static_cast<float>(width) / 2;
    const float radiusY = static_cast<float>(height) / 2;
    return {radiusX - 0.5f, radiusY - 0.5f, radiusX, radiusY};
}

/// Where a pixel stands to an ellipse.
struct Place {
    float distance;  ///< from the centre, 1 on the rim
    float pixels;    ///< of distance 1, along the line that leads outwards
    float light;     ///< that falls onto a slope which faces outwards here
};

TESSARA_ALWAYS_INLINE Place PlaceIn(const Ellipse& ellipse, float x, float y) {
    const float u = (x - ellipse.centerX) / ellipse.radiusX;
    const float v = (y - ellipse.centerY) / ellipse.radiusY;
    const float distance = std::sqrt(u * u + v * v);
    const float slopeX = u / ellipse.radiusX;
    const float slopeY = v / ellipse.radiusY;
    const float slope = std::sqrt(slopeX * slopeX + slopeY * slopeY) + 1e-9f;
    return {distance, distance / slope, -(slopeX + slopeY) / slope * kDiagonal};
}

/// How much of a pixel lies inside of `limit`.
TESSARA_ALWAYS_INLINE float Covered(const Place& place, float limit) {
    float share = (limit - place.distance) * place.pixels + 0.5f;
    share = share > 0 ? share : 0.0f;
    return share < 1 ? share : 1.0f;
}

struct Oval {
    Ellipse ellipse;
    float strength;
    float rim;  ///< as a share of the radius
};

TESSARA_MULTIVERSION void RimRow(const Oval& oval, int y, std::size_t width, std::uint8_t* row) {
    const Oval own = oval;
    for (std::size_t x = 0; x < width; ++x) {
        const Place place =
            PlaceIn(own.ellipse, static_cast<float>(static_cast<int>(x)), static_cast<float>(y));
        const float onRim = Covered(place, 1) - Covered(place, 1 - own.rim);
        StorePixel(row + 4 * x, Lit(LoadPixel(row + 4 * x), own.strength * onRim * place.light));
    }
}

/// The slope begins with nothing at the inner end of the rim and is steepest at the outer.
TESSARA_MULTIVERSION void DomeRow(const Oval& oval, int y, std::size_t width, std::uint8_t* row) {
    const Oval own = oval;
    for (std::size_t x = 0; x < width; ++x) {
        const Place place =
            PlaceIn(own.ellipse, static_cast<float>(static_cast<int>(x)), static_cast<float>(y));
        float slope = (place.distance - 1 + own.rim) / own.rim;
        slope = slope > 0 ? slope : 0.0f;
        slope = slope < 1 ? slope : 1.0f;
        StorePixel(row + 4 * x,
                   Lit(LoadPixel(row + 4 * x), own.strength * slope * Covered(place, 1) * place.light));
    }
}

TESSARA_MULTIVERSION void MaskRow(const Ellipse& ellipse, std::uint32_t color, int y, std::size_t width,
                                  std::uint8_t* row) {
    const Ellipse own = ellipse;
    for (std::size_t x = 0; x < width; ++x) {
        const Place place = PlaceIn(own, static_cast<float>(static_cast<int>(x)), static_cast<float>(y));
        const float share = Covered(place, 1);
        const std::uint32_t pixel = LoadPixel(row + 4 * x);
        const auto channel = [&](int shift) {
            const auto inside = static_cast<float>((pixel >> shift) & 255);
            const auto outside = static_cast<float>((color >> shift) & 255);
            return static_cast<std::uint32_t>(static_cast<int>(outside + (inside - outside) * share + 0.5f))
                   << shift;
        };
        StorePixel(row + 4 * x, (pixel & kAlphaBits) | channel(0) | channel(8) | channel(16));
    }
}

float Percent(int value) {
    return static_cast<float>(std::clamp(value, 0, 100)) / 100;
}

using SidesRow = void (*)(const Sides&, int, std::size_t, std::uint8_t*);
using OvalRow = void (*)(const Oval&, int, std::size_t, std::uint8_t*);

Picture LightSides(Picture picture, int depth, float rim, SidesRow rule, const EffectRun& run) {
    const Sides sides{static_cast<float>(picture.Width()), static_cast<float>(picture.Height()),
                      kStrongest * Percent(depth), std::max(rim, 1e-6f)};
    return ChangeRows(std::move(picture), run,
                      [&](std::span<Pixel> row, int y) { rule(sides, y, row.size(), BytesOf(row)); });
}

/// `depth` below 0 lights the other side, as in a hollow.
Picture LightOval(Picture picture, int depth, int weight, OvalRow rule, const EffectRun& run) {
    const float strength = kStrongest * (depth < 0 ? -Percent(-depth) : Percent(depth));
    const Oval oval{EllipseIn(picture.Width(), picture.Height()), strength, std::max(Percent(weight), 1e-6f)};
    return ChangeRows(std::move(picture), run,
                      [&](std::span<Pixel> row, int y) { rule(oval, y, row.size(), BytesOf(row)); });
}

float ShorterSide(const Picture& picture) {
    return static_cast<float>(std::min(picture.Width(), picture.Height()));
}

}  // namespace

Picture ButtonSimple(Picture picture, int depth, int weight, const EffectRun& run) {
    const float rim = ShorterSide(picture) / 4 * Percent(weight);
    return LightSides(std::move(picture), depth, rim, SimpleRow, run);
}

Picture ButtonSmooth(Picture picture, int depth, const EffectRun& run) {
    const float rim = ShorterSide(picture) / 3;
    return LightSides(std::move(picture), depth, rim, SmoothRow, run);
}

Picture ButtonEllipse1(Picture picture, int depth, int weight, const EffectRun& run) {
    return LightOval(std::move(picture), depth, weight / 2, RimRow, run);
}
Picture ButtonEllipse2(Picture picture, int depth, int weight, const EffectRun& run) {
    return LightOval(std::move(picture), depth, weight, DomeRow, run);
}
Picture ButtonEllipse3(Picture picture, int depth, int weight, const EffectRun& run) {
    return LightOval(std::move(picture), -depth, weight, DomeRow, run);
}

Picture MaskEllipse(Picture picture, ColorNumber color, const EffectRun& run) {
    const Ellipse ellipse = EllipseIn(picture.Width(), picture.Height());
    const std::uint32_t fill = WordOf(PixelFromColor(color));
    return ChangeRows(std::move(picture), run, [&](std::span<Pixel> row, int y) {
        MaskRow(ellipse, fill, y, row.size(), BytesOf(row));
    });
}

}  // namespace tessara::effects
