#pragma once

#include <QMimeData>

#include "core/rastx/Picture.h"

namespace tessara {

/// A picture as other programs see it: PNG with its alpha, a bitmap, and whatever the toolkit makes of an
/// image. Nothing is encoded before one of them asks.
class PictureMime final : public QMimeData {
    Q_OBJECT
  public:
    explicit PictureMime(Picture picture) : picture_(std::move(picture)) {}
    QStringList formats() const override;
    bool hasFormat(const QString& format) const override { return formats().contains(format); }

  protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

  private:
    Picture picture_;
};

/// Whether TakePicture has something to try.
bool OffersPicture(const QMimeData& data);
/// The picture that a program offers: as a file of one of our formats, as an image, or as the path of a file
/// that was copied.
Result<Picture> TakePicture(const QMimeData& data);

}  // namespace tessara
