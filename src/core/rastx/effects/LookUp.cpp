#include "core/rastx/effects/LookUp.h"

#include <cstddef>

// Compilers do not turn look-ups into the instructions that do many at once, so those are named here. Each
// routine below changes as many whole blocks as there are and returns the number of pixels.
#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define TESSARA_X86_LOOK_UPS 1
#endif

namespace tessara::effects {
namespace {

#ifdef TESSARA_X86_LOOK_UPS

constexpr std::uint32_t kAlpha = 0xff000000;

/// One instruction looks up in 128 values: one for the lower half, one for the upper.
__attribute__((target("avx512bw,avx512vbmi"))) std::size_t LookUpBy128(const ByteTable& table, Pixel* row,
                                                                       std::size_t count) {
    constexpr std::size_t kPixels = 16;
    const std::uint8_t* values = table.data();
    const __m512i first = _mm512_loadu_si512(values);
    const __m512i second = _mm512_loadu_si512(values + 64);
    const __m512i third = _mm512_loadu_si512(values + 128);
    const __m512i fourth = _mm512_loadu_si512(values + 192);
    const __mmask64 alpha = _mm512_movepi8_mask(_mm512_set1_epi32(static_cast<int>(kAlpha)));
    std::size_t i = 0;
    for (; i + kPixels <= count; i += kPixels) {
        const __m512i before = _mm512_loadu_si512(row + i);
        const __m512i lower = _mm512_permutex2var_epi8(first, before, second);
        const __m512i upper = _mm512_permutex2var_epi8(third, before, fourth);
        const __m512i found = _mm512_mask_mov_epi8(lower, _mm512_movepi8_mask(before), upper);
        _mm512_storeu_si512(row + i, _mm512_mask_mov_epi8(found, alpha, before));
    }
    return i;
}

/// One instruction looks up in 16 values by the lower bits of the index, and gives 0 where its highest is
/// set. So each half of the table is walked down in steps of 16: as long as an index is not below 0, another
/// piece counts; each holds the difference, by exclusive or, to the one before.
__attribute__((target("avx2"))) std::size_t LookUpBy16(const ByteTable& table, Pixel* row,
                                                       std::size_t count) {
    constexpr std::size_t kPixels = 8;
    constexpr int kPieces = 8;  // of each half
    __m256i lowerPieces[kPieces], upperPieces[kPieces];
    for (int k = 0; k < kPieces; ++k) {
        const auto piece = [&](int index) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(table.data() + 16 * index));
        };
        const __m128i nothing = _mm_setzero_si128();
        lowerPieces[k] = _mm256_broadcastsi128_si256(_mm_xor_si128(piece(k), k > 0 ? piece(k - 1) : nothing));
        upperPieces[k] = _mm256_broadcastsi128_si256(
            _mm_xor_si128(piece(kPieces + k), k > 0 ? piece(kPieces + k - 1) : nothing));
    }
    const __m256i step = _mm256_set1_epi8(16);
    const __m256i half = _mm256_set1_epi8(-128);
    const __m256i alpha = _mm256_set1_epi32(static_cast<int>(kAlpha));
    std::size_t i = 0;
    for (; i + kPixels <= count; i += kPixels) {
        auto* block = reinterpret_cast<__m256i*>(row + i);
        const __m256i before = _mm256_loadu_si256(block);
        __m256i lowerIndex = before;
        __m256i upperIndex = _mm256_xor_si256(before, half);
        __m256i lower = _mm256_shuffle_epi8(lowerPieces[0], lowerIndex);
        __m256i upper = _mm256_shuffle_epi8(upperPieces[0], upperIndex);
        for (int k = 1; k < kPieces; ++k) {
            lowerIndex = _mm256_sub_epi8(lowerIndex, step);
            upperIndex = _mm256_sub_epi8(upperIndex, step);
            lower = _mm256_xor_si256(lower, _mm256_shuffle_epi8(lowerPieces[k], lowerIndex));
            upper = _mm256_xor_si256(upper, _mm256_shuffle_epi8(upperPieces[k], upperIndex));
        }
        const __m256i found = _mm256_blendv_epi8(lower, upper, before);
        _mm256_storeu_si256(block, _mm256_blendv_epi8(found, before, alpha));
    }
    return i;
}

std::size_t LookUpBlocks(const ByteTable& table, Pixel* row, std::size_t count) {
    if (__builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512bw"))
        return LookUpBy128(table, row, count);
    if (__builtin_cpu_supports("avx2")) return LookUpBy16(table, row, count);
    return 0;
}

#else

std::size_t LookUpBlocks(const ByteTable&, Pixel*, std::size_t) {
    return 0;
}

#endif

}  // namespace

void LookUpColors(const ByteTable& table, std::span<Pixel> row) {
    for (Pixel& pixel : row.subspan(LookUpBlocks(table, row.data(), row.size())))
        pixel = {table[pixel.b], table[pixel.g], table[pixel.r], pixel.a};
}

}  // namespace tessara::effects
