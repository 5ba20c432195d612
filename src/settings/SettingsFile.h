#pragma once

#include <string>

#include "core/Result.h"
#include "settings/ConvertOptions.h"

namespace tessara {

/// Its name among the private files.
inline constexpr char kSettingsFileName[] = "ts40.cfg";

/// The settings file: two records at fixed places, little-endian, without gaps; 808 bytes once created.
/// Whatever else the file holds stays as it is when a record is written.
class SettingsFile {
  public:
    explicit SettingsFile(std::string path) : path_(std::move(path)) {}

    /// Whether the file holds anything, readable or not: a missing or empty one means a first run.
    bool HasContents() const;
    /// Reads the first record as far as the file goes; fields behind its end stay as they are.
    Result<void> Read(ConvertOptions& options) const;
    Result<void> Write(const ConvertOptions& options) const;
    /// The same for the second record. A delay of 0 with automatic slides becomes the usual one.
    Result<void> Read(SlideOptions& options) const;
    Result<void> Write(const SlideOptions& options) const;

    const std::string& Path() const { return path_; }

  private:
    std::string path_;
};

}  // namespace tessara
