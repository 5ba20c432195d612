#pragma once

#include <optional>

#include "core/rastx/Codec.h"

namespace tessara {

/// Enhanced metafiles. Reading draws them with the metafile module.
bool RecogniseEmf(Bytes file);
Result<Picture> DecodeEmf(Bytes file, const DecodeOptions& options);
Result<void> EncodeEmf(const Picture& picture, const EncodeOptions& options, ByteSink& sink);

struct EmfBox {
    std::int32_t left = 0, top = 0, right = 0, bottom = 0;
};

struct EmfHeader {
    EmfBox bounds;  ///< of what is drawn, in pixels of the reference device, all edges inside
    EmfBox frame;   ///< of the picture, in hundredths of a millimetre
    double pixelsPerMillimetreX = 0, pixelsPerMillimetreY = 0;  ///< of the reference device
};

Result<EmfHeader> ReadEmfHeader(Bytes file);

/// Types of records.
namespace emf {
inline constexpr std::uint32_t kHeader = 1, kEnd = 14, kSetStretchMode = 21, kComment = 70, kStretchDib = 81;
}  // namespace emf

struct EmfRecord {
    std::uint32_t type = 0;
    Bytes bytes;  ///< the whole record: offsets in it count from its start
};

/// Walks through the records of a file, the header first; the end record is not given out.
class EmfRecords {
  public:
    explicit EmfRecords(Bytes file) : rest_(file) {}
    std::optional<EmfRecord> Next();
    /// Whether the walk came to the end record and not to the end of a broken file.
    bool Complete() const { return complete_; }

  private:
    Bytes rest_;
    bool complete_ = false;
};

}  // namespace tessara
