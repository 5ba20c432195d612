#pragma once

namespace tessara {

// Lengths of the design are twips. It was drawn for a screen of 96 dots per inch.
inline constexpr int kTwipsPerInch = 1440;
inline constexpr int kTwipsPerPixel = 15;

}  // namespace tessara
