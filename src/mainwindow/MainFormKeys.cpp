#include <QApplication>
#include <QContextMenuEvent>
#include <QShortcut>

#include "mainwindow/MainForm.h"

// The menus of a secondary click, for the keyboard.

namespace tessara {

/// Not every keyboard has the Menu key.
void MainForm::WatchMenuKey() {
    connect(new QShortcut(Qt::SHIFT | Qt::Key_F10, this), &QShortcut::activated, this, [this] {
        QWidget* const control = focusWidget();
        if (control == nullptr) return;
        const QPoint marked = control->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        QContextMenuEvent press(QContextMenuEvent::Keyboard, marked, control->mapToGlobal(marked));
        QApplication::sendEvent(control, &press);
    });
}

/// The Menu key opens what a secondary click on the control would, at what is marked in it.
void MainForm::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() != QContextMenuEvent::Keyboard) return QMainWindow::contextMenuEvent(event);
    const QWidget* const control = focusWidget();
    if (control == tree_->TreeViewS()) PopMenuAt(event->globalPos(), "TREEVIEWS");
    if (control == list_->ListViewFile()) PopMenuAt(event->globalPos(), "FILE");
    if (control == panes_[1]) PopMenuAt(event->globalPos(), "RST");
    if (Frametofile1_->isAncestorOf(control)) PopMenuAt(event->globalPos(), "CONVERT");
}

}  // namespace tessara
