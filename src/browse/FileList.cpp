#include "browse/FileList.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>

#include "artwork/Artwork.h"
#include "artwork/FieldColors.h"
#include "browse/FileTable.h"
#include "browse/MarkKeys.h"
#include "browse/SelectionSummary.h"
#include "browse/SpokenFileTable.h"
#include "desktop/ConfirmDiscardExport.h"
#include "desktop/PathText.h"

namespace tessara {
namespace {

/// In the order of FileList::Column.
struct ColumnHead {
    const char* header;
    double widthDivisor;  ///< of the table's width
};
constexpr ColumnHead kColumns[] = {
    {" File Name", 4}, {" File Type", 8}, {" File Size", 5.5}, {" Date/Time   ", 5.5}, {" Index", 6},
};

}  // namespace

FileList::FileList(Browser& browser, QWidget* parent)
    : QWidget(parent),
      browser_(browser),
      table_(new FileTable(this)),
      ListViewFile_(table_),
      ImageListFile_{Artwork("file")} {
    SpeakAsTable(ListViewFile_);
    ListViewFile_->setObjectName("ListViewFile");
    ListViewFile_->setAccessibleName(QStringLiteral("Files"));
    ListViewFile_->setItemDelegate(new FileRowDelegate(ListViewFile_));
    ListViewFile_->setRootIsDecorated(false);
    ListViewFile_->setUniformRowHeights(true);
    ListViewFile_->setAllColumnsShowFocus(true);
    ListViewFile_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    SetColors();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(ListViewFile_);
    MakeColumns();
    ConnectTable();
    browser_.list = this;
    browser_.FileViewFile.PathChange = [this] { FileViewFile_PathChange(); };
}

void FileList::SetColors() {
    ListViewFile_->setPalette(FieldPalette(palette(), QuietGround(palette())));
}

void FileList::MakeColumns() {
    QStringList headers;
    for (const ColumnHead& column : kColumns) headers << QString::fromLatin1(column.header);
    ListViewFile_->setHeaderLabels(headers);
    ListViewFile_->header()->setStretchLastSection(false);
    ListViewFile_->header()->setSectionsClickable(true);
    ListViewFile_->header()->setSectionsMovable(false);
}

void FileList::SetColumnWidths() {
    for (int i = 0; i < static_cast<int>(std::size(kColumns)); ++i)
        ListViewFile_->setColumnWidth(i, static_cast<int>(ListViewFile_->width() / kColumns[i].widthDivisor));
}

void FileList::ConnectTable() {
    ListViewFile_->installEventFilter(this);
    new MarkKeys(ListViewFile_, [this] { ListViewFile_Click(); });
    ListViewFile_->viewport()->installEventFilter(this);
    connect(ListViewFile_->header(), &QHeaderView::sectionClicked, this, &FileList::HeaderClicked);
    connect(ListViewFile_, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* row) {
        browser_.summary->SelectIcoSourceIco();
        TellCheck(row);
    });
    connect(ListViewFile_, &QTreeWidget::itemClicked, this, [this] {
        browser_.summary->SelectIcoSourceIco();
        if (!pressedOnCheckBox_) ListViewFile_Click();
    });
    connect(ListViewFile_, &QTreeWidget::itemDoubleClicked, this, [this] {
        if (!pressedOnCheckBox_) browser_.host.OpenImportViewer();
    });
}

bool FileList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress && watched == ListViewFile_->viewport()) {
        const auto& press = static_cast<const QMouseEvent&>(*event);
        pressedOnCheckBox_ = table_->IsOnCheckBox(press.position().toPoint());
        if (press.button() != Qt::RightButton) return false;
        browser_.host.PopMenu("File");
        return true;
    }
    return event->type() == QEvent::KeyPress && SortedByKey(static_cast<const QKeyEvent&>(*event));
}

/// Ctrl and a digit are a click on the header of that number.
bool FileList::SortedByKey(const QKeyEvent& key) {
    const int section = key.key() - Qt::Key_1;
    const bool isSection = section >= 0 && section < static_cast<int>(std::size(kColumns));
    if (!isSection || !key.modifiers().testFlag(Qt::ControlModifier)) return false;
    HeaderClicked(section);
    return true;
}

void FileList::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // The first time that the table has its true width; from then on the widths are the user's.
    if (!columnsSized_) SetColumnWidths();
    columnsSized_ = true;
}

void FileList::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) SetColors();
    QWidget::changeEvent(event);
}

void FileList::HeaderClicked(int section) {
    // The index is no text to sort by: "10" comes before "9". Names stand for it.
    SortKey_ = section == kIndexColumn ? static_cast<int>(kNameColumn) : section;
    SortOrder_ = SortOrder_ == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    SortRows();
}

void FileList::SortRows() {
    ListViewFile_->sortItems(SortKey_, SortOrder_);
    TellNewOrder(ListViewFile_);
}

std::string FileList::KeyOf(int row) const {
    return ListViewFile_->topLevelItem(row)->data(0, kKeyRole).toByteArray().toStdString();
}

bool FileList::IsChecked(int row) const {
    return ListViewFile_->topLevelItem(row)->checkState(0) == Qt::Checked;
}

void FileList::SetChecked(int row, bool checked) {
    const QSignalBlocker blocker(ListViewFile_);
    ListViewFile_->topLevelItem(row)->setCheckState(0, checked ? Qt::Checked : Qt::Unchecked);
}

int FileList::SelectedRow() const {
    const QModelIndexList rows = ListViewFile_->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.front().row();
}

void FileList::SelectRow(int row) {
    ListViewFile_->setCurrentItem(ListViewFile_->topLevelItem(row));
}

void FileList::HighlightCurrentFile() {
    ListViewFile_->clearSelection();
    for (int row = 0; row < RowCount(); ++row)
        if (KeyOf(row) == CurrentFile_.Key) SelectRow(row);
}

void FileList::ClearRows() {
    const QSignalBlocker blocker(ListViewFile_);
    ListViewFile_->clear();
    ImageListFile_.resize(kGenericIcon);
}

std::vector<std::string> FileList::TakeRows(const std::vector<int>& rows) {
    const QSignalBlocker blocker(ListViewFile_);
    const int highlighted = SelectedRow();
    std::vector<std::string> keys;
    for (const int row : rows) keys.push_back(KeyOf(row));
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) delete ListViewFile_->takeTopLevelItem(*row);
    // The view hands the highlight on to a neighbour, which is not the file in the panes.
    if (highlighted < 0 || std::ranges::binary_search(rows, highlighted)) ListViewFile_->clearSelection();
    return keys;
}

std::vector<std::string> FileList::TakeCheckedRows() {
    std::vector<int> rows;
    for (int row = 0; row < RowCount(); ++row)
        if (IsChecked(row)) rows.push_back(row);
    return TakeRows(rows);
}

void FileList::FileViewFile_PathChange() {
    if (!ConfirmDiscardExport(browser_.session.ExportChanged, browser_.prompts)) return;
    browser_.host.BusyCursor(true);
    SetListFile();
    browser_.summary->SelectIcoSourceIco();
    browser_.host.BusyCursor(false);
    browser_.session.ExportChanged = false;
}

void FileList::ListViewFile_Click() {
    if (RowCount() == 0) return;
    BrowserHost& host = browser_.host;
    host.StopCapture();
    if (!ConfirmDiscardExport(browser_.session.ExportChanged, browser_.prompts))
        return HighlightCurrentFile();
    browser_.summary->SelectIcoSourceIco();
    host.ClearSelection();
    const int row = SelectedRow();
    if (row < 0) return;
    const std::string key = KeyOf(row);
    host.SetFilePanel(3,
                      "Current File = " + BytesOfText(ListViewFile_->topLevelItem(row)->text(kNameColumn)));
    if (key != CurrentFile_.Key) {
        host.BusyCursor(true);
        host.LoadPict(key);
        host.BusyCursor(false);
    }
    browser_.session.ExportChanged = false;
    CurrentFile_ = {row, key};
    SelectRow(row);
    ListViewFile_->scrollToItem(ListViewFile_->topLevelItem(row));
}

}  // namespace tessara
