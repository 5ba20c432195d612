#pragma once

#include <cstdint>

/// Entries of a TIFF directory, which EXIF blocks have too: tag, type, count, value (TIFF 6.0).
namespace tessara::tiff {

enum Tag : std::uint16_t {
    kImageWidth = 256,
    kImageLength = 257,
    kBitsPerSample = 258,
    kCompression = 259,
    kPhotometric = 262,
    kStripOffsets = 273,
    kOrientation = 274,
    kSamplesPerPixel = 277,
    kRowsPerStrip = 278,
    kStripByteCounts = 279,
    kXResolution = 282,
    kYResolution = 283,
    kPlanarConfiguration = 284,
    kResolutionUnit = 296,
    kPredictor = 317,
    kExtraSamples = 338,
    kThumbnailOffset = 513,
    kThumbnailLength = 514,
};
enum Type : std::uint16_t { kShort = 3, kLong = 4, kRational = 5 };
constexpr std::size_t kEntrySize = 12;

}  // namespace tessara::tiff
