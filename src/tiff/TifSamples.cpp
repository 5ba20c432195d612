#include "tiff/TifSamples.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstring>

#include "core/Multiversion.h"

namespace tessara {
namespace {

/// A floating point number of fewer bits than a float: sign, exponent, fraction.
double SmallFloat(std::uint32_t bits, int exponentBits, int fractionBits) {
    const std::uint32_t fraction = bits & ((1u << fractionBits) - 1);
    const int largest = (1 << exponentBits) - 1;
    const int exponent = static_cast<int>(bits >> fractionBits) & largest;
    const int bias = largest / 2;
    const double sign = (bits >> (fractionBits + exponentBits)) & 1 ? -1 : 1;
    if (exponent == largest) return fraction ? NAN : sign * INFINITY;
    if (exponent == 0) return sign * std::ldexp(fraction, 1 - bias - fractionBits);
    return sign * std::ldexp(fraction + (1u << fractionBits), exponent - bias - fractionBits);
}

/// A number of whole bytes in this machine's order.
template <unsigned bytes>
std::uint64_t Load(const std::uint8_t* in, bool swapped) {
    const bool bigEndian = swapped == (std::endian::native == std::endian::little);
    std::uint64_t value = 0;
    for (unsigned i = 0; i < bytes; ++i)
        value |= std::uint64_t{in[i]} << (8 * (bigEndian ? bytes - 1 - i : i));
    return value;
}

template <unsigned bytes, typename Convert>
void UnpackWhole(Bytes packed, bool swapped, std::span<std::uint16_t> samples, Convert convert) {
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = convert(Load<bytes>(packed.data() + i * bytes, swapped));
}

TESSARA_MULTIVERSION void Unpack16(const std::uint8_t* packed, bool swapped, std::uint16_t* samples,
                                   std::size_t count) {
    std::memcpy(samples, packed, count * 2);
    if (!swapped) return;
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<std::uint16_t>(samples[i] << 8 | samples[i] >> 8);
}

/// Samples that need not end where a byte ends, the leftmost in the highest bits.
void UnpackSmall(Bytes packed, int bits, bool scale, std::span<std::uint16_t> samples) {
    const std::uint32_t maximum = (std::uint32_t{1} << bits) - 1;
    std::uint64_t pending = 0;
    int held = 0;
    std::size_t next = 0;
    for (std::uint16_t& sample : samples) {
        for (; held < bits; held += 8) pending = pending << 8 | packed[next++];
        held -= bits;
        const auto value = static_cast<std::uint32_t>(pending >> held) & maximum;
        sample = static_cast<std::uint16_t>(scale ? (value * 65535u + maximum / 2) / maximum : value);
    }
}

void UnpackIntegers(Bytes packed, TifSampleType type, std::span<std::uint16_t> samples) {
    // Two's complement with the highest bit turned over runs from the smallest to the largest number.
    const std::uint64_t turned = type.kind == TifSampleKind::Signed ? std::uint64_t{1} << (type.bits - 1) : 0;
    switch (type.bits) {
        case 8: {
            const auto factor = type.kind == TifSampleKind::Index ? 1u : 257u;
            for (std::size_t i = 0; i < samples.size(); ++i)
                samples[i] = static_cast<std::uint16_t>((packed[i] ^ turned) * factor);
            return;
        }
        case 16:
            Unpack16(packed.data(), type.swapped, samples.data(), samples.size());
            if (turned)
                for (std::uint16_t& sample : samples) sample = static_cast<std::uint16_t>(sample ^ turned);
            return;
        case 24:
            return UnpackWhole<3>(packed, type.swapped, samples, [turned](std::uint64_t value) {
                return static_cast<std::uint16_t>(((value ^ turned) * 65535 + 0x7fffff) / 0xffffff);
            });
        case 32:
            return UnpackWhole<4>(packed, type.swapped, samples, [turned](std::uint64_t value) {
                return static_cast<std::uint16_t>(((value ^ turned) + 32768) / 65537);
            });
        case 64:
            return UnpackWhole<8>(packed, type.swapped, samples, [turned](std::uint64_t value) {
                return static_cast<std::uint16_t>((((value ^ turned) >> 32) + 32768) / 65537);
            });
        default:
            UnpackSmall(packed, type.bits, type.kind != TifSampleKind::Index, samples);
    }
}

void UnpackFloats(Bytes packed, TifSampleType type, std::span<std::uint16_t> samples) {
    const double scale = 65535 / (type.high - type.low);
    const auto fromRange = [=, low = type.low](double value) {
        const double scaled = (value - low) * scale;
        // A comparison with no number is false, which makes it black.
        return scaled > 0 ? static_cast<std::uint16_t>(std::min(scaled, 65535.0) + 0.5) : std::uint16_t{0};
    };
    switch (type.bits) {
        case 16:
            return UnpackWhole<2>(packed, type.swapped, samples, [=](std::uint64_t value) {
                return fromRange(SmallFloat(static_cast<std::uint32_t>(value), 5, 10));
            });
        case 24:
            return UnpackWhole<3>(packed, type.swapped, samples, [=](std::uint64_t value) {
                return fromRange(SmallFloat(static_cast<std::uint32_t>(value), 7, 16));
            });
        case 32:
            return UnpackWhole<4>(packed, type.swapped, samples, [=](std::uint64_t value) {
                return fromRange(std::bit_cast<float>(static_cast<std::uint32_t>(value)));
            });
        default:
            return UnpackWhole<8>(packed, type.swapped, samples, [=](std::uint64_t value) {
                return fromRange(std::bit_cast<double>(value));
            });
    }
}

std::uint8_t Clamped(float value) {
    return static_cast<std::uint8_t>(std::clamp(value + 0.5f, 0.0f, 255.0f));
}

}  // namespace

bool CanUnpackTifSamples(TifSampleType type) {
    const int bits = type.bits;
    switch (type.kind) {
        case TifSampleKind::Index:
            return bits >= 1 && bits <= 16;
        case TifSampleKind::Unsigned:
            return (bits >= 1 && bits <= 16) || bits == 24 || bits == 32 || bits == 64;
        case TifSampleKind::Signed:
            return bits == 8 || bits == 16 || bits == 24 || bits == 32 || bits == 64;
        case TifSampleKind::Float:
            return bits == 16 || bits == 24 || bits == 32 || bits == 64;
    }
    return false;
}

void UnpackTifSamples(Bytes packed, TifSampleType type, std::span<std::uint16_t> samples) {
    assert(CanUnpackTifSamples(type));
    assert(packed.size() * 8 >= samples.size() * static_cast<std::size_t>(type.bits));
    if (type.kind == TifSampleKind::Float) return UnpackFloats(packed, type, samples);
    UnpackIntegers(packed, type, samples);
}

TifYCbCr::TifYCbCr(std::span<const float, 3> luma, std::span<const float, 6> blackWhite) {
    const auto scaled = [&](int code, std::size_t component, float range) {
        const float black = blackWhite[2 * component];
        const float width = blackWhite[2 * component + 1] - black;
        return width != 0 ? (static_cast<float>(code) - black) * range / width : 0.0f;
    };
    const float red = 2 - 2 * luma[0];
    const float blue = 2 - 2 * luma[2];
    const float green = luma[1] != 0 ? luma[1] : 1;
    for (int code = 0; code < 256; ++code) {
        const auto i = static_cast<std::size_t>(code);
        const float cb = scaled(code, 1, 127);
        const float cr = scaled(code, 2, 127);
        luma_[i] = scaled(code, 0, 255);
        redOfCr_[i] = red * cr;
        blueOfCb_[i] = blue * cb;
        greenOfCr_[i] = -luma[0] * red / green * cr;
        greenOfCb_[i] = -luma[2] * blue / green * cb;
    }
}

Pixel TifYCbCr::Convert(std::uint8_t y, std::uint8_t cb, std::uint8_t cr) const {
    const float luma = luma_[y];
    return {Clamped(luma + blueOfCb_[cb]), Clamped(luma + greenOfCb_[cb] + greenOfCr_[cr]),
            Clamped(luma + redOfCr_[cr]), 255};
}

void TifYCbCr::ConvertRow(Bytes line, std::uint32_t blockWidth, std::uint32_t blockHeight, std::uint32_t row,
                          std::span<Pixel> pixels) const {
    const std::size_t lumas = std::size_t{blockWidth} * blockHeight;
    const std::size_t rowInBlock = std::size_t{row} * blockWidth;
    for (std::size_t x = 0; x < pixels.size(); ++x) {
        const Bytes block = line.subspan(x / blockWidth * (lumas + 2), lumas + 2);
        pixels[x] = Convert(block[rowInBlock + x % blockWidth], block[lumas], block[lumas + 1]);
    }
}

}  // namespace tessara
