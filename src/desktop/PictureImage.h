#pragma once

#include <QImage>

#include "core/rastx/Picture.h"

namespace tessara {

/// The picture's own memory as an image; valid as long as the picture is neither changed nor destroyed.
QImage ImageOn(const Picture& picture);
/// The same, kept alive by sharing the picture's pixels; to be read only.
QImage SharedImage(const Picture& picture);
/// A copy of an image of any format. Fails where a picture cannot be that large.
Result<Picture> PictureOf(const QImage& image);

}  // namespace tessara
