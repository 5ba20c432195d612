#pragma once

#include "artwork/FocusFramed.h"
#include "browse/OneLineDelegate.h"
#include "browse/SteadyTree.h"

namespace tessara {

/// Check boxes that are seen on the table's ground.
class FileRowDelegate final : public OneLineDelegate {
  public:
    using OneLineDelegate::OneLineDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

/// A table in which a click on a check box leaves the highlight where it is: it marks the file in the panes.
class FileTable final : public FocusFramed<SteadyTree> {
  public:
    using FocusFramed::FocusFramed;

    bool IsOnCheckBox(const QPoint& position) const;

  protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
};

}  // namespace tessara
