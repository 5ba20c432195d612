#include "core/rastx/effects/Convolution.h"

#include <cmath>

namespace tessara::effects {
namespace {

/// rule(above, here, below) for each byte; the three point to it and to those above and below, so that [-4]
/// and [4] are the same channel of the neighbours.
template <typename Rule>
TESSARA_ALWAYS_INLINE void ForWindows(const Neighbours& rows, std::size_t length,
                                      std::uint8_t* __restrict out, Rule rule) {
    for (std::size_t i = 0; i < length; ++i)
        out[i] = static_cast<std::uint8_t>(rule(rows.above + i, rows.here + i, rows.below + i));
}

/// Sixteen times the window weighted 1 2 1, 2 4 2, 1 2 1.
TESSARA_ALWAYS_INLINE int SoftSum(const std::uint8_t* above, const std::uint8_t* here,
                                  const std::uint8_t* below) {
    const int corners = above[-4] + above[4] + below[-4] + below[4];
    const int sides = above[0] + below[0] + here[-4] + here[4];
    return corners + 2 * sides + 4 * here[0];
}

TESSARA_MULTIVERSION void BlurRow(const Neighbours& rows, std::size_t length, std::uint8_t* out) {
    ForWindows(rows, length, out, [](const auto* above, const auto* here, const auto* below) {
        const auto sum = static_cast<std::uint16_t>(above[-4] + above[0] + above[4] + here[-4] + here[0] +
                                                    here[4] + below[-4] + below[0] + below[4] + 4);
        return (static_cast<std::uint32_t>(sum) * 7282u) >> 16;  // a ninth
    });
}

TESSARA_MULTIVERSION void SoftenRow(const Neighbours& rows, std::size_t length, std::uint8_t* out) {
    ForWindows(rows, length, out, [](const auto* above, const auto* here, const auto* below) {
        return static_cast<std::uint16_t>(SoftSum(above, here, below) + 16 * here[0] + 16) >> 5;
    });
}

TESSARA_MULTIVERSION void SharpenRow(const Neighbours& rows, std::size_t length, std::uint8_t* out) {
    ForWindows(rows, length, out, [](const auto* above, const auto* here, const auto* below) {
        const auto sum = static_cast<std::int16_t>(32 * here[0] - SoftSum(above, here, below) + 8);
        return ToByte(static_cast<std::int16_t>(sum >> 4));
    });
}

/// The soft window counts as far as the edge is hard and slanted: on an upright or level edge one of the two
/// gradients is nothing.
TESSARA_MULTIVERSION void AntiAliasRow(const Neighbours& rows, std::size_t length, std::uint8_t* out) {
    constexpr float kHard = 160;  // gradient in levels (a step of one pixel has four times its height)
    constexpr float kSoft = 60;
    ForWindows(rows, length, out, [](const auto* above, const auto* here, const auto* below) {
        const int right = above[4] + 2 * here[4] + below[4];
        const int left = above[-4] + 2 * here[-4] + below[-4];
        const int up = above[-4] + 2 * above[0] + above[4];
        const int down = below[-4] + 2 * below[0] + below[4];
        const auto x = static_cast<float>(right - left);
        const auto y = static_cast<float>(down - up);
        const float square = x * x + y * y;
        const float product = x * y;
        const float slant = 2 * (product < 0 ? -product : product) / (square + 1);
        float hardness = (square - kSoft * kSoft) * (1 / (kHard * kHard - kSoft * kSoft));
        hardness = hardness < 0 ? 0.0f : hardness;
        hardness = hardness > 1 ? 1.0f : hardness;
        const auto middle = static_cast<float>(here[0]);
        const float soft = static_cast<float>(SoftSum(above, here, below)) * (1.0f / 16);
        return static_cast<int>(middle + (soft - middle) * slant * hardness + 0.5f);
    });
}

/// sums[i] += added[i] - dropped[i]
TESSARA_MULTIVERSION void MoveColumnSums(const std::uint8_t* added, const std::uint8_t* dropped,
                                         std::size_t length, std::uint32_t* __restrict sums) {
    for (std::size_t i = 0; i < length; ++i)
        sums[i] += static_cast<std::uint32_t>(added[i]) - static_cast<std::uint32_t>(dropped[i]);
}

TESSARA_MULTIVERSION void RaiseDetail(const std::uint8_t* source, std::size_t length,
                                      std::uint8_t* __restrict mean) {
    for (std::size_t i = 0; i < length; ++i)
        mean[i] = static_cast<std::uint8_t>(ToByte(128 + source[i] - mean[i]));
}

/// Means along a row of column sums, four channels side by side.
class RowMeans {
  public:
    RowMeans(int width, int radius)
        : width_(width),
          radius_(radius),
          factor_(1.0f / static_cast<float>((2 * radius + 1) * (2 * radius + 1))) {}

    void Write(const std::uint32_t* columns, std::span<Pixel> row) const {
        typedef std::uint32_t Sums __attribute__((vector_size(16)));
        typedef float Means __attribute__((vector_size(16)));
        const auto column = [&](int x) {
            Sums sums;
            std::memcpy(&sums, columns + 4 * std::clamp(x, 0, width_ - 1), sizeof sums);
            return sums;
        };
        Sums sum = {};
        for (int x = -radius_ - 1; x < radius_; ++x) sum += column(x);
        for (int x = 0; x < width_; ++x) {
            sum += column(x + radius_) - column(x - radius_ - 1);
            const Means mean = __builtin_convertvector(sum, Means) * factor_ + 0.5f;
            row[static_cast<std::size_t>(x)] = {
                static_cast<std::uint8_t>(mean[0]), static_cast<std::uint8_t>(mean[1]),
                static_cast<std::uint8_t>(mean[2]), static_cast<std::uint8_t>(mean[3])};
        }
    }

  private:
    int width_;
    int radius_;
    float factor_;
};

/// Calls `finish(y, row)` for each row of means.
template <typename Finish>
Result<Picture> BoxFilter(const Picture& picture, int radius, const EffectRun& run, const Finish& finish) {
    TRY_ASSIGN(Picture target, CreateLike(picture, picture.Width(), picture.Height()));
    const std::span<Pixel> pixels = target.MutablePixels();
    const int height = picture.Height();
    const auto width = static_cast<std::size_t>(picture.Width());
    const auto bytes = [&](int y) {
        return reinterpret_cast<const std::uint8_t*>(picture.Row(std::clamp(y, 0, height - 1)).data());
    };
    const RowMeans means(picture.Width(), radius);
    // A band begins with the sums of a whole window, so it should be several windows high.
    const int bandRows = std::max(RowsPerThread(picture.Width()), 4 * radius);
    ParallelRows(height, run.threads, bandRows, [&](int begin, int end) {
        const std::vector<std::uint8_t> nothing(4 * width);
        std::vector<std::uint32_t> sums(4 * width);
        for (int y = begin - radius - 1; y < begin + radius; ++y)
            MoveColumnSums(bytes(y), nothing.data(), sums.size(), sums.data());
        for (int y = begin; y < end; ++y) {
            MoveColumnSums(bytes(y + radius), bytes(y - radius - 1), sums.size(), sums.data());
            const auto row = pixels.subspan(static_cast<std::size_t>(y) * width, width);
            means.Write(sums.data(), row);
            finish(y, row);
            KeepAlpha(bytes(y), row);
        }
    });
    return target;
}

}  // namespace

Picture Blur(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, BlurRow);
}
Picture Soften(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, SoftenRow);
}
Picture Sharpen(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, SharpenRow);
}
Picture AntiAlias(Picture picture, const EffectRun& run) {
    return ChangeByNeighbours(std::move(picture), run, AntiAliasRow);
}

Result<Picture> BoxBlur(const Picture& picture, int radius, const EffectRun& run) {
    // The sums of a window fit into 32 bits up to here.
    return BoxFilter(picture, std::clamp(radius, 0, 1000), run, [](int, std::span<Pixel>) {});
}

Result<Picture> HighPass(const Picture& picture, const EffectRun& run) {
    const int radius = std::clamp(std::min(picture.Width(), picture.Height()) / 40, 2, 1000);
    return BoxFilter(picture, radius, run, [&](int y, std::span<Pixel> row) {
        RaiseDetail(reinterpret_cast<const std::uint8_t*>(picture.Row(y).data()), 4 * row.size(),
                    BytesOf(row));
    });
}

}  // namespace tessara::effects
