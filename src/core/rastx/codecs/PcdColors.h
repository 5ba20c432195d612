#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "core/Bytes.h"
#include "core/rastx/Picture.h"

/// The colours of a Photo CD picture.
namespace tessara::pcd {

inline constexpr int kBrightest = 350;
using ToneTable = std::array<std::uint8_t, kBrightest + 1>;

/// Tones of a scan from film, and of a picture whose white is the largest luma.
extern const ToneTable kFilmToneTable;
extern const ToneTable kFullRangeToneTable;

/// Luma and chroma, a sample each for every pixel, to colours.
void ComponentsToPixels(Bytes luma, Bytes blue, Bytes red, const ToneTable& tones, std::span<Pixel> pixels);

}  // namespace tessara::pcd
