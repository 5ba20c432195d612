#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "core/rastx/Picture.h"

namespace tessara::effects {

/// The new value of each value.
using ByteTable = std::array<std::uint8_t, 256>;

/// Gives every channel but alpha its new value.
void LookUpColors(const ByteTable& table, std::span<Pixel> row);

}  // namespace tessara::effects
