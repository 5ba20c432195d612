#pragma once

#include <algorithm>
#include <atomic>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace tessara {

/// Threads that one operation may use; 1 keeps everything on the caller's.
inline int HardwareThreads() {
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

/// Calls `work(begin, end)` for disjoint bands that cover the rows 0 to `rows`, on up to `threads` threads,
/// and returns when all are done. The result must not depend on how the rows are divided. Bands have at least
/// `minimumRows` rows, so that small pictures pay for no thread. Memory that one of them cannot have is
/// missed here, as std::bad_alloc.
template <typename Work>
void ParallelRows(int rows, int threads, int minimumRows, const Work& work) {
    const int bands = std::clamp(rows / std::max(1, minimumRows), 1, std::max(1, threads));
    const auto edge = [=](int band) { return static_cast<int>(static_cast<long long>(rows) * band / bands); };
    std::atomic<bool> memoryEnded = false;
    const auto run = [&](int band) {
        try {
            work(edge(band), edge(band + 1));
        } catch (const std::bad_alloc&) {
            memoryEnded = true;
        }
    };
    {
        std::vector<std::jthread> helpers;
        helpers.reserve(static_cast<std::size_t>(bands - 1));
        int band = 1;
        try {
            for (; band < bands; ++band) helpers.emplace_back(run, band);
        } catch (const std::system_error&) {
            // There may be no more threads.
            for (; band < bands; ++band) run(band);
        }
        run(0);
    }
    if (memoryEnded) throw std::bad_alloc();
}

}  // namespace tessara
