#include "browse/FileTable.h"

#include <QMouseEvent>

#include "artwork/FieldColors.h"

namespace tessara {

void FileRowDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    OneLineDelegate::initStyleOption(option, index);
    option->palette = FramedBoxPalette(option->palette);
}

bool FileTable::IsOnCheckBox(const QPoint& position) const {
    const QModelIndex index = indexAt(position);
    if (!index.isValid() || index.column() != 0) return false;
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = visualRect(index);
    option.features |= QStyleOptionViewItem::HasCheckIndicator;
    return style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this).contains(position);
}

QItemSelectionModel::SelectionFlags FileTable::selectionCommand(const QModelIndex& index,
                                                                const QEvent* event) const {
    if (const auto* mouse = dynamic_cast<const QMouseEvent*>(event);
        mouse != nullptr && IsOnCheckBox(mouse->position().toPoint()))
        return QItemSelectionModel::NoUpdate;
    return SteadyTree::selectionCommand(index, event);
}

}  // namespace tessara
