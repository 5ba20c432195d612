#include "desktop/PictureImage.h"

#include <cstring>
#include <memory>

namespace tessara {
namespace {

QImage ImageAt(const Picture& picture, QImageCleanupFunction release, void* keeper) {
    if (picture.Empty()) return {};
    // Without alpha its bytes are 255 all the same, as Format_RGB32 wants them.
    const auto format = picture.HasAlpha() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    return QImage(reinterpret_cast<const uchar*>(picture.Pixels().data()), picture.Width(), picture.Height(),
                  qsizetype{picture.Width()} * qsizetype{sizeof(Pixel)}, format, release, keeper);
}

}  // namespace

QImage ImageOn(const Picture& picture) {
    return ImageAt(picture, nullptr, nullptr);
}

QImage SharedImage(const Picture& picture) {
    auto keeper = std::make_unique<Picture>(picture);
    const auto release = [](void* kept) { delete static_cast<Picture*>(kept); };
    QImage image = ImageAt(*keeper, release, keeper.get());
    if (!image.isNull()) static_cast<void>(keeper.release());
    return image;
}

Result<Picture> PictureOf(const QImage& image) {
    const bool hasAlpha = image.hasAlphaChannel();
    TRY_ASSIGN(Picture picture,
               Picture::Create(image.width(), image.height(), hasAlpha ? Alpha::Straight : Alpha::None));
    const QImage pixels = image.convertToFormat(hasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    if (pixels.isNull()) return TooBig("no memory for the picture");
    const std::span<Pixel> target = picture.MutablePixels();
    const auto rowBytes = static_cast<std::size_t>(picture.Width()) * sizeof(Pixel);
    for (int y = 0; y < picture.Height(); ++y)
        std::memcpy(&target[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.Width())],
                    pixels.constScanLine(y), rowBytes);
    picture.DropUnusedAlpha();
    return picture;
}

}  // namespace tessara
