#include "core/rastx/effects/ResampleAxis.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace tessara::resample {
namespace {

Axis MakeAxis(int source, int target, int stride) {
    Axis axis;
    axis.stride = stride;
    axis.sourceCount = source;
    axis.windows.resize(static_cast<std::size_t>(target));
    axis.weights.assign(static_cast<std::size_t>(target) * static_cast<std::size_t>(stride), 0.0f);
    return axis;
}

/// Each position of the result is the mean of the stretch that it covers.
Axis AreaAxis(int source, int target) {
    const double scale = static_cast<double>(source) / target;
    Axis axis = MakeAxis(source, target, static_cast<int>(std::ceil(scale)) + 1);
    for (int i = 0; i < target; ++i) {
        // In whole numbers of 1 / target, so that no rounding leaves a sliver of a neighbour.
        const std::int64_t begin = std::int64_t{i} * source;
        const std::int64_t end = begin + source;
        Window& window = axis.windows[static_cast<std::size_t>(i)];
        window.first = static_cast<int>(begin / target);
        window.count = static_cast<int>((end + target - 1) / target) - window.first;
        for (int k = 0; k < window.count; ++k) {
            const std::int64_t cell = std::int64_t{window.first + k} * target;
            const std::int64_t covered = std::min(end, cell + target) - std::max(begin, cell);
            axis.weights[static_cast<std::size_t>(i * std::int64_t{axis.stride} + k)] =
                static_cast<float>(static_cast<double>(covered) / source);
        }
    }
    return axis;
}

double Sinc(double x) {
    return x == 0 ? 1.0 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
}
double Lanczos3(double x) {
    return std::abs(x) < 3 ? Sinc(x) * Sinc(x / 3) : 0.0;
}
double Linear(double x) {
    return std::max(0.0, 1 - std::abs(x));
}

/// Each position of the result is interpolated by `kernel`, which reaches `radius` to either side.
Axis InterpolationAxis(int source, int target, double (*kernel)(double), int radius) {
    Axis axis = MakeAxis(source, target, 2 * radius);
    for (int i = 0; i < target; ++i) {
        const double center = (i + 0.5) * source / target - 0.5;
        const int first = static_cast<int>(std::floor(center)) - radius + 1;
        axis.windows[static_cast<std::size_t>(i)] = {first, 2 * radius};
        double sum = 0;
        for (int k = 0; k < 2 * radius; ++k) sum += kernel(center - first - k);
        for (int k = 0; k < 2 * radius; ++k)
            axis.weights[static_cast<std::size_t>(i) * static_cast<std::size_t>(2 * radius) +
                         static_cast<std::size_t>(k)] = static_cast<float>(kernel(center - first - k) / sum);
    }
    return axis;
}

}  // namespace

Axis ChooseAxis(int source, int target, ResampleQuality quality) {
    if (target <= source) return AreaAxis(source, target);
    if (quality == ResampleQuality::Fast) return InterpolationAxis(source, target, Linear, 1);
    Axis axis = InterpolationAxis(source, target, Lanczos3, 3);
    axis.lanczos = true;
    return axis;
}

void CutOut(Axis& axis, int begin, int count) {
    const auto cut = [](auto& values, int from, int length) {
        values.erase(values.begin() + from + length, values.end());
        values.erase(values.begin(), values.begin() + from);
    };
    cut(axis.windows, begin, count);
    cut(axis.weights, begin * axis.stride, count * axis.stride);
    const Window& last = axis.windows.back();
    const int first = std::clamp(axis.windows.front().first, 0, axis.sourceCount - 1);
    const int end = std::clamp(last.first + last.count, first + 1, axis.sourceCount);
    for (Window& window : axis.windows) window.first -= first;
    axis.sourceFirst = first;
    axis.sourceCount = end - first;
}

}  // namespace tessara::resample
