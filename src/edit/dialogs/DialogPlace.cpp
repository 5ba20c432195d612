#include "edit/dialogs/DialogPlace.h"

#include <algorithm>

namespace tessara {
namespace {

int Within(int position, int length, int from, int to) {
    return std::max(from, std::min(position, to - length));
}

}  // namespace

QPoint DialogPlace(const QRect& screen, const QRect& pane, const QSize& dialog) {
    const QRect placed(QPoint(), dialog);
    if (!pane.isValid()) return screen.center() - placed.center();

    const int screenRight = screen.x() + screen.width(), screenBottom = screen.y() + screen.height();
    const int top = Within(pane.y(), dialog.height(), screen.y(), screenBottom);
    const int left = Within(pane.x(), dialog.width(), screen.x(), screenRight);
    const QPoint beside[] = {{pane.x() + pane.width(), top},
                             {pane.x() - dialog.width(), top},
                             {left, pane.y() - dialog.height()},
                             {left, pane.y() + pane.height()}};
    for (const QPoint& place : beside)
        if (screen.contains(placed.translated(place))) return place;

    const int right = screenRight - dialog.width(), bottom = screenBottom - dialog.height();
    const QPoint corners[] = {{right, screen.y()}, screen.topLeft(), {right, bottom}, {screen.x(), bottom}};
    const auto hidden = [&](const QPoint& place) {
        const QSize overlap = placed.translated(place).intersected(pane).size();
        return overlap.width() * overlap.height();
    };
    return *std::ranges::min_element(corners, {}, hidden);
}

}  // namespace tessara
