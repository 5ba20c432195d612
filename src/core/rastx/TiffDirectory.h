#pragma once

#include <cstdint>
#include <vector>

#include "core/ByteSink.h"
#include "core/rastx/Exif.h"
#include "core/rastx/TiffTags.h"

namespace tessara {

/// Writes the header of a file or block, where the directory's place is still to be overwritten.
Result<void> WriteTiffHeader(ByteSink& sink);

/// Gathers the entries of a directory, in any order.
class TiffDirectory {
  public:
    /// Two values make one fraction.
    void Add(tiff::Tag tag, tiff::Type type, const std::vector<std::uint32_t>& values);
    /// What is known of a picture's taking; directories of its own are written at once.
    Result<void> Add(const ExifDirectories& exif, ByteSink& sink);
    /// Writes values of more than four bytes, then the entries by their tags, and where these begin into the
    /// header.
    Result<void> WriteAsFirst(ByteSink& sink);

  private:
    void Add(const std::vector<ExifEntry>& entries);
    Result<void> AddOwn(tiff::Tag tag, const std::vector<ExifEntry>& entries, ByteSink& sink);
    Result<std::uint32_t> Write(ByteSink& sink);

    std::vector<ExifEntry> entries_;
};

/// An EXIF block of these entries; empty where there are none.
Result<ByteVector> MakeExif(const ExifDirectories& exif);

}  // namespace tessara
