#pragma once

#include <functional>
#include <string>

#include "core/ByteSink.h"
#include "core/Bytes.h"
#include "core/LargeBuffer.h"
#include "core/Result.h"

namespace tessara {

/// A file's bytes in memory. They are read, not mapped: a file that shrinks while it is decoded does no harm.
class FileBytes {
  public:
    static Result<FileBytes> Read(const std::string& path);
    Bytes View() const { return {buffer_.Data(), size_}; }

  private:
    LargeBuffer buffer_;
    std::size_t size_ = 0;
};

/// Whether `path` names an existing file that is no folder.
bool IsFile(const std::string& path);
/// The same, and no pipe or device either.
bool IsNormalFile(const std::string& path);

/// Writes a file through `write` so that `path` holds either the whole new file or what it held before. A
/// path that is a symbolic link is written through, and an existing file keeps its permissions; one that is
/// protected against writing is a failure, and so is a `write` that finds no memory. Devices and pipes are
/// written to directly.
Result<void> ReplaceFile(const std::string& path, const std::function<Result<void>(ByteSink&)>& write);

}  // namespace tessara
