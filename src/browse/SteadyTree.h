#pragma once

#include <QMouseEvent>
#include <QTreeWidget>
#include <utility>

namespace tessara {

/// The user's hand moves the highlight from row to row but never takes it away: not by a click beside the
/// rows, nor with Ctrl. A press highlights its row for good: where the pointer slips off before the button
/// comes up, that was a click on the pressed row, so that what is highlighted is always what was clicked.
class SteadyTree : public QTreeWidget {
  public:
    using QTreeWidget::QTreeWidget;

  protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override {
        const auto command = QTreeWidget::selectionCommand(index, event);
        const bool takesAway = !index.isValid() || (command & QItemSelectionModel::Deselect) != 0;
        const bool comesLate = event != nullptr && event->type() == QEvent::MouseButtonRelease;
        return takesAway || comesLate ? QItemSelectionModel::NoUpdate : command;
    }
    void mousePressEvent(QMouseEvent* event) override {
        QTreeWidget::mousePressEvent(event);
        const QPoint position = event->position().toPoint();
        const QModelIndex index = indexAt(position);
        // The mark that opens a node stands outside of its rectangle.
        const bool isOnRow = event->button() == Qt::LeftButton && visualRect(index).contains(position);
        pressed_ = isOnRow ? index : QModelIndex();
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!event->buttons().testFlag(Qt::LeftButton)) QTreeWidget::mouseMoveEvent(event);
    }
    void mouseReleaseEvent(QMouseEvent* event) override {
        const QPersistentModelIndex pressed = std::exchange(pressed_, {});
        const bool slipped = pressed.isValid() && indexAt(event->position().toPoint()) != pressed;
        QTreeWidget::mouseReleaseEvent(event);
        if (slipped && pressed.isValid()) clicked(pressed);
    }

  private:
    QPersistentModelIndex pressed_;
};

}  // namespace tessara
