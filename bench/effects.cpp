// CPU and wall time of every operation of the imaging pane on a picture of 24 megapixels, on one thread and
// on two, in milliseconds per megapixel. The pictures are worked on as a pane does it: in place where the
// effect can.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "bench/PhotoLike.h"
#include "core/rastx/effects/EffectTable.h"
#include "core/rastx/effects/Resample.h"

namespace {

using namespace tessara;
using namespace tessara::effects;

constexpr int kWidth = 6000;
constexpr int kHeight = 4000;

const Picture& Photo() {
    static const Picture photo = bench::PhotoLike(kWidth, kHeight);
    return photo;
}

/// Values at which every effect has its full work to do.
ArgumentValues BusyValues(const Effect& effect) {
    ArgumentValues values = effect.Usual();
    for (std::size_t i = 0; i < effect.arguments.size(); ++i) {
        const Argument& argument = effect.arguments[i];
        if (argument.usual == argument.lowest || argument.usual == 0)
            values[i] = std::round((argument.lowest + 3 * argument.highest) / 4);
    }
    if (effect.name == "FxRotate") values = {30, double(RGB(255, 255, 255)), 0};
    if (effect.name == "FxAddNoise") values = {30, 0, 0};
    return values;
}

void Report(benchmark::State& state, double megapixels) {
    state.counters["ms/MP"] = benchmark::Counter(
        megapixels * 1e-3, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void RunEffect(benchmark::State& state, const Effect& effect, ArgumentValues values) {
    const EffectRun run{static_cast<int>(state.range(0)), 1};
    // In memory of its own. The first round is not counted: the system hands out memory more slowly then.
    Picture picture = Photo();
    picture.MutablePixels();
    benchmark::DoNotOptimize(effect.apply(Photo(), values, run));
    for (auto step : state) {
        auto result = effect.apply(std::move(picture), values, run);
        if (!result) {
            state.SkipWithError(result.Error().message.c_str());
            return;
        }
        picture = std::move(result).Value();
        if (picture.Width() != kWidth || picture.Height() != kHeight) {
            state.PauseTiming();
            picture = Photo();
            picture.MutablePixels();
            state.ResumeTiming();
        }
    }
    Report(state, kWidth * kHeight * 1e-6);
}

void RunCopy(benchmark::State& state) {
    Picture target = Photo();
    const auto pixels = target.MutablePixels();
    for (auto step : state) {
        std::memcpy(pixels.data(), Photo().Pixels().data(), pixels.size_bytes());
        benchmark::ClobberMemory();
    }
    Report(state, kWidth * kHeight * 1e-6);
}

void RunResample(benchmark::State& state, const Picture& source, int width, int height,
                 ResampleQuality quality) {
    benchmark::DoNotOptimize(Resample(source, width, height, quality));
    for (auto step : state)
        benchmark::DoNotOptimize(Resample(source, width, height, quality, static_cast<int>(state.range(0))));
    Report(state, std::max(static_cast<double>(source.PixelCount()), double(width) * height) * 1e-6);
}

void Register(const std::string& name, const auto& body) {
    for (const int threads : {1, 2})
        benchmark::RegisterBenchmark((name + "/threads").c_str(), body)
            ->Arg(threads)
            ->MeasureProcessCPUTime()
            ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RegisterBenchmark("Copy", RunCopy)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);
    for (const Effect& effect : EffectTable())
        Register(std::string(effect.name),
                 [&effect](benchmark::State& state) { RunEffect(state, effect, BusyValues(effect)); });
    const Effect& rotate = *FindEffect("FxRotate");
    Register("FxRotate90", [&](benchmark::State& state) { RunEffect(state, rotate, {90, 0, 0}); });
    Register("ResampleShrink",
             [](benchmark::State& state) { RunResample(state, Photo(), 1897, 1265, ResampleQuality::Best); });
    Register("ResampleEnlarge", [](benchmark::State& state) {
        static const Picture half = bench::PhotoLike(kWidth / 2, kHeight / 2);
        RunResample(state, half, kWidth, kHeight, ResampleQuality::Best);
    });
    benchmark::RunSpecifiedBenchmarks();
}
