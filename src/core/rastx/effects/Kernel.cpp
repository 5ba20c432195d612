#include "core/rastx/effects/Kernel.h"

#include <new>

namespace tessara::effects {

Result<Picture> CreateLike(const Picture& picture, int width, int height) {
    TRY_ASSIGN(Picture target,
               Picture::Create(width, height, picture.HasAlpha() ? Alpha::Straight : Alpha::None));
    target.SetMeta(picture.Meta());
    return target;
}

Canvas::Canvas(Picture picture) {
    if (picture.Shared()) {
        auto target = CreateLike(picture, picture.Width(), picture.Height());
        // As with any picture that is written to.
        if (!target) throw std::bad_alloc();
        targetPicture_ = std::move(target).Value();
        sourcePicture_ = std::move(picture);
        source_ = sourcePicture_.Pixels();
    } else {
        targetPicture_ = std::move(picture);
        source_ = targetPicture_.Pixels();
    }
    target_ = targetPicture_.MutablePixels();
}

}  // namespace tessara::effects
