#pragma once

#include <QIcon>
#include <QTreeWidget>
#include <string>
#include <string_view>
#include <vector>

#include "browse/Browser.h"

namespace tessara {

class FileTable;

/// The file table `ListViewFile`: a check box, an icon and five columns for each file of the folder. A row's
/// key is the file's full path in bytes.
class FileList : public QWidget {
    Q_OBJECT
  public:
    enum Column { kNameColumn, kTypeColumn, kSizeColumn, kTimeColumn, kIndexColumn };

    FileList(Browser& browser, QWidget* parent);

    QTreeWidget* ListViewFile() const { return ListViewFile_; }
    int RowCount() const { return ListViewFile_->topLevelItemCount(); }
    /// From 0, in the order shown.
    std::string KeyOf(int row) const;
    bool IsChecked(int row) const;
    void SetChecked(int row, bool checked);
    /// -1 where no row is selected.
    int SelectedRow() const;
    void SelectRow(int row);
    void ClearRows();
    /// Takes rows out of the table, given in the order shown; their keys. No other row is highlighted for one
    /// that goes.
    std::vector<std::string> TakeRows(const std::vector<int>& rows);
    std::vector<std::string> TakeCheckedRows();

    /// Rebuilds the table from the folder of FileViewFile.
    void SetListFile();
    /// The one way by which a rebuild is asked for.
    void FileViewFile_PathChange();
    /// Shows the selected row's file in the panes.
    void ListViewFile_Click();

    /// How many files, and how many different icons, are shown without a question.
    int SetFileMaxN() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    static constexpr int kKeyRole = Qt::UserRole;
    static constexpr std::size_t kGenericIcon = 1;  ///< positions count from 1
    struct Build;
    /// The row last shown in the panes. It outlives a rebuild.
    struct CurrentFileRecord {
        int Index = -1;
        std::string Key;
    };

    void SetColors();
    void MakeColumns();
    void SetColumnWidths();
    void ConnectTable();
    void HeaderClicked(int section);
    bool SortedByKey(const QKeyEvent& key);
    void SortRows();
    /// None where the current file has left the table.
    void HighlightCurrentFile();

    /// Makes the rows; False asks for a fresh start.
    bool BuildRows(Build& build);
    bool TryBuildRows(Build& build);
    bool AddRow(Build& build, const std::string& full, const std::string& name);
    void InsertRows(Build& build);
    bool IsListed(std::string_view ext4) const;
    bool WantsAllIcons();
    /// The position of a file's icon in ImageListFile, which may grow. Makes a type name where there is none.
    std::size_t ChooseIcon(Build& build, const std::string& full, std::string_view ext4,
                           std::string& typeName);
    void WriteTotals(const Build& build);

    Browser& browser_;
    FileTable* table_ = nullptr;
    QTreeWidget* ListViewFile_ = nullptr;
    std::vector<QIcon> ImageListFile_;  ///< the first is the generic one, which is never removed
    CurrentFileRecord CurrentFile_;
    int SortKey_ = kNameColumn;
    Qt::SortOrder SortOrder_ = Qt::AscendingOrder;  ///< one for all columns
    bool pressedOnCheckBox_ = false;
    bool columnsSized_ = false;
};

}  // namespace tessara
