#include "desktop/ViewGeometry.h"

#include <algorithm>
#include <cmath>

namespace tessara {
namespace {

int Along(int length, double scale) {
    return std::max(1, static_cast<int>(std::lround(length * scale)));
}

QSize ShrunkSize(const QSize& picture, const QSize& view) {
    const double scale =
        std::min(1.0 * view.width() / picture.width(), 1.0 * view.height() / picture.height());
    if (scale >= 1) return picture;
    return {Along(picture.width(), scale), Along(picture.height(), scale)};
}

/// Where a length begins within a view: centred, or scrolled where it is larger.
int Begin(int length, int view, int scroll) {
    return length <= view ? (view - length) / 2 : -std::clamp(scroll, 0, length - view);
}

/// The index out of `to` for the index `i` out of `from`; ends fall on ends.
int Projected(int i, int from, int to) {
    if (from == to) return i;
    if (from == 1) return 0;
    return static_cast<int>(std::lround(static_cast<double>(i) * (to - 1) / (from - 1)));
}

}  // namespace

ViewGeometry::ViewGeometry(const QSize& picture, const QSize& view, Mode mode, const QPoint& scroll)
    : picture_(picture) {
    if (picture.isEmpty()) return;
    const QSize size = mode == Mode::ShrinkToFit ? ShrunkSize(picture, view) : picture;
    target_ = QRect(
        {Begin(size.width(), view.width(), scroll.x()), Begin(size.height(), view.height(), scroll.y())},
        size);
}

QPoint ViewGeometry::PicturePoint(const QPoint& viewPoint) const {
    if (picture_.isEmpty()) return {};
    const int x = std::clamp(viewPoint.x() - target_.left(), 0, target_.width() - 1);
    const int y = std::clamp(viewPoint.y() - target_.top(), 0, target_.height() - 1);
    return {Projected(x, target_.width(), picture_.width()),
            Projected(y, target_.height(), picture_.height())};
}

QRect ViewGeometry::ViewRectangle(const QRect& pictureRectangle) const {
    const auto inView = [this](const QPoint& point) {
        return target_.topLeft() + QPoint(Projected(point.x(), picture_.width(), target_.width()),
                                          Projected(point.y(), picture_.height(), target_.height()));
    };
    return QRect(inView(pictureRectangle.topLeft()), inView(pictureRectangle.bottomRight()));
}

}  // namespace tessara
