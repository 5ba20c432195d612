#pragma once

#include <QTreeWidget>
#include <string>
#include <vector>

#include "browse/Browser.h"

namespace tessara {

/// The folder tree `TreeViewS`: drives, documents and desktop, read one level ahead of what is shown.
/// A node's key is its path without a separator at its end (but "/"), "mycomputer" for the root, or a virtual
/// key that begins with "My Documents" and stands for the documents folder.
class FolderTree : public QWidget {
    Q_OBJECT
  public:
    FolderTree(Browser& browser, QWidget* parent);

    QTreeWidget* TreeViewS() const { return TreeViewS_; }

    /// Builds the top of the tree; unless `noLookAhead`, reads the first level of the drives.
    void ResetTreeViewS(bool noLookAhead);
    /// Adds the immediate subfolders of the folder of `key` as children of its node.
    void GetTreePath(const std::string& key);
    void DelTreePath(const std::string& key);
    /// Rebuilds the tree and returns to the current folder.
    void RefreshTreeViewS();
    /// Collapses the tree and empties the list.
    void CloseTreeS();
    void TreeViewS_Click();
    void SetDropHighlightToNothing();

  private:
    Browser& browser_;
    QTreeWidget* TreeViewS_ = nullptr;
};

}  // namespace tessara
