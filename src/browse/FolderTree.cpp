#include "browse/FolderTree.h"

#include <QTreeWidgetItemIterator>
#include <unordered_map>
#include <unordered_set>

#include "browse/FileList.h"
#include "browse/FolderNaming.h"
#include "browse/NodeKeys.h"
#include "browse/PathBox.h"
#include "browse/PathWalk.h"
#include "browse/SelectionSummary.h"
#include "desktop/PathText.h"

namespace tessara {

FolderNode* FolderTree::SelectedNode() const {
    auto* current = static_cast<FolderNode*>(TreeViewS_->currentItem());
    return current != nullptr && current->isSelected() ? current : nullptr;
}

void FolderTree::SelectNode(FolderNode& node) {
    TreeViewS_->setCurrentItem(&node);
}

void FolderTree::Deselect() {
    TreeViewS_->clearSelection();
}

FolderNode* FolderTree::Computer() const {
    return static_cast<FolderNode*>(TreeViewS_->topLevelItem(0));
}

FolderNode* FolderTree::NodeOf(const std::string& key) const {
    const auto hasKey = [&](const QTreeWidgetItem* node) {
        return static_cast<const FolderNode*>(node)->Key() == key;
    };
    for (int i = 0; i < TreeViewS_->topLevelItemCount(); ++i)
        if (hasKey(TreeViewS_->topLevelItem(i))) return static_cast<FolderNode*>(TreeViewS_->topLevelItem(i));
    for (QTreeWidgetItemIterator node(TreeViewS_); *node != nullptr; ++node)
        if (hasKey(*node)) return static_cast<FolderNode*>(*node);
    return nullptr;
}

std::string FolderTree::RealPathOf(const FolderNode& node) const {
    return RealPath(node.Key(), browser_.session.DocumentsPath);
}

void FolderTree::Expand(FolderNode& node) {
    if (node.isExpanded() || !node.CanExpand()) return;
    node.setExpanded(true);
    NodeExpanded(node);
}

void FolderTree::ResetTreeViewS(bool noLookAhead) {
    BrowserHost& host = browser_.host;
    host.Repaint();
    host.BusyCursor(true);
    ++build_;
    AddRoot(0, std::string(kComputerKey), QStringLiteral("My Computer"), TreePicture::Computer);
    for (const Drive& drive : browser_.shell.Drives()) AddDrive(drive, noLookAhead);
    LookAhead(
        *AddRoot(1, std::string(kDocumentsKey), QStringLiteral("My Documents"), TreePicture::Documents));
    if (const std::string& desktop = browser_.session.DesktopPath; !desktop.empty())
        LookAhead(*AddRoot(1, desktop, QStringLiteral("Desktop"), TreePicture::Desktop));
    host.BusyCursor(false);
}

/// The node at the top with that key, made where it is missing.
FolderNode* FolderTree::AddRoot(int position, const std::string& key, const QString& text,
                                TreePicture picture) {
    for (int i = 0; i < TreeViewS_->topLevelItemCount(); ++i)
        if (auto* root = static_cast<FolderNode*>(TreeViewS_->topLevelItem(i)); root->Key() == key)
            return root;
    auto* root = new FolderNode(key, text, pictures_.Icon(picture));
    TreeViewS_->insertTopLevelItem(position, root);
    return root;
}

void FolderTree::AddDrive(const Drive& drive, bool noLookAhead) {
    if (drive.line.empty()) return;
    const DriveNode shown = DriveNodeFor(drive);
    FolderNode* node = nullptr;
    for (int i = 0; i < Computer()->childCount(); ++i)
        if (Computer()->Child(i)->Key() == shown.key) node = Computer()->Child(i);
    if (node == nullptr) {
        node = new FolderNode(shown.key, ShownText(shown.text), pictures_.Icon(shown.picture));
        Computer()->addChild(node);
        node->SetUnread(true);
    }
    if (!noLookAhead && shown.lookAhead) LookAhead(*node);
}

FolderNode* FolderTree::NewFolderNode(const std::string& key) const {
    std::string name = key;
    GetPath(name);
    return new FolderNode(key, ShownText(name), pictures_.Icon(TreePicture::ClosedFolder));
}

FolderNode* FolderTree::AddFolder(FolderNode& parent, const std::string& key) {
    FolderNode* node = NewFolderNode(key);
    parent.addChild(node);
    return node;
}

void FolderTree::GetTreePath(const std::string& key) {
    browser_.host.BusyCursor(true);
    if (FolderNode* node = NodeOf(key)) LookAhead(*node);
    browser_.host.BusyCursor(false);
}

void FolderTree::LookAhead(FolderNode& node) {
    if (!DirTreeViewPath_.SetPath(RealPathOf(node))) return;
    std::unordered_set<std::string> present;
    for (int i = 0; i < node.childCount(); ++i) present.insert(RealPathOf(*node.Child(i)));
    QList<QTreeWidgetItem*> added;
    for (int i = 0; i < DirTreeViewPath_.ListCount(); ++i) {
        std::string name = DirTreeViewPath_.List(i);
        if (present.contains(name)) continue;
        GetPath(name);
        added << NewFolderNode(JoinPath(node.Key(), name));
    }
    node.addChildren(added);
    node.SetUnread(false);
}

void FolderTree::ReadBelow(FolderNode& node) {
    if (!IsRead(node)) LookAhead(node);
    for (int i = 0; i < node.childCount(); ++i)
        if (!IsRead(*node.Child(i))) LookAhead(*node.Child(i));
}

void FolderTree::DelTreePath(const std::string& key) {
    FolderNode* node = NodeOf(key);
    if (node == nullptr || !DirTreeViewPath_.SetPath(key)) return;
    std::unordered_set<std::string> folders;
    for (int i = 0; i < DirTreeViewPath_.ListCount(); ++i) folders.insert(DirTreeViewPath_.List(i));
    // The documents folder stays where it lies at the top of the system's drive.
    if (key == "/") folders.erase(browser_.session.DocumentsPath);
    for (int i = node->childCount() - 1; i >= 0; --i)
        if (folders.contains(node->Child(i)->Key())) delete node->Child(i);
}

void FolderTree::RefreshTreeViewS() {
    FileEnumerator& files = browser_.FileViewFile;
    const std::string saved = browser_.box->Text();
    naming_->Abandon();
    TreeViewS_->clear();
    browser_.host.Repaint();
    ResetTreeViewS(false);
    Ignore(files.Refresh());
    browser_.list->SetListFile();
    browser_.summary->SelectIcoSourceIco();
    if (browser_.list->RowCount() > 0) {
        browser_.box->SetText(files.Path());
        if (!saved.empty()) browser_.box->ImageCobomKeyup(false);
    } else if (saved != files.Path()) {
        Ignore(files.SetPath(saved));
        browser_.list->SetListFile();
        browser_.summary->SelectIcoSourceIco();
    }
}

void FolderTree::CloseTreeS() {
    for (int i = 0; i < TreeViewS_->topLevelItemCount(); ++i) TreeViewS_->topLevelItem(i)->setExpanded(false);
    browser_.list->ClearRows();
    for (const int panel : {1, 2, 3}) browser_.host.SetFilePanel(panel, "");
}

void FolderTree::TreeViewS_NodeClick() {
    browser_.box->SetMeCaption();
}

void FolderTree::TreeViewS_Click() {
    if (naming_->IsNaming()) return naming_->AddTreeViewSFolder("");
    BrowserHost& host = browser_.host;
    host.StopCapture();
    host.BusyCursor(true);
    FolderNode* node = SelectedNode();
    if (node != nullptr && node->Key() != kComputerKey) ShowFolderOf(*node);
    host.SetTreeToolTip(browser_.FileViewFile.Path());
    browser_.box->SetMeCaption();
    host.BusyCursor(false);
}

void FolderTree::ShowFolderOf(FolderNode& node) {
    std::string path = RealPathOf(node);
    for (bool readBelow = ExpandPending_; !TryToShow(node, path, readBelow); readBelow = true) {
        const Prompt question{"Cannot switch to " + node.Key(), PromptButtons::RetryCancel};
        if (browser_.prompts.Ask(question) != Answer::Retry) return ShowNoFolder();
    }
    LastFolder_ = path;
    LastFolderCount_ = browser_.list->RowCount();
    Ignore(browser_.FileViewFile.Refresh());
    browser_.box->AddimgCombopath(path);
    browser_.session.ImageValid = false;
}

bool FolderTree::TryToShow(FolderNode& node, const std::string& path, bool readBelow) {
    if (readBelow && !ReadSubfolders(node, path)) return false;
    FileEnumerator& files = browser_.FileViewFile;
    // A typed path may have led the list away from the folder of the last click.
    const bool isThere = files.Path() == path;
    if ((path != LastFolder_ || !isThere) && !files.SetPath(path)) return false;
    // The list has lost rows, or shows those of another folder that could not be left.
    if (isThere && browser_.list->RowCount() != LastFolderCount_) browser_.list->FileViewFile_PathChange();
    return true;
}

bool FolderTree::ReadSubfolders(FolderNode& node, const std::string& path) {
    if (!DirTreeViewSClick_.SetPath(path)) return false;
    const int count = DirTreeViewSClick_.ListCount();
    if (IsRead(node) && node.childCount() == count) return true;

    std::unordered_map<std::string, FolderNode*> former;
    for (int i = 0; i < node.childCount(); ++i) former.emplace(RealPathOf(*node.Child(i)), node.Child(i));
    QList<QTreeWidgetItem*> added;
    for (int i = 0; i < count; ++i) {
        const std::string& full = DirTreeViewSClick_.List(i);
        FolderNode* child = nullptr;
        if (auto entry = former.extract(full)) {
            child = entry.mapped();
        } else {
            std::string name = full;
            GetPath(name);
            added << (child = NewFolderNode(JoinPath(node.Key(), name)));
        }
        LookAhead(*child);
    }
    // What is left has gone from the disk.
    for (const auto& [goneFolder, goneNode] : former) delete goneNode;
    node.addChildren(added);
    node.SetUnread(false);
    ExpandPending_ = false;
    MarkRead(node);
    return true;
}

void FolderTree::ShowNoFolder() {
    ExpandPending_ = false;
    browser_.list->ClearRows();
    BrowserHost& host = browser_.host;
    // Not the words that a rebuild of the list has for this: so it is wanted.
    host.SetFilePanel(1, browser_.session.ConvertOptions.ListAllFiles
                             ? "No files found in the current folder."
                             : "No image files found in the current folder.");
    host.SetFilePanel(2, "");
    host.SetFilePanel(3, "");
}

}  // namespace tessara
