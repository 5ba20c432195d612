#pragma once

#include <optional>

#include "core/rastx/Codec.h"

namespace tessara {

/// Windows metafiles, placeable or not. Reading draws them with the metafile module.
bool RecogniseWmf(Bytes file);
Result<Picture> DecodeWmf(Bytes file, const DecodeOptions& options);
Result<void> EncodeWmf(const Picture& picture, const EncodeOptions& options, ByteSink& sink);

/// The rectangle that a placeable file says its picture fills, in logical units; either axis may run
/// backwards.
struct WmfPlacement {
    int left = 0, top = 0, right = 0, bottom = 0;
    int unitsPerInch = 0;
};

struct WmfHeader {
    std::optional<WmfPlacement> placement;
    Bytes records;  ///< what follows the headers
};

Result<WmfHeader> ReadWmfHeader(Bytes file);

/// Functions of records (the low byte is the operation, the high byte the nominal count of parameter words).
namespace wmf {
inline constexpr std::uint16_t kEnd = 0x0000, kSetMapMode = 0x0103, kSetStretchMode = 0x0107,
                               kSetWindowOrigin = 0x020B, kSetWindowExtent = 0x020C, kStretchDib = 0x0F43,
                               kEscape = 0x0626;
inline constexpr std::uint32_t kCopy = 0x00CC0020;  ///< the raster operation that takes the source
}  // namespace wmf

struct WmfRecord {
    std::uint16_t function = 0;
    unsigned words = 0;  ///< of the whole record
    Bytes parameters;
};

/// Walks through the records of a file; the end record, the end of the file and a size that cannot be end it.
class WmfRecords {
  public:
    explicit WmfRecords(Bytes records) : rest_(records) {}
    std::optional<WmfRecord> Next();

  private:
    Bytes rest_;
};

}  // namespace tessara
