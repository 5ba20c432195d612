#pragma once

#include <QPersistentModelIndex>
#include <functional>

#include "browse/OneLineDelegate.h"

namespace tessara {

/// Draws the folder tree's nodes, and edits the label of one without touching the node: what was typed goes
/// to `labelEditEnded`.
class TreeDelegate final : public OneLineDelegate {
    Q_OBJECT
  public:
    explicit TreeDelegate(QObject* parent);

    /// Gets an empty text where the edit was given up.
    std::function<void(const QString&)> labelEditEnded;
    /// Drawn as if it were selected while something is dragged over it.
    QPersistentModelIndex dropHighlight;

    void setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const override {}

  protected:
    bool eventFilter(QObject* editor, QEvent* event) override;
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace tessara
