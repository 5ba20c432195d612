#pragma once

#include <QScreen>
#include <QWidget>

namespace tessara {

/// The first place of a viewer: three quarters of the screen's width and height, in the middle of it. The
/// margin beside its pane looks like the pane.
inline void PlaceViewer(QWidget& viewer) {
    viewer.setBackgroundRole(QPalette::Mid);
    viewer.setAutoFillBackground(true);
    const QRect screen = viewer.screen()->geometry();
    const QSize size = screen.size() * 0.75;
    viewer.resize(size);
    viewer.move(screen.x() + (screen.width() - size.width()) / 2,
                screen.y() + (screen.height() - size.height()) / 2);
}
inline void ToggleMaximized(QWidget& viewer) {
    viewer.isMaximized() ? viewer.showNormal() : viewer.showMaximized();
}

}  // namespace tessara
