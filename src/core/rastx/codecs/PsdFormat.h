#pragma once

#include <cstdint>
#include <string_view>

namespace tessara {

/// The colour model of a document, by its number in the file.
enum class PsdMode : std::uint16_t {
    Bitmap = 0,
    Grey = 1,
    Indexed = 2,
    Rgb = 3,
    Cmyk = 4,
    Multichannel = 7,
    Duotone = 8,
    Lab = 9,
};

/// How many channels the colours of a model take.
constexpr int ColorChannels(PsdMode mode) {
    switch (mode) {
        case PsdMode::Rgb:
        case PsdMode::Lab:
            return 3;
        case PsdMode::Cmyk:
            return 4;
        default:
            return 1;
    }
}

/// Four letters as the 32-bit number that stands for them in the file.
constexpr std::uint32_t PsdKey(std::string_view letters) {
    std::uint32_t key = 0;
    for (const char letter : letters) key = key << 8 | static_cast<std::uint8_t>(letter);
    return key;
}

struct PsdHeader {
    bool large = false;  ///< the PSB form: longer lengths in several places
    int channels = 0;
    std::int64_t width = 0, height = 0;
    int depth = 0;  ///< bits of a sample: 1, 8, 16 or 32 (floating point)
    PsdMode mode = PsdMode::Rgb;
};

}  // namespace tessara
