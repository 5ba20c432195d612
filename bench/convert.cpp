#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "bench/PhotoLike.h"
#include "core/ByteSink.h"
#include "core/rastx/Codec.h"

/// Writing and reading a 24-megapixel picture in memory, for every format that is written.
namespace tessara {
namespace {

constexpr int kWidth = 6000;
constexpr int kHeight = 4000;

ByteVector Encoded(const Codec& codec, const Picture& picture) {
    MemorySink sink;
    if (!codec.encode(picture, {}, sink)) std::abort();
    return sink.TakeBytes();
}

void Write(benchmark::State& state, const Codec& codec) {
    static const Picture picture = bench::PhotoLike(kWidth, kHeight);
    std::size_t size = 0;
    for (auto _ : state) size = Encoded(codec, picture).size();
    state.counters["MB"] = static_cast<double>(size) / 1e6;
}

void Read(benchmark::State& state, const Codec& codec) {
    const ByteVector file = Encoded(codec, bench::PhotoLike(kWidth, kHeight));
    for (auto _ : state) benchmark::DoNotOptimize(codec.decode(file, {}));
}

}  // namespace
}  // namespace tessara

int main(int count, char** arguments) {
    for (const tessara::ExportFormat& format : tessara::ExportFormatTable()) {
        const tessara::Codec& codec = *format.codec;
        const std::string name(codec.name);
        benchmark::RegisterBenchmark(("Write/" + name).c_str(), tessara::Write, codec)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("Read/" + name).c_str(), tessara::Read, codec)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
