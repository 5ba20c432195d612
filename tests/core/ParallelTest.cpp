#include "core/Parallel.h"

#include <gtest/gtest.h>

#include <array>

#include "tests/Support.h"

namespace tessara {
namespace {

constexpr int kBands = 4;

TEST(ParallelRows, MemoryThatAnyBandMissesIsMissedByTheCaller) {
    for (int poor = 0; poor < kBands; ++poor) {
        std::array<bool, kBands> done{};
        const auto work = [&](int begin, int) {
            if (begin == poor) throw std::bad_alloc();
            done[static_cast<std::size_t>(begin)] = true;
        };
        EXPECT_THROW(ParallelRows(kBands, kBands, 1, work), std::bad_alloc);
        EXPECT_EQ(std::ranges::count(done, true), kBands - 1) << poor;
    }
}

TEST(ParallelRows, WithoutThreadsEveryRowIsDoneAllTheSame) {
    const test::NoMoreThreads none;
    std::array<int, 100> times{};
    ParallelRows(100, kBands, 1, [&](int begin, int end) {
        for (int row = begin; row < end; ++row) ++times[static_cast<std::size_t>(row)];
    });
    EXPECT_EQ(std::ranges::count(times, 1), 100);
}

}  // namespace
}  // namespace tessara
