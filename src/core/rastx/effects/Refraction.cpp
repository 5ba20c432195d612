#include "core/rastx/effects/Refraction.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/rastx/effects/Sampler.h"

namespace tessara::effects {
namespace {

/// Sources of whole columns and rows plus shifts that depend on the other axis.
TESSARA_MULTIVERSION void AddShifts(const float* columns, const float* columnShifts, float row,
                                    float rowShift, int count, Positions& positions) {
    for (int i = 0; i < count; ++i) {
        positions.x[i] = columns[i] + rowShift;
        positions.y[i] = row + columnShifts[i];
    }
}

/// Where each position of an axis lies.
std::vector<float> Straight(int length) {
    std::vector<float> positions(Index(length));
    for (int i = 0; i < length; ++i) positions[Index(i)] = static_cast<float>(i);
    return positions;
}

/// wave(t) for each position of a side, t in wave lengths, times the amplitude.
template <typename Wave>
std::vector<float> WaveAlong(int length, float waveLength, float amplitude, const Wave& wave) {
    std::vector<float> shifts(Index(length));
    for (int i = 0; i < length; ++i) shifts[Index(i)] = amplitude * wave(static_cast<float>(i) / waveLength);
    return shifts;
}

template <typename RowWave, typename ColumnWave>
Result<Picture> Ripple(const Picture& picture, int depth, const EffectRun& run, const RowWave& rowWave,
                       const ColumnWave& columnWave) {
    const float scale = PixelScale(picture);
    const float waveLength = 100 * scale;
    const float amplitude = static_cast<float>(depth) * scale;
    const std::vector<float> columns = Straight(picture.Width());
    const std::vector<float> rowShifts = WaveAlong(picture.Height(), waveLength, amplitude, rowWave);
    const std::vector<float> columnShifts = WaveAlong(picture.Width(), waveLength, amplitude, columnWave);
    return MapPositions(picture, run, [&](int x, int y, int count, Positions& positions) {
        AddShifts(&columns[Index(x)], &columnShifts[Index(x)], static_cast<float>(y), rowShifts[Index(y)],
                  count, positions);
    });
}

template <typename Wave>
Result<Picture> Ripple(const Picture& picture, int depth, const EffectRun& run, const Wave& wave) {
    return Ripple(picture, depth, run, wave, wave);
}

float Smooth(float t) {
    return t * t * (3 - 2 * t);
}

/// A wave that takes a random value four times in a wave length and runs smoothly between them.
struct RandomWave {
    std::uint32_t start;
    float operator()(float t) const {
        const float position = 4 * t;
        const float whole = std::floor(position);
        const auto knot = start + static_cast<std::uint32_t>(whole);
        const float before = SignedUnit(RandomOf(knot));
        const float behind = SignedUnit(RandomOf(knot + 1));
        return before + (behind - before) * Smooth(position - whole);
    }
};

/// Where each position of an axis comes from when seen through bricks: towards its rims a brick bends the
/// light outwards, so that it shows a little of its neighbours too.
std::vector<float> ThroughBricks(int length, float side, float strength) {
    std::vector<float> positions(Index(length));
    for (int i = 0; i < length; ++i) {
        const float middle = (std::floor((static_cast<float>(i) + 0.5f) / side) + 0.5f) * side - 0.5f;
        const float place = (static_cast<float>(i) - middle) / (side / 2);  // -1 to 1
        positions[Index(i)] = static_cast<float>(i) + strength * side / 2 * place * std::abs(place);
    }
    return positions;
}

/// A field of random values at the corners of square cells, smooth between them.
class SmoothField {
  public:
    SmoothField(int width, float cell, float amplitude, std::uint32_t seed)
        : cell_(cell), amplitude_(amplitude), seed_(seed), cells_(Index(width)), places_(Index(width)) {
        for (int x = 0; x < width; ++x) {
            const float position = static_cast<float>(x) / cell;
            cells_[Index(x)] = static_cast<int>(position);
            places_[Index(x)] = Smooth(position - std::floor(position));
        }
    }

    /// The values at the cells' corners, for row y; for `Along`.
    std::vector<float> RowOfCorners(int y) const {
        const float position = static_cast<float>(y) / cell_;
        const float whole = std::floor(position);
        const float share = Smooth(position - whole);
        const std::uint32_t above = RandomStart(seed_, static_cast<std::uint32_t>(whole));
        const std::uint32_t below = RandomStart(seed_, static_cast<std::uint32_t>(whole) + 1);
        std::vector<float> corners(Index(cells_.back() + 2));
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const float up = SignedUnit(RandomOf(above + static_cast<std::uint32_t>(i)));
            const float down = SignedUnit(RandomOf(below + static_cast<std::uint32_t>(i)));
            corners[i] = amplitude_ * (up + (down - up) * share);
        }
        return corners;
    }

    float Along(const std::vector<float>& corners, int x) const {
        const float before = corners[Index(cells_[Index(x)])];
        const float behind = corners[Index(cells_[Index(x)] + 1)];
        return before + (behind - before) * places_[Index(x)];
    }

  private:
    float cell_;
    float amplitude_;
    std::uint32_t seed_;
    std::vector<int> cells_;
    std::vector<float> places_;
};

}  // namespace

Result<Picture> RippleSine(const Picture& picture, int depth, const EffectRun& run) {
    return Ripple(picture, depth, run, [](float t) { return SinOfTurns(t); });
}

Result<Picture> RippleTooth(const Picture& picture, int depth, const EffectRun& run) {
    return Ripple(picture, depth, run, [](float t) { return 2 * (t - std::floor(t)) - 1; });
}

Result<Picture> RippleTriangle(const Picture& picture, int depth, const EffectRun& run) {
    return Ripple(picture, depth, run,
                  [](float t) { return 1 - 4 * std::abs(t + 0.25f - std::floor(t + 0.25f) - 0.5f); });
}

Result<Picture> RippleRandom(const Picture& picture, int depth, const EffectRun& run) {
    return Ripple(picture, depth, run, RandomWave{RandomStart(run.seed, 0)},
                  RandomWave{RandomStart(run.seed, 1)});
}

Result<Picture> Tile2(const Picture& picture, int depth, const EffectRun& run) {
    const float side = std::max(4.0f, static_cast<float>(std::min(picture.Width(), picture.Height())) / 12);
    const float strength = static_cast<float>(depth) / 60;
    const std::vector<float> columns = ThroughBricks(picture.Width(), side, strength);
    const std::vector<float> rows = ThroughBricks(picture.Height(), side, strength);
    const std::vector<float> noShifts(Index(picture.Width()));
    return MapPositions(picture, run, [&](int x, int y, int count, Positions& positions) {
        AddShifts(&columns[Index(x)], &noShifts[Index(x)], rows[Index(y)], 0, count, positions);
    });
}

Result<Picture> TexturedGlass(const Picture& picture, float scale, int chaos, const EffectRun& run) {
    const float cell = std::max(2.0f, 2 * scale * PixelScale(picture));
    const float amplitude = cell * static_cast<float>(chaos) / 20;
    const SmoothField shiftsX(picture.Width(), cell, amplitude, RandomOf(run.seed));
    const SmoothField shiftsY(picture.Width(), cell, amplitude, RandomOf(run.seed + 1));
    return MakeBands(
        picture, picture.Width(), picture.Height(), run, [&](const auto& row, int begin, int end) {
            Sampler sampler(picture);
            Positions positions;
            for (int y = begin; y < end; ++y) {
                const std::vector<float> cornersX = shiftsX.RowOfCorners(y);
                const std::vector<float> cornersY = shiftsY.RowOfCorners(y);
                for (int x = 0; x < picture.Width(); x += Positions::kMost) {
                    const int count = std::min(Positions::kMost, picture.Width() - x);
                    for (int i = 0; i < count; ++i) {
                        positions.x[i] = static_cast<float>(x + i) + shiftsX.Along(cornersX, x + i);
                        positions.y[i] = static_cast<float>(y) + shiftsY.Along(cornersY, x + i);
                    }
                    sampler.Write(positions, row(y).subspan(Index(x), Index(count)));
                }
            }
        });
}

}  // namespace tessara::effects
