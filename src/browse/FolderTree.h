#pragma once

#include <QTreeWidget>
#include <string>

#include "browse/Browser.h"
#include "browse/FolderNode.h"
#include "browse/TreePictures.h"

namespace tessara {

class FolderNaming;
class TreeDelegate;

/// The folder tree `TreeViewS`: drives, documents and desktop, read one level ahead of what is shown.
/// A node's key is its path without a separator at its end (but "/"), "mycomputer" for the root, or a virtual
/// key that begins with "My Documents" and stands for the documents folder. Keys are unique among siblings:
/// the desktop and a mounted volume stand at the top and in their folder.
class FolderTree : public QWidget {
    Q_OBJECT
  public:
    FolderTree(Browser& browser, QWidget* parent);

    QTreeWidget* TreeViewS() const { return TreeViewS_; }
    FolderNaming& Naming() const { return *naming_; }
    const TreePictures& Pictures() const { return pictures_; }

    /// Builds the top of the tree; unless `noLookAhead`, reads the first level of the drives. What is there
    /// already stays, but is taken for unread.
    void ResetTreeViewS(bool noLookAhead);
    /// Adds the immediate subfolders of the folder of `key` as children of its node.
    void GetTreePath(const std::string& key);
    /// The reverse, for a key that is a path.
    void DelTreePath(const std::string& key);
    /// Rebuilds the tree and returns to the current folder.
    void RefreshTreeViewS();
    /// Collapses the tree and empties the list.
    void CloseTreeS();
    /// Shows the selected node's folder; after an Expand reads what is below it.
    void TreeViewS_Click();
    void TreeViewS_NodeClick();
    void SetDropHighlightToNothing();
    /// Something is dragged over a point of the tree, in twips.
    void TreeViewS_DragOver(int X, int Y);

    /// Null where no node is selected.
    FolderNode* SelectedNode() const;
    void SelectNode(FolderNode& node);
    void Deselect();
    FolderNode* Computer() const;
    /// The first node of a key; null where there is none.
    FolderNode* NodeOf(const std::string& key) const;
    std::string RealPathOf(const FolderNode& node) const;
    /// Scrolls until the node's name is in sight; expands what it is below.
    void EnsureVisible(const FolderNode& node);
    /// Expands a node as the user does, but without the click that follows.
    void Expand(FolderNode& node);
    void MarkRead(FolderNode& node) const { node.visitedIn = build_; }
    /// Looks ahead at a node and at those below it, but for those that a click has read.
    void ReadBelow(FolderNode& node);
    /// A new node for a folder, at the end of `parent`.
    FolderNode* AddFolder(FolderNode& parent, const std::string& key);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    class View;

    // Building.
    FolderNode* AddRoot(int position, const std::string& key, const QString& text, TreePicture picture);
    void AddDrive(const Drive& drive, bool noLookAhead);
    FolderNode* NewFolderNode(const std::string& key) const;
    bool IsRead(const FolderNode& node) const { return node.visitedIn == build_; }
    void LookAhead(FolderNode& node);

    // A click.
    void ShowFolderOf(FolderNode& node);
    bool TryToShow(FolderNode& node, const std::string& path, bool readBelow);
    bool ReadSubfolders(FolderNode& node, const std::string& path);
    void ShowNoFolder();

    // Events.
    void ConnectTree();
    void NodeExpanded(FolderNode& node);
    bool MousePressed(Qt::MouseButton button);
    void MakeVisible(int X, int Y);

    Browser& browser_;
    TreePictures pictures_;
    View* view_ = nullptr;
    QTreeWidget* TreeViewS_ = nullptr;
    TreeDelegate* delegate_ = nullptr;
    FolderNaming* naming_ = nullptr;

    FolderEnumerator DirTreeViewPath_;
    FolderEnumerator DirTreeViewSClick_;  ///< a look-ahead runs while its list is gone through
    int build_ = 0;                       ///< counts ResetTreeViewS
    bool ExpandPending_ = false;          ///< the next click reads what is below its node
    std::string LastFolder_;              ///< the folder last given to the file list by a click
    int LastFolderCount_ = 0;             ///< the list's rows at that moment
};

}  // namespace tessara
