#include "core/rastx/codecs/PngFilter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

namespace tessara::png {
namespace {

PaddedRow Noise(std::size_t size, unsigned seed) {
    std::minstd_rand random(seed);
    PaddedRow row(size);
    for (std::uint8_t& byte : row.Span()) byte = static_cast<std::uint8_t>(random() >> 8);
    return row;
}

/// The prediction as ISO/IEC 15948, 9.2 and 9.4 define it.
int Predict(Filter filter, int left, int up, int corner) {
    switch (filter) {
        case Filter::None:
            return 0;
        case Filter::Sub:
            return left;
        case Filter::Up:
            return up;
        case Filter::Average:
            return (left + up) / 2;
        case Filter::Paeth:
            break;
    }
    const int estimate = left + up - corner;
    const int toLeft = std::abs(estimate - left), toUp = std::abs(estimate - up);
    const int toCorner = std::abs(estimate - corner);
    if (toLeft <= toUp && toLeft <= toCorner) return left;
    return toUp <= toCorner ? up : corner;
}

TEST(PngFilter, RowsAreRestoredAsTheStandardSays) {
    for (const std::size_t pixelSize : {1u, 2u, 3u, 4u, 6u, 8u})
        for (std::uint8_t filter = 0; filter < kFilterCount; ++filter)
            for (const std::size_t pixels : {1u, 2u, 3u, 11u, 100u}) {
                const std::size_t size = pixels * pixelSize;
                const PaddedRow stored = Noise(size, 1), prior = Noise(size, 2);
                PaddedRow row(size);
                ASSERT_TRUE(Unfilter(filter, stored.View(), prior, pixelSize, row));
                for (std::size_t i = 0; i < size; ++i) {
                    const bool first = i < pixelSize;
                    const int predicted =
                        Predict(static_cast<Filter>(filter), first ? 0 : row.View()[i - pixelSize],
                                prior.View()[i], first ? 0 : prior.View()[i - pixelSize]);
                    ASSERT_EQ(row.View()[i], (stored.View()[i] + predicted) & 255)
                        << "filter " << int{filter} << ", " << pixelSize << " bytes, at " << i;
                }
            }
    PaddedRow row(3);
    EXPECT_FALSE(Unfilter(5, row.View(), Noise(3, 1), 3, row)) << "there is no sixth filter";
}

TEST(PngFilter, ChoosesTheFilterThatLeavesLeast) {
    constexpr std::size_t kSize = 300;
    PaddedRow gradient(kSize), flat(kSize), zero(kSize);
    for (std::size_t i = 0; i < kSize; ++i) gradient.Span()[i] = static_cast<std::uint8_t>(i);
    for (std::uint8_t& byte : flat.Span()) byte = 100;
    const PaddedRow noise = Noise(kSize, 3);
    const struct {
        const char* name;
        const PaddedRow &row, &prior;
        Filter filter;
    } cases[] = {
        {"all zero", zero, noise, Filter::None},
        {"a gradient under noise", gradient, noise, Filter::Sub},
        {"noise that repeats", noise, noise, Filter::Up},
        {"flat under a gradient", flat, gradient, Filter::Sub},
    };
    for (const auto& item : cases) {
        RowFilter filter(kSize);
        std::vector<std::uint8_t> stored(kSize + 1);
        filter.Store(item.row, item.prior, 3, stored);
        EXPECT_EQ(stored[0], static_cast<std::uint8_t>(item.filter)) << item.name;
        PaddedRow restored(kSize);
        ASSERT_TRUE(Unfilter(stored[0], Bytes(stored).subspan(1), item.prior, 3, restored));
        EXPECT_TRUE(std::ranges::equal(restored.View(), item.row.View())) << item.name;
    }
}

}  // namespace
}  // namespace tessara::png
