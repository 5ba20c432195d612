#include "core/rastx/codecs/PngFilter.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "core/Multiversion.h"

namespace tessara::png {
namespace {

// --- restoring: each pixel waits for the one before it, so the channels of a pixel are what runs in parallel

using Bytes16 = std::uint8_t __attribute__((vector_size(16)));
using Lanes = std::int16_t __attribute__((vector_size(16)));  // a byte each, the upper half zero
using Octet = std::uint8_t __attribute__((vector_size(8)));

/// Reads `taken` bytes of a pixel: eight where the row goes on, which is one instruction.
template <std::size_t taken>
inline Lanes LoadPixel(const std::uint8_t* bytes) {
    Octet octet{};
    std::memcpy(&octet, bytes, taken);
    return __builtin_convertvector(octet, Lanes);
}

/// Always writes eight bytes: those behind the pixel belong to the next one or to the row's slack.
inline void StorePixel(Lanes pixel, std::uint8_t* bytes) {
    const Octet octet = __builtin_convertvector(pixel, Octet);
    std::memcpy(bytes, &octet, sizeof(octet));
}

inline Lanes AddBytes(Lanes a, Lanes b) {
    return reinterpret_cast<Lanes>(reinterpret_cast<Bytes16>(a) + reinterpret_cast<Bytes16>(b));
}
inline Lanes Absolute(Lanes value) {
    return value < 0 ? -value : value;
}
inline Lanes Smaller(Lanes a, Lanes b) {
    return a < b ? a : b;
}

struct SubState {
    Lanes left{};
    Lanes Next(Lanes stored, Lanes) { return left = AddBytes(stored, left); }
};

struct AverageState {
    Lanes left{};
    Lanes Next(Lanes stored, Lanes up) { return left = AddBytes(stored, (left + up) >> 1); }
};

struct PaethState {
    Lanes left{}, corner{};
    Lanes Next(Lanes stored, Lanes up) {
        const Lanes vertical = up - corner;
        const Lanes horizontal = left - corner;
        const Lanes fromLeft = Absolute(vertical);
        const Lanes fromUp = Absolute(horizontal);
        const Lanes fromCorner = Absolute(vertical + horizontal);
        const Lanes nearest = Smaller(fromLeft, Smaller(fromUp, fromCorner));
        const Lanes upOrCorner = fromUp == nearest ? up : corner;
        const Lanes predicted = fromLeft == nearest ? left : upOrCorner;
        corner = up;
        return left = AddBytes(stored, predicted);
    }
};

template <typename State, std::size_t size>
inline __attribute__((always_inline)) void RestorePixels(const std::uint8_t* in, const std::uint8_t* above,
                                                         std::size_t count, std::uint8_t* out) {
    State state;
    std::size_t i = 0;
    for (; i + sizeof(Octet) <= count; i += size)
        StorePixel(state.Next(LoadPixel<sizeof(Octet)>(in + i), LoadPixel<sizeof(Octet)>(above + i)),
                   out + i);
    for (; i < count; i += size)
        StorePixel(state.Next(LoadPixel<size>(in + i), LoadPixel<size>(above + i)), out + i);
}

// What photographs are made of, with the best instructions there are.
TESSARA_MULTIVERSION void RestorePaethRgb(const std::uint8_t* in, const std::uint8_t* above,
                                          std::size_t count, std::uint8_t* out) {
    RestorePixels<PaethState, 3>(in, above, count, out);
}
TESSARA_MULTIVERSION void RestorePaethRgba(const std::uint8_t* in, const std::uint8_t* above,
                                           std::size_t count, std::uint8_t* out) {
    RestorePixels<PaethState, 4>(in, above, count, out);
}

TESSARA_MULTIVERSION void RestoreUp(const std::uint8_t* in, const std::uint8_t* above, std::size_t count,
                                    std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<std::uint8_t>(in[i] + above[i]);
}

template <std::size_t size>
void Restore(Filter filter, Bytes stored, const std::uint8_t* above, std::uint8_t* out) {
    const std::uint8_t* const in = stored.data();
    const std::size_t count = stored.size();
    switch (filter) {
        case Filter::None:
            std::memcpy(out, in, count);
            break;
        case Filter::Sub:
            RestorePixels<SubState, size>(in, above, count, out);
            break;
        case Filter::Up:
            RestoreUp(in, above, count, out);
            break;
        case Filter::Average:
            RestorePixels<AverageState, size>(in, above, count, out);
            break;
        case Filter::Paeth:
            if constexpr (size == 3)
                RestorePaethRgb(in, above, count, out);
            else if constexpr (size == 4)
                RestorePaethRgba(in, above, count, out);
            else
                RestorePixels<PaethState, size>(in, above, count, out);
            break;
    }
}

// --- storing: every byte on its own, over whole rows

TESSARA_MULTIVERSION void StoreSub(const std::uint8_t* row, std::size_t count, std::ptrdiff_t size,
                                   std::uint8_t* out) {
    const std::uint8_t* left = row - size;
    for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<std::uint8_t>(row[i] - left[i]);
}

TESSARA_MULTIVERSION void StoreUp(const std::uint8_t* row, const std::uint8_t* above, std::size_t count,
                                  std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) out[i] = static_cast<std::uint8_t>(row[i] - above[i]);
}

TESSARA_MULTIVERSION void StoreAverage(const std::uint8_t* row, const std::uint8_t* above, std::size_t count,
                                       std::ptrdiff_t size, std::uint8_t* out) {
    const std::uint8_t* left = row - size;
    for (std::size_t i = 0; i < count; ++i)
        out[i] = static_cast<std::uint8_t>(row[i] - ((left[i] + above[i]) >> 1));
}

TESSARA_MULTIVERSION void StorePaeth(const std::uint8_t* row, const std::uint8_t* above, std::size_t count,
                                     std::ptrdiff_t size, std::uint8_t* out) {
    const std::uint8_t* leftOf = row - size;
    const std::uint8_t* cornerOf = above - size;
    for (std::size_t i = 0; i < count; ++i) {
        const auto left = static_cast<std::int16_t>(leftOf[i]);
        const auto up = static_cast<std::int16_t>(above[i]);
        const auto corner = static_cast<std::int16_t>(cornerOf[i]);
        const auto vertical = static_cast<std::int16_t>(up - corner);
        const auto horizontal = static_cast<std::int16_t>(left - corner);
        const auto sum = static_cast<std::int16_t>(vertical + horizontal);
        const auto fromLeft = static_cast<std::int16_t>(vertical < 0 ? -vertical : vertical);
        const auto fromUp = static_cast<std::int16_t>(horizontal < 0 ? -horizontal : horizontal);
        const auto fromCorner = static_cast<std::int16_t>(sum < 0 ? -sum : sum);
        const std::int16_t upOrCorner = fromUp <= fromCorner ? up : corner;
        const std::int16_t predicted = ((fromLeft <= fromUp) & (fromLeft <= fromCorner)) ? left : upOrCorner;
        out[i] = static_cast<std::uint8_t>(row[i] - predicted);
    }
}

/// The sum of the differences, taken as -128 to 127, without their signs.
TESSARA_MULTIVERSION std::uint64_t SumOfDifferences(const std::uint8_t* differences, std::size_t count) {
    constexpr std::size_t kBlock = 256;  // their sum fits 16 bits, which the vectoriser likes
    std::uint64_t total = 0;
    for (std::size_t start = 0; start < count; start += kBlock) {
        const std::size_t length = count - start < kBlock ? count - start : kBlock;
        std::uint16_t sum = 0;
        for (std::size_t i = 0; i < length; ++i) {
            const std::uint8_t value = differences[start + i];
            const auto negated = static_cast<std::uint8_t>(-value);
            sum = static_cast<std::uint16_t>(sum + (value < negated ? value : negated));
        }
        total += sum;
    }
    return total;
}

}  // namespace

bool Unfilter(std::uint8_t filter, Bytes stored, const PaddedRow& prior, std::size_t bytesPerPixel,
              PaddedRow& row) {
    assert(stored.size() <= row.Size() && stored.size() <= prior.Size());
    if (filter >= kFilterCount) return false;
    const auto kind = static_cast<Filter>(filter);
    switch (bytesPerPixel) {
        case 1:
            Restore<1>(kind, stored, prior.Data(), row.Data());
            return true;
        case 2:
            Restore<2>(kind, stored, prior.Data(), row.Data());
            return true;
        case 3:
            Restore<3>(kind, stored, prior.Data(), row.Data());
            return true;
        case 4:
            Restore<4>(kind, stored, prior.Data(), row.Data());
            return true;
        case 6:
            Restore<6>(kind, stored, prior.Data(), row.Data());
            return true;
        default:
            assert(bytesPerPixel == 8);
            Restore<8>(kind, stored, prior.Data(), row.Data());
            return true;
    }
}

RowFilter::RowFilter(std::size_t rowSize) {
    for (auto& row : differences_) row.resize(rowSize);
}

void RowFilter::Store(const PaddedRow& row, const PaddedRow& prior, std::size_t bytesPerPixel,
                      std::span<std::uint8_t> stored) {
    const std::size_t count = row.Size();
    const auto size = static_cast<std::ptrdiff_t>(bytesPerPixel);
    const auto target = [&](Filter filter) { return differences_[static_cast<std::size_t>(filter)].data(); };
    std::memcpy(target(Filter::None), row.Data(), count);
    StoreSub(row.Data(), count, size, target(Filter::Sub));
    StoreUp(row.Data(), prior.Data(), count, target(Filter::Up));
    StoreAverage(row.Data(), prior.Data(), count, size, target(Filter::Average));
    StorePaeth(row.Data(), prior.Data(), count, size, target(Filter::Paeth));

    std::size_t best = 0;
    std::uint64_t smallest = UINT64_MAX;
    for (std::size_t i = 0; i < kFilterCount; ++i) {
        const std::uint64_t sum = SumOfDifferences(differences_[i].data(), count);
        if (sum >= smallest) continue;
        smallest = sum;
        best = i;
    }
    stored[0] = static_cast<std::uint8_t>(best);
    std::memcpy(stored.data() + 1, differences_[best].data(), count);
}

}  // namespace tessara::png
