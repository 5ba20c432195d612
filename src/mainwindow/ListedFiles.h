#pragma once

#include "browse/FileList.h"
#include "core/BatchJob.h"

namespace tessara {

/// The file table as a conversion job walks it.
class ListedFiles final : public BatchList {
  public:
    explicit ListedFiles(FileList& list) : list_(list) {}

    int RowCount() const override { return list_.RowCount(); }
    std::string KeyOf(int row) const override { return list_.KeyOf(row); }
    bool IsChecked(int row) const override { return list_.IsChecked(row); }
    void SetChecked(int row, bool checked) override { list_.SetChecked(row, checked); }
    int SelectedRow() const override { return list_.SelectedRow(); }
    void EnsureVisible(int row) override {
        QTreeWidget* const table = list_.ListViewFile();
        table->scrollToItem(table->topLevelItem(row));
        table->viewport()->repaint();
    }

  private:
    FileList& list_;
};

}  // namespace tessara
