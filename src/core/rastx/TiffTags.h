#pragma once

#include <cstddef>
#include <cstdint>

/// Entries of a TIFF directory, which EXIF blocks have too: tag, type, count, value (TIFF 6.0).
namespace tessara::tiff {

enum Tag : std::uint16_t {
    kImageWidth = 256,
    kImageLength = 257,
    kBitsPerSample = 258,
    kCompression = 259,
    kPhotometric = 262,
    kImageDescription = 270,
    kMake = 271,
    kModel = 272,
    kStripOffsets = 273,
    kOrientation = 274,
    kSamplesPerPixel = 277,
    kRowsPerStrip = 278,
    kStripByteCounts = 279,
    kXResolution = 282,
    kYResolution = 283,
    kPlanarConfiguration = 284,
    kResolutionUnit = 296,
    kSoftware = 305,
    kDateTime = 306,
    kArtist = 315,
    kPredictor = 317,
    kExtraSamples = 338,
    kThumbnailOffset = 513,
    kThumbnailLength = 514,
    kCopyright = 33432,
    kPhotoDirectory = 34665,
    kPlaceDirectory = 34853,
    kPixelWidth = 40962,
    kPixelHeight = 40963,
};
enum Type : std::uint16_t { kShort = 3, kLong = 4, kRational = 5 };
/// Bytes of a number of each type, and how many numbers make a value; from type 1 on.
struct TypeSize {
    std::uint8_t number, numbers;
};
constexpr TypeSize kTypeSizes[] = {{1, 1}, {1, 1}, {2, 1}, {4, 1}, {4, 2}, {1, 1},
                                   {1, 1}, {2, 1}, {4, 1}, {4, 2}, {4, 1}, {8, 1}};
constexpr std::size_t kEntrySize = 12;
/// Where the header of a file or block says where its directory is.
constexpr std::uint64_t kDirectoryOffset = 4;

}  // namespace tessara::tiff
