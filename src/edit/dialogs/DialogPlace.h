#pragma once

#include <QRect>

namespace tessara {

/// Where a dialog stands so that it hides nothing of a pane nor, if there is room for that too, of its
/// neighbour: beside them, else above or below. Where there is no room it stands in the corner of the screen
/// in which it hides least of the pane; without a pane, in the middle. All in the screen's coordinates; gives
/// the top left corner.
QPoint DialogPlace(const QRect& screen, const QRect& pane, const QRect& neighbour, const QSize& dialog);

}  // namespace tessara
