#include "edit/dialogs/DialogPlace.h"

#include <algorithm>
#include <array>

namespace tessara {
namespace {

int Within(int position, int length, int from, int to) {
    return std::max(from, std::min(position, to - length));
}

/// Beside a rectangle, above and below it, as far as the screen reaches.
std::array<QPoint, 4> PlacesAround(const QRect& kept, const QRect& screen, const QSize& dialog) {
    const int top = Within(kept.y(), dialog.height(), screen.y(), screen.y() + screen.height());
    const int left = Within(kept.x(), dialog.width(), screen.x(), screen.x() + screen.width());
    return {QPoint(kept.x() + kept.width(), top), QPoint(kept.x() - dialog.width(), top),
            QPoint(left, kept.y() - dialog.height()), QPoint(left, kept.y() + kept.height())};
}

}  // namespace

QPoint DialogPlace(const QRect& screen, const QRect& pane, const QRect& neighbour, const QSize& dialog) {
    const QRect placed(QPoint(), dialog);
    if (!pane.isValid()) return screen.center() - placed.center();

    for (const QRect& kept : {pane | neighbour, pane})
        for (const QPoint& place : PlacesAround(kept, screen, dialog))
            if (screen.contains(placed.translated(place))) return place;

    const int right = screen.x() + screen.width() - dialog.width();
    const int bottom = screen.y() + screen.height() - dialog.height();
    const QPoint corners[] = {{right, screen.y()}, screen.topLeft(), {right, bottom}, {screen.x(), bottom}};
    const auto hidden = [&](const QPoint& place) {
        const QSize overlap = placed.translated(place).intersected(pane).size();
        return overlap.width() * overlap.height();
    };
    return *std::ranges::min_element(corners, {}, hidden);
}

}  // namespace tessara
