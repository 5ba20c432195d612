#pragma once

#include "core/rastx/effects/Kernel.h"

/// Operations that change each pixel by itself. All leave alpha alone.
namespace tessara::effects {

Picture Negative(Picture picture, const EffectRun& run = {});
/// -100 to 100 shift the channels by up to half of their range.
Picture Brightness(Picture picture, int percent, const EffectRun& run = {});
/// Spreads the channels around mid grey: -100 leaves only that, 100 is three times the contrast.
Picture Contrast(Picture picture, int percent, const EffectRun& run = {});
/// 1 is the identity, above it the middle tones become brighter.
Picture Gamma(Picture picture, float gamma, const EffectRun& run = {});
/// Each from -250 to 250: half a turn of the hue circle either way; saturation and luminance from none to
/// double.
Picture Colorize(Picture picture, int hue, int saturation, int luminance, const EffectRun& run = {});
/// Shifts each channel by its amount, -250 to 250.
Picture ColorBalance(Picture picture, int red, int green, int blue, const EffectRun& run = {});
Picture GrayScale(Picture picture, const EffectRun& run = {});
Picture SwapRedBlue(Picture picture, const EffectRun& run = {});
Picture SwapRedGreen(Picture picture, const EffectRun& run = {});
Picture SwapGreenBlue(Picture picture, const EffectRun& run = {});
/// Keeps the upper 1 to 8 bits of each channel, spread over the whole range.
Picture Posterize(Picture picture, int bits, const EffectRun& run = {});
/// Inverts the values above the threshold.
Picture Solarize(Picture picture, int threshold, const EffectRun& run = {});

}  // namespace tessara::effects
