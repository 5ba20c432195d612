#include "core/rastx/effects/Displacement.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/rastx/Rows.h"

namespace tessara::effects {
namespace {

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

}  // namespace

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

}  // namespace tessara::effects
