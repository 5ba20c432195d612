#include "browse/FileList.h"

#include <QElapsedTimer>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <memory>
#include <new>
#include <unordered_map>

#include "artwork/Artwork.h"
#include "artwork/FieldColors.h"
#include "browse/FileInfo.h"
#include "browse/OneLineDelegate.h"
#include "browse/SelectionSummary.h"
#include "core/SystemVersion.h"
#include "core/Text.h"
#include "desktop/ConfirmDiscardExport.h"
#include "desktop/PathText.h"

namespace tessara {
namespace {

struct Column {
    const char* header;
    double widthDivisor;  ///< of the table's width
};
constexpr Column kColumns[] = {
    {" File Name", 4}, {" File Type", 8}, {" File Size", 5.5}, {" Date/Time   ", 5.5}, {" Index", 6},
};
constexpr int kIndexColumn = 4;
constexpr int kKeyRole = Qt::UserRole;
constexpr std::size_t kGenericIcon = 1;  ///< positions count from 1

/// The last `count` characters of a UTF-8 text.
std::string_view LastCharacters(std::string_view text, int count) {
    std::size_t begin = text.size();
    while (begin > 0 && count > 0)
        if ((static_cast<unsigned char>(text[--begin]) & 0xc0) != 0x80) --count;
    return text.substr(begin);
}

/// The type of a file whose type nobody knows: "XYZ File".
std::string TypeNameFor(std::string_view ext4) {
    const std::size_t dot = ext4.find('.');
    const bool hasExtension = dot != std::string_view::npos && dot + 1 < ext4.size();
    return (hasExtension ? std::string(ext4.substr(dot + 1)) : std::string()) + " File";
}

bool HasGenericIcon(std::string_view ext4, const std::string& typeName) {
    if (!ext4.starts_with('.') || ext4 == ".LNK" || typeName.empty()) return true;
    // "XYZ File" is how a shell names a type that nothing has registered.
    return UpperCase(typeName).starts_with(LastCharacters(ext4, 3));
}

bool HasOwnIcon(std::string_view ext4) {
    return ext4 == ".ICO" || ext4 == ".EXE" || ext4 == ".ICL";
}

}  // namespace

/// Check boxes that are seen on the table's ground: their frames are made from the window's colour.
class FileList::RowDelegate final : public OneLineDelegate {
  public:
    using OneLineDelegate::OneLineDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        OneLineDelegate::initStyleOption(option, index);
        QPalette& colors = option->palette;
        constexpr float kShareOfText = 0.45f;
        colors.setColor(QPalette::Window, Mixed(colors.color(QPalette::Window),
                                                colors.color(QPalette::WindowText), kShareOfText));
    }
};

/// A table in which a click on a check box leaves the highlight where it is: it marks the file in the panes.
class FileList::Table final : public QTreeWidget {
  public:
    using QTreeWidget::QTreeWidget;

    bool IsOnCheckBox(const QPoint& position) const {
        const QModelIndex index = indexAt(position);
        if (!index.isValid() || index.column() != 0) return false;
        QStyleOptionViewItem option;
        initViewItemOption(&option);
        option.rect = visualRect(index);
        option.features |= QStyleOptionViewItem::HasCheckIndicator;
        return style()
            ->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this)
            .contains(position);
    }

  protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override {
        if (const auto* mouse = dynamic_cast<const QMouseEvent*>(event);
            mouse != nullptr && IsOnCheckBox(mouse->position().toPoint()))
            return QItemSelectionModel::NoUpdate;
        return QTreeWidget::selectionCommand(index, event);
    }
};

/// What a rebuild carries along, also from one start to the next: a fresh start goes on counting.
struct FileList::Build {
    bool fast = false;   ///< no type icons
    bool asked = false;  ///< whether so many icons are wanted
    int count = 0;       ///< files in the folder
    int listed = 0;
    float totalKb = 0;
    std::unordered_map<std::string, std::size_t> typeCache;  ///< positions of the icons of types
    std::vector<std::unique_ptr<QTreeWidgetItem>> rows;
};

FileList::FileList(Browser& browser, QWidget* parent)
    : QWidget(parent),
      browser_(browser),
      table_(new Table(this)),
      ListViewFile_(table_),
      ImageListFile_{Artwork("file")} {
    ListViewFile_->setObjectName("ListViewFile");
    ListViewFile_->setAccessibleName(QStringLiteral("Files"));
    ListViewFile_->setItemDelegate(new RowDelegate(ListViewFile_));
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
    for (const Column& column : kColumns) headers << QString::fromLatin1(column.header);
    ListViewFile_->setHeaderLabels(headers);
    ListViewFile_->header()->setStretchLastSection(false);
    ListViewFile_->header()->setSectionsClickable(true);
}

void FileList::SetColumnWidths() {
    for (int i = 0; i < static_cast<int>(std::size(kColumns)); ++i)
        ListViewFile_->setColumnWidth(i, static_cast<int>(ListViewFile_->width() / kColumns[i].widthDivisor));
}

void FileList::ConnectTable() {
    ListViewFile_->installEventFilter(this);
    ListViewFile_->viewport()->installEventFilter(this);
    connect(ListViewFile_->header(), &QHeaderView::sectionClicked, this, &FileList::HeaderClicked);
    connect(ListViewFile_, &QTreeWidget::itemChanged, this,
            [this] { browser_.summary->SelectIcoSourceIco(); });
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
    if (event->type() == QEvent::KeyRelease && watched == ListViewFile_) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool moves = key.key() == Qt::Key_Up || key.key() == Qt::Key_Down;
        // A key that is held down repeats; only where it stops is the file wanted.
        if (moves && !key.isAutoRepeat()) ListViewFile_Click();
    }
    return false;
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
    SortKey_ = section == kIndexColumn ? 0 : section;
    SortOrder_ = SortOrder_ == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    SortRows();
}

void FileList::SortRows() {
    ListViewFile_->sortItems(SortKey_, SortOrder_);
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

void FileList::ClearRows() {
    const QSignalBlocker blocker(ListViewFile_);
    ListViewFile_->clear();
    ImageListFile_.resize(kGenericIcon);
}

std::vector<std::string> FileList::TakeCheckedRows() {
    const QSignalBlocker blocker(ListViewFile_);
    std::vector<std::string> keys;
    for (int row = RowCount() - 1; row >= 0; --row) {
        if (!IsChecked(row)) continue;
        keys.push_back(KeyOf(row));
        delete ListViewFile_->takeTopLevelItem(row);
    }
    std::ranges::reverse(keys);
    return keys;
}

int FileList::SetFileMaxN() const {
    bool isXP = false;
    FindXP(0, 0, browser_.session.DesktopPath, isXP);
    return isXP ? 3000 : 1000;
}

void FileList::FileViewFile_PathChange() {
    if (!ConfirmDiscardExport(browser_.session.ExportChanged, browser_.prompts)) return;
    browser_.host.BusyCursor(true);
    SetListFile();
    browser_.summary->SelectIcoSourceIco();
    browser_.host.BusyCursor(false);
    browser_.session.ExportChanged = false;
}

void FileList::SetListFile() {
    Build build;
    while (!TryBuildRows(build)) {
    }
    InsertRows(build);
    WriteTotals(build);
    BrowserHost& host = browser_.host;
    host.ClearPanes();
    host.UndoRefresh("KILL");
    host.BusyCursor(false);
    host.ShowListProgress(110, false);
}

/// Icons are what takes memory: where it ends the rows do without them.
bool FileList::TryBuildRows(Build& build) {
    try {
        return BuildRows(build);
    } catch (const std::bad_alloc&) {
        if (build.fast) throw;
        build.fast = true;
        return false;
    }
}

bool FileList::BuildRows(Build& build) {
    BrowserHost& host = browser_.host;
    FileEnumerator& files = browser_.FileViewFile;
    Ignore(files.Refresh());
    ClearRows();
    build.rows.clear();
    build.typeCache.clear();
    host.BusyCursor(true);
    build.count = files.ListCount();
    if (build.count > SetFileMaxN() && !build.asked) build.fast = !WantsAllIcons();
    host.SetFilePanel(1, "");
    host.SetFilePanel(2, "");
    if (build.count == 0) return true;

    host.ShowListProgress(1, true);
    build.rows.reserve(static_cast<std::size_t>(build.count));
    constexpr int kRepaintInterval = 100;  // milliseconds; a repaint costs as much as hundreds of rows
    QElapsedTimer sinceRepaint;
    sinceRepaint.start();
    for (int i = 0, shown = 1; i < build.count; ++i) {
        if (const int value = 1 + static_cast<int>(105LL * i / build.count); value != shown) {
            host.ShowListProgress(shown = value, true);
            if (sinceRepaint.hasExpired(kRepaintInterval)) {
                host.Repaint();
                sinceRepaint.restart();
            }
        }
        const std::string& name = files.List(i);
        if (!AddRow(build, JoinPath(files.Path(), name), name)) return false;
    }
    return true;
}

bool FileList::AddRow(Build& build, const std::string& full, const std::string& name) {
    const std::string ext4 = UpperCase(LastCharacters(full, 4));
    if (!IsListed(ext4)) return true;
    const FileInfoTexts info = FileInfo(full);
    std::string typeName = browser_.shell.FileTypeName(full);
    std::size_t iconIndex = kGenericIcon;
    if (!build.fast) {
        const std::size_t icons = ImageListFile_.size();
        iconIndex = ChooseIcon(build, full, ext4, typeName);
        const bool isNew = ImageListFile_.size() > icons;
        if (isNew && iconIndex > static_cast<std::size_t>(SetFileMaxN()) && !build.asked) {
            build.asked = true;
            build.fast = !WantsAllIcons();
            if (build.fast) return false;
        }
    } else if (typeName.empty()) {
        typeName = TypeNameFor(ext4);
    }
    ++build.listed;
    build.totalKb += static_cast<float>(info.bytes) / 1024;

    auto row = std::make_unique<QTreeWidgetItem>(QStringList{
        ShownText(name), ShownText(typeName), ShownText(info.bytesText + " (" + SizeText(info.bytes) + ")"),
        ShownText(info.dateText), QString::number(build.listed)});
    row->setData(0, kKeyRole, QByteArray::fromStdString(full));
    row->setCheckState(0, Qt::Unchecked);
    row->setIcon(0, ImageListFile_[iconIndex - 1]);
    build.rows.push_back(std::move(row));
    return true;
}

/// All at once: the table lays itself out a single time.
void FileList::InsertRows(Build& build) {
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(build.rows.size()));
    for (auto& row : build.rows) items << row.release();
    const QSignalBlocker blocker(ListViewFile_);
    ListViewFile_->addTopLevelItems(items);
    const bool asTheFolderIs = SortKey_ == 0 && SortOrder_ == Qt::AscendingOrder;
    if (!asTheFolderIs) SortRows();
}

bool FileList::IsListed(std::string_view ext4) const {
    const ConvertOptions& options = browser_.session.ConvertOptions;
    if (options.ListAllFiles) return true;
    const std::string_view ext3 = LastCharacters(ext4, 3);
    return std::ranges::any_of(browser_.session.formats.ImportFormats, [&](const FormatRow& row) {
        return (row.Ext == ext4 || row.Ext == ext3) && (!options.ListImportOnly || row.Enabled);
    });
}

bool FileList::WantsAllIcons() {
    return browser_.prompts.Ask(
               {"Too many files!\n\nIt will take lots of memory to display the icon type data for all these "
                "files!\n\nAre you sure you want to display icon type data for all these files?",
                PromptButtons::YesNo, PromptIcon::Question}) == Answer::Yes;
}

std::size_t FileList::ChooseIcon(Build& build, const std::string& full, std::string_view ext4,
                                 std::string& typeName) {
    if (HasGenericIcon(ext4, typeName)) {
        if (typeName.empty()) typeName = TypeNameFor(ext4);
        return kGenericIcon;
    }
    if (!HasOwnIcon(ext4)) {
        const auto [entry, isNew] = build.typeCache.try_emplace(typeName, ImageListFile_.size() + 1);
        if (!isNew) return entry->second;
    }
    ImageListFile_.emplace_back(browser_.shell.FileTypeIcon(full, IconSize::Small));
    return ImageListFile_.size();
}

void FileList::WriteTotals(const Build& build) {
    BrowserHost& host = browser_.host;
    // All files of the folder are counted, whichever are listed.
    const std::string head =
        "Total " + std::to_string(build.count) + (build.count > 1 ? " Files (" : " File (");
    const float totalMb = build.totalKb / 1024;
    if (build.count > 0)
        host.SetFilePanel(1, head + (build.totalKb < 1024 ? SizeNumber(build.totalKb) + " KB)"
                                                          : SizeNumber(totalMb) + " MB)"));
    if (build.listed == 0) {
        const bool all = browser_.session.ConvertOptions.ListAllFiles;
        host.SetFilePanel(
            1, all ? "No file found in current folder." : "No image file found in current folder.");
        host.Setvalid(false);
        return;
    }
    // What stays until the summary is written is always in megabytes.
    host.SetFilePanel(1, head + SizeNumber(totalMb) + " MB)");
    host.SetMenuEnabled("mTransform", 2, true);
}

void FileList::ListViewFile_Click() {
    if (RowCount() == 0) return;
    BrowserHost& host = browser_.host;
    host.StopCapture();
    if (!ConfirmDiscardExport(browser_.session.ExportChanged, browser_.prompts)) return;
    browser_.summary->SelectIcoSourceIco();
    host.ClearSelection();
    const int row = SelectedRow();
    if (row < 0) return;
    const std::string key = KeyOf(row);
    host.SetFilePanel(3, "Current File = " + BytesOfText(ListViewFile_->topLevelItem(row)->text(0)));
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
