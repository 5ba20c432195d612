#pragma once

#include <QObject>
#include <optional>
#include <string>

#include "browse/Browser.h"

namespace tessara {

class FolderNode;
class FolderTree;
class TreeDelegate;

/// The naming of a new folder in the tree. A node with an impossible name stands for the folder until the
/// user has given it a good one; only then the folder is made. There is no other way out.
class FolderNaming : public QObject {
    Q_OBJECT
  public:
    FolderNaming(Browser& browser, FolderTree& tree, TreeDelegate& delegate);

    /// Whether a name is being asked for: the tree's `LabelEdit` is automatic.
    bool IsNaming() const { return placeholder_ != nullptr; }

    /// Starts a new folder in the selected one.
    void AddNewFolderNode();
    /// Ends it with a name; empty for the one that the node shows.
    void AddTreeViewSFolder(std::string name);
    /// Whether a folder of that name can stand in `path`; says so and asks again where not.
    void CheckTextN(const std::string& path, const std::string& name, bool& ok);

    /// Carries out an edit's end that still waits, before other input is taken.
    void FinishLabelEdit();
    /// The node has gone with its tree.
    void Abandon();

  private:
    void StartLabelEdit();
    void EndLabelEditLater(const std::string& name);
    void AfterLabelEdit(const std::string& name);
    bool HasSibling(const std::string& path) const;

    Browser& browser_;
    FolderTree& tree_;
    FolderNode* placeholder_ = nullptr;
    std::optional<std::string> endedWith_;
};

}  // namespace tessara
