#include "core/rastx/LazyPicture.h"

#include <algorithm>
#include <utility>

#include "core/rastx/effects/Resample.h"

namespace tessara {

const Picture& LazyPicture::Whole() const {
    if (!PutOff()) return picture_;
    auto whole = Resample(picture_, width_, height_, ResampleQuality::Fast, threads_);
    if (whole) picture_ = std::move(whole).Value();
    width_ = picture_.Width();
    height_ = picture_.Height();
    return picture_;
}

Picture LazyPicture::TakeWhole() {
    Whole();
    return std::exchange(*this, {}).picture_;
}

Result<Picture> LazyPicture::Part(int x, int y, int width, int height) const {
    if (!PutOff()) return picture_.Cropped(x, y, width, height);
    return ResamplePart(picture_, width_, height_, {x, y, width, height}, ResampleQuality::Fast, threads_);
}

Result<void> LazyPicture::PutOffResample(int width, int height, int threads) {
    if (Empty()) return BadArgument("there is no picture to resample");
    width = std::max(1, width);
    height = std::max(1, height);
    TRY(Limits().Check(width, height));
    Whole();  // what was put off before is the original of this
    width_ = width;
    height_ = height;
    threads_ = threads;
    return {};
}

}  // namespace tessara
