// CPU time of the effects that the program computes itself, in milliseconds per megapixel on one thread.

#include <benchmark/benchmark.h>

#include <string>

#include "bench/PhotoLike.h"
#include "edit/OwnEffects.h"

namespace {

using namespace tessara;

constexpr int kWidth = 6000;
constexpr int kHeight = 4000;

void Run(benchmark::State& state, int code) {
    static const Picture source = bench::PhotoLike(kWidth, kHeight);
    Picture target = source;
    for (auto _ : state) OwnEffects(source, target, {}).ApplyOwnEffect(code, 0.75, [] {});
    state.counters["ms/MP"] = benchmark::Counter(
        kWidth * kHeight / 1e9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace

int main(int count, char** arguments) {
    for (const int code : {19, 20, 21, 22, 23, 24, 25, 27, 28, 29, 30, 114})
        benchmark::RegisterBenchmark(("OwnEffect/" + std::to_string(code)).c_str(), Run, code)
            ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
