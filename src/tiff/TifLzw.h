#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "core/Bytes.h"

namespace tessara {

/// LZW as TIFF 6.0, section 13, has it: codes of 9 to 12 bits, the highest bit first.
/// Unpacks until the target is full, the data ends or makes no sense; returns the number of bytes unpacked.
std::size_t UnpackTifLzw(Bytes packed, std::span<std::uint8_t> target);

/// Whether the codes stand the other way round, as the first writers did it. These are not read here.
bool IsOldTifLzw(Bytes packed);

}  // namespace tessara
