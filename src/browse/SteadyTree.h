#pragma once

#include <QTreeWidget>

namespace tessara {

/// The user's hand moves the highlight from row to row but never takes it away: not by a click beside the
/// rows, nor with Ctrl.
class SteadyTree : public QTreeWidget {
  public:
    using QTreeWidget::QTreeWidget;

  protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override {
        const auto command = QTreeWidget::selectionCommand(index, event);
        const bool takesAway = !index.isValid() || (command & QItemSelectionModel::Deselect) != 0;
        return takesAway ? QItemSelectionModel::NoUpdate : command;
    }
};

}  // namespace tessara
