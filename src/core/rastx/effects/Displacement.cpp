#include "core/rastx/effects/Displacement.h"

#include <cmath>
#include <numbers>
#include <vector>

#include "core/rastx/Rows.h"
#include "core/rastx/effects/Sampler.h"

namespace tessara::effects {
namespace {

std::size_t Index(int value) {
    return static_cast<std::size_t>(value);
}

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

/// A random offset for each position of a side, the same within a band.
std::vector<int> BandOffsets(int length, int most, std::uint32_t seed) {
    const int band = std::max(1, length / 60);
    const std::uint32_t start = RandomStart(seed, 0);
    std::vector<int> offsets(Index(length));
    for (int i = 0; i < length; ++i)
        offsets[Index(i)] = static_cast<int>(std::lround(
            SignedUnit(RandomOf(start + static_cast<std::uint32_t>(i / band))) * static_cast<float>(most)));
    return offsets;
}

int MostShift(float amount, int side) {
    return std::min(side - 1,
                    static_cast<int>(std::lround(std::clamp(amount, 0.0f, 1.0f) * static_cast<float>(side))));
}

/// A position brought back into a side by mirroring; at most one side outside.
int Mirrored(int position, int side) {
    if (position < 0) position = -1 - position;
    return position < side ? position : 2 * side - 1 - position;
}

/// Where the random neighbours of a run of pixels lie; the two halves of one random number choose the column
/// and the row.
TESSARA_MULTIVERSION void ChooseNeighbours(int width, int height, int x, int y, int depth,
                                           std::uint32_t start, int count, int* offsets) {
    const auto choices = static_cast<std::uint32_t>(2 * depth + 1);
    for (int i = 0; i < count; ++i) {
        const std::uint32_t random = RandomOf(start + static_cast<std::uint32_t>(x + i));
        int column = x + i - depth + static_cast<int>(((random & 0xffff) * choices) >> 16);
        int row = y - depth + static_cast<int>(((random >> 16) * choices) >> 16);
        column = column < 0 ? 0 : column;
        column = column > width - 1 ? width - 1 : column;
        row = row < 0 ? 0 : row;
        row = row > height - 1 ? height - 1 : row;
        offsets[i] = row * width + column;
    }
}

/// One row of streaks. A streak starts where the brightness changes, takes the colour before the change and
/// fades.
class WindRow {
  public:
    WindRow(std::uint32_t start, int length, int reach) : start_(start), length_(length), reach_(reach) {}

    void Blow(std::span<Pixel> row) {
        const std::vector<Pixel> before(row.begin(), row.end());
        for (std::size_t x = Index(reach_); x < row.size(); ++x) {
            const Pixel upwind = before[x - Index(reach_)];
            if (std::abs(Luma(upwind) - Luma(before[x])) > kEdge)
                Start(upwind, static_cast<std::uint32_t>(x));
            if (left_ == 0) continue;
            const int share = 256 * left_-- / whole_;
            const auto mix = [share](std::uint8_t color, std::uint8_t streak) {
                return static_cast<std::uint8_t>(color + (((streak - color) * share) >> 8));
            };
            Pixel& pixel = row[x];
            pixel = {mix(pixel.b, streak_.b), mix(pixel.g, streak_.g), mix(pixel.r, streak_.r), pixel.a};
        }
    }

  private:
    static constexpr int kEdge = 16;

    /// Every fourth edge pixel lets go, unless a longer streak passes over it.
    void Start(Pixel color, std::uint32_t x) {
        const std::uint32_t random = RandomOf(start_ + x);
        if (random & 3) return;
        const int length = 1 + static_cast<int>((random >> 8) % static_cast<std::uint32_t>(length_));
        if (length < left_) return;
        left_ = whole_ = length;
        streak_ = color;
    }

    std::uint32_t start_;
    int length_;
    int reach_;
    Pixel streak_ = kBlack;
    int left_ = 0;
    int whole_ = 1;
};

/// The tiles of a picture and where each is shifted to.
struct Tiles {
    int side;
    int most;
    std::uint32_t seed;

    int Shift(int column, int row, std::uint32_t axis) const {
        const std::uint32_t random = RandomOf(RandomStart(seed, static_cast<std::uint32_t>(2 * row) + axis) +
                                              static_cast<std::uint32_t>(column));
        return static_cast<int>(std::lround(SignedUnit(random) * static_cast<float>(most)));
    }
};

/// Draws the parts of one tile row that fall onto row y of the result.
void DrawTiles(const Picture& picture, const Tiles& tiles, int tileRow, int y, std::span<Pixel> out) {
    for (int column = 0; column * tiles.side < picture.Width(); ++column) {
        const int sourceY = y - tiles.Shift(column, tileRow, 1);
        if (sourceY < tileRow * tiles.side ||
            sourceY >= std::min((tileRow + 1) * tiles.side, picture.Height()))
            continue;
        const int left = column * tiles.side;
        const int right = std::min(left + tiles.side, picture.Width());
        const int shift = tiles.Shift(column, tileRow, 0);
        const int begin = std::max(left, -shift);
        const int end = std::min(right, picture.Width() - shift);
        if (begin < end)
            CopyPixels(picture.Row(sourceY).subspan(Index(begin), Index(end - begin)),
                       &out[Index(begin + shift)]);
    }
}

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

Result<Picture> ShakeUpDown(const Picture& picture, float amount, const EffectRun& run) {
    const std::vector<int> offsets =
        BandOffsets(picture.Width(), MostShift(amount, picture.Height()), run.seed);
    return MakeRows(picture, picture.Width(), picture.Height(), run, [&](std::span<Pixel> row, int y) {
        for (std::size_t begin = 0, end = 0; begin < row.size(); begin = end) {
            while (end < row.size() && offsets[end] == offsets[begin]) ++end;
            const auto source = picture.Row(Mirrored(y + offsets[begin], picture.Height()));
            CopyPixels(source.subspan(begin, end - begin), &row[begin]);
        }
    });
}

Result<Picture> ShakeLeftRight(const Picture& picture, float amount, const EffectRun& run) {
    const int width = picture.Width();
    const std::vector<int> offsets = BandOffsets(picture.Height(), MostShift(amount, width), run.seed);
    return MakeRows(picture, width, picture.Height(), run, [&](std::span<Pixel> row, int y) {
        const auto source = picture.Row(y);
        const int offset = offsets[Index(y)];
        const auto missing = Index(std::abs(offset));
        if (offset >= 0) {
            CopyPixels(source.subspan(missing), row.data());
            std::ranges::reverse_copy(source.last(missing), row.last(missing).begin());
        } else {
            CopyPixels(source.first(Index(width) - missing), &row[missing]);
            std::ranges::reverse_copy(source.first(missing), row.begin());
        }
    });
}

Picture Wind(Picture picture, int depth, const EffectRun& run) {
    const float scale = std::max(1.0f, PixelScale(picture));
    const int length = std::max(1, static_cast<int>(static_cast<float>(depth) * scale));
    const int thickness = static_cast<int>(scale);
    return ChangeRows(std::move(picture), run, [&](std::span<Pixel> row, int y) {
        WindRow(RandomStart(run.seed, static_cast<std::uint32_t>(y / thickness)), length, thickness)
            .Blow(row);
    });
}

Result<Picture> Diffuse(const Picture& picture, int depth, const EffectRun& run) {
    depth = std::clamp(depth, 0, 1000);
    if (depth == 0) return picture;
    const Pixel* source = picture.Pixels().data();
    return MakeRows(picture, picture.Width(), picture.Height(), run, [&](std::span<Pixel> row, int y) {
        constexpr int kAtOnce = 256;
        int offsets[kAtOnce];
        // The row that comes into reach: its pixels are asked for in no order that the processor foresees.
        const auto ahead = picture.Row(std::min(y + depth + 1, picture.Height() - 1));
        const std::uint32_t start = RandomStart(run.seed, static_cast<std::uint32_t>(y));
        for (int x = 0; x < picture.Width(); x += kAtOnce) {
            const int count = std::min(kAtOnce, picture.Width() - x);
            ChooseNeighbours(picture.Width(), picture.Height(), x, y, depth, start, count, offsets);
            for (int i = 0; i < count; i += 16) __builtin_prefetch(&ahead[Index(x + i)]);
            for (int i = 0; i < count; ++i) row[Index(x + i)] = source[offsets[i]];
        }
    });
}

Result<Picture> Tile1(const Picture& picture, int depth, const EffectRun& run) {
    const int side = std::max(2, std::min(picture.Width(), picture.Height()) / 12);
    const Tiles tiles{side, std::clamp(depth, 0, 100) * side / 200, run.seed};
    const Pixel background = picture.HasAlpha() ? kTransparent : kWhite;
    return MakeRows(picture, picture.Width(), picture.Height(), run, [&](std::span<Pixel> row, int y) {
        std::ranges::fill(row, background);
        const int last = std::min((y + tiles.most) / side, (picture.Height() - 1) / side);
        for (int tileRow = std::max(0, y - tiles.most) / side; tileRow <= last; ++tileRow)
            DrawTiles(picture, tiles, tileRow, y, row);
    });
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
