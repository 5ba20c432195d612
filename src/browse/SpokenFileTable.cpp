#include "browse/SpokenFileTable.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QHeaderView>
#include <numeric>

namespace tessara {
namespace {

constexpr char kIsTable[] = "spokenTable";
constexpr int kHeader = -1;  ///< the row of the column headers

/// A cell or a column header. It stands for a place in the table, whatever is there.
class SpokenCell final : public QAccessibleInterface,
                         public QAccessibleTableCellInterface,
                         public QAccessibleActionInterface {
  public:
    SpokenCell(QTreeWidget* view, int row, int column) : view_(view), row_(row), column_(column) {}

    int Place() const { return (row_ + 1) * view_->columnCount() + column_; }

    bool isValid() const override { return row_ < view_->topLevelItemCount(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return parent()->window(); }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(view_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }

    QAccessible::Role role() const override {
        return row_ == kHeader ? QAccessible::ColumnHeader : QAccessible::Cell;
    }
    QString text(QAccessible::Text kind) const override {
        if (kind != QAccessible::Name || !isValid()) return {};
        return Item()->text(column_).trimmed();
    }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override {
        const QWidget* const area = row_ == kHeader ? view_->header()->viewport() : view_->viewport();
        return Shown().translated(area->mapToGlobal(QPoint()));
    }
    QAccessible::State state() const override;

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (row_ == kHeader) return nullptr;
        if (type == QAccessible::TableCellInterface) return static_cast<QAccessibleTableCellInterface*>(this);
        const bool acts = type == QAccessible::ActionInterface && HasCheckBox();
        return acts ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }

    bool isSelected() const override { return isValid() && Item()->isSelected(); }
    QList<QAccessibleInterface*> columnHeaderCells() const override { return {parent()->child(column_)}; }
    QList<QAccessibleInterface*> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return column_; }
    int rowIndex() const override { return row_; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface* table() const override { return parent(); }

    QStringList actionNames() const override { return {toggleAction()}; }
    void doAction(const QString&) override {
        if (!isValid()) return;
        Item()->setCheckState(0, Item()->checkState(0) == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {QStringLiteral("Space")}; }

  private:
    QTreeWidgetItem* Item() const {
        return row_ == kHeader ? view_->headerItem() : view_->topLevelItem(row_);
    }
    bool HasCheckBox() const { return row_ != kHeader && column_ == 0; }
    QRect Shown() const {
        if (!isValid()) return {};
        const QHeaderView& header = *view_->header();
        if (row_ == kHeader)
            return {header.sectionViewportPosition(column_), 0, header.sectionSize(column_), header.height()};
        return view_->visualRect(view_->model()->index(row_, column_));
    }

    QTreeWidget* view_;
    int row_;
    int column_;
};

QAccessible::State SpokenCell::state() const {
    QAccessible::State state;
    state.invalid = !isValid();
    if (state.invalid || row_ == kHeader) return state;
    state.invisible = state.offscreen = !view_->viewport()->rect().intersects(Shown());
    state.focusable = state.selectable = true;
    state.selected = isSelected();
    state.focused = view_->hasFocus() && view_->currentItem() == Item() && view_->currentColumn() == column_;
    state.checkable = HasCheckBox();
    state.checked = HasCheckBox() && Item()->checkState(0) == Qt::Checked;
    return state;
}

/// Its children are the headers, and then the cells, row after row: in this order the view counts them too.
class SpokenTable final : public QAccessibleWidget, public QAccessibleTableInterface {
  public:
    explicit SpokenTable(QTreeWidget* view) : QAccessibleWidget(view, QAccessible::Table), view_(view) {}
    ~SpokenTable() override { Forget(); }

    int childCount() const override { return (rowCount() + 1) * columnCount(); }
    QAccessibleInterface* child(int place) const override {
        if (place < 0 || place >= childCount()) return nullptr;
        if (const auto known = cells_.constFind(place); known != cells_.constEnd())
            return QAccessible::accessibleInterface(*known);
        auto* const cell = new SpokenCell(view_, place / columnCount() - 1, place % columnCount());
        cells_.insert(place, QAccessible::registerAccessibleInterface(cell));
        return cell;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* const cell = dynamic_cast<const SpokenCell*>(child);
        return cell && cell->parent() == this ? cell->Place() : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        const QHeaderView& header = *view_->header();
        if (const QPoint at = header.viewport()->mapFromGlobal(QPoint(x, y)); header.rect().contains(at))
            return child(header.logicalIndexAt(at));
        const QModelIndex index = view_->indexAt(view_->viewport()->mapFromGlobal(QPoint(x, y)));
        return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        const QModelIndex current = view_->currentIndex();
        return current.isValid() ? cellAt(current.row(), current.column()) : nullptr;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TableInterface) return static_cast<QAccessibleTableInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QAccessibleInterface* caption() const override { return nullptr; }
    QAccessibleInterface* summary() const override { return nullptr; }
    QAccessibleInterface* cellAt(int row, int column) const override {
        return child((row + 1) * columnCount() + column);
    }
    int rowCount() const override { return view_->topLevelItemCount(); }
    int columnCount() const override { return view_->columnCount(); }
    QString rowDescription(int) const override { return {}; }
    QString columnDescription(int column) const override {
        return view_->headerItem()->text(column).trimmed();
    }

    // Rows are selected as a whole.
    QList<int> selectedRows() const override {
        QList<int> rows;
        for (const QModelIndex& index : view_->selectionModel()->selectedRows()) rows << index.row();
        return rows;
    }
    int selectedRowCount() const override { return static_cast<int>(selectedRows().size()); }
    bool isRowSelected(int row) const override { return selectedRows().contains(row); }
    bool selectRow(int row) override {
        view_->setCurrentItem(view_->topLevelItem(row));
        return isRowSelected(row);
    }
    bool unselectRow(int) override { return false; }
    QList<int> selectedColumns() const override {
        QList<int> columns(selectedColumnCount());
        std::iota(columns.begin(), columns.end(), 0);
        return columns;
    }
    int selectedColumnCount() const override {
        return rowCount() > 0 && selectedRowCount() == rowCount() ? columnCount() : 0;
    }
    bool isColumnSelected(int) const override { return selectedColumnCount() > 0; }
    bool selectColumn(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    QList<QAccessibleInterface*> selectedCells() const override {
        QList<QAccessibleInterface*> cells;
        for (const int row : selectedRows())
            for (int column = 0; column < columnCount(); ++column) cells << cellAt(row, column);
        return cells;
    }
    int selectedCellCount() const override { return selectedRowCount() * columnCount(); }

    // Readers remember what they know of a cell: where rows come and go, the cells are new ones.
    void modelChange(QAccessibleTableModelChangeEvent* event) override {
        if (event->modelChangeType() != QAccessibleTableModelChangeEvent::DataChanged) Forget();
    }

  private:
    void Forget() {
        for (const QAccessible::Id cell : std::as_const(cells_)) QAccessible::deleteAccessibleInterface(cell);
        cells_.clear();
    }

    QTreeWidget* view_;
    mutable QHash<int, QAccessible::Id> cells_;  ///< by their places among the children
};

QAccessibleInterface* MakeSpokenTable(const QString&, QObject* object) {
    if (!object->property(kIsTable).toBool()) return nullptr;
    return new SpokenTable(qobject_cast<QTreeWidget*>(object));
}

}  // namespace

void SpeakAsTable(QTreeWidget* table) {
    QAccessible::installFactory(MakeSpokenTable);
    table->setProperty(kIsTable, true);
}

void TellCheck(QTreeWidgetItem* row) {
    if (!QAccessible::isActive()) return;
    QTreeWidget* const table = row->treeWidget();
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(table, changed);
    event.setChild((table->indexOfTopLevelItem(row) + 1) * table->columnCount());
    QAccessible::updateAccessibility(&event);
}

void TellNewOrder(QTreeWidget* table) {
    QAccessibleTableModelChangeEvent event(table, QAccessibleTableModelChangeEvent::ModelReset);
    QAccessible::updateAccessibility(&event);
}

}  // namespace tessara
