#pragma once

#include <QTreeWidget>
#include <string>

#include "browse/Browser.h"

namespace tessara {

/// The file table `ListViewFile`: a check box, an icon and five columns for each file of the folder. A row's
/// key is the file's full path in bytes.
class FileList : public QWidget {
    Q_OBJECT
  public:
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

    /// Rebuilds the table from the folder of FileViewFile.
    void SetListFile();
    /// The one way by which a rebuild is asked for.
    void FileViewFile_PathChange();
    /// Shows the selected row's file in the panes.
    void ListViewFile_Click();

  private:
    Browser& browser_;
    QTreeWidget* ListViewFile_ = nullptr;
};

}  // namespace tessara
