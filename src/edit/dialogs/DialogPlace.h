#pragma once

#include <QRect>

namespace tessara {

/// Where a dialog stands so that it hides nothing of a pane: beside it, else above or below it. Where there
/// is no room it stands in the corner of the screen in which it hides least; without a pane, in the middle.
/// All in the screen's coordinates; gives the top left corner.
QPoint DialogPlace(const QRect& screen, const QRect& pane, const QSize& dialog);

}  // namespace tessara
