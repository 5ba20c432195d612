#pragma once

#include <algorithm>
#include <thread>
#include <vector>

namespace tessara {

/// Threads that one operation may use; 1 keeps everything on the caller's.
inline int HardwareThreads() {
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

/// Calls `work(begin, end)` for disjoint bands that cover the rows 0 to `rows`, on up to `threads` threads,
/// and returns when all are done. The result must not depend on how the rows are divided. Bands have at least
/// `minimumRows` rows, so that small pictures pay for no thread.
template <typename Work>
void ParallelRows(int rows, int threads, int minimumRows, const Work& work) {
    const int bands = std::clamp(rows / std::max(1, minimumRows), 1, std::max(1, threads));
    const auto edge = [=](int band) { return static_cast<int>(static_cast<long long>(rows) * band / bands); };
    std::vector<std::jthread> helpers;
    helpers.reserve(static_cast<std::size_t>(bands - 1));
    for (int band = 1; band < bands; ++band)
        helpers.emplace_back([&work, begin = edge(band), end = edge(band + 1)] { work(begin, end); });
    work(0, edge(1));
}

}  // namespace tessara
