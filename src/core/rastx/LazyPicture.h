#pragma once

#include <utility>

#include "core/rastx/Picture.h"

namespace tessara {

/// A picture whose resampling may be put off. Of a zoomed picture the screen shows a part, and only that part
/// is computed then: at 300 % the whole would have nine times the pixels of the original.
class LazyPicture {
  public:
    LazyPicture() = default;
    LazyPicture(Picture picture)
        : picture_(std::move(picture)), width_(picture_.Width()), height_(picture_.Height()) {}

    int Width() const { return width_; }
    int Height() const { return height_; }
    bool Empty() const { return width_ == 0; }

    /// The whole picture. Computes what was put off, once; without memory for it the resampling is undone.
    const Picture& Whole() const;
    /// The same, leaving nothing here.
    Picture TakeWhole();
    /// The part from (x, y), which must lie inside.
    Result<Picture> Part(int x, int y, int width, int height) const;

    /// Fast resampling, on up to `threads` threads when it comes to it. Fails where tessara::Resample does.
    Result<void> PutOffResample(int width, int height, int threads);
    /// Whether the picture is being kept at another size than its own.
    bool PutOff() const { return width_ != picture_.Width() || height_ != picture_.Height(); }

  private:
    mutable Picture picture_;
    mutable int width_ = 0;
    mutable int height_ = 0;
    int threads_ = 1;
};

}  // namespace tessara
