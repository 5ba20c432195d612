#include "browse/FolderNaming.h"

#include <sys/stat.h>

#include <utility>

#include "browse/FolderTree.h"
#include "browse/NodeKeys.h"
#include "browse/TreeDelegate.h"
#include "core/PathNames.h"
#include "desktop/PathText.h"

namespace tessara {
namespace {

/// No folder can have this name before it has been given one.
constexpr const char* kPlaceholder = "New Folder ???";

/// Without what is a part of a path on one system or another, and without the names that every folder has.
bool IsFolderName(const std::string& name) {
    return !name.empty() && name != " " && name != "." && name != ".." &&
           name.find_first_of("?\\:") == std::string::npos;
}

}  // namespace

FolderNaming::FolderNaming(Browser& browser, FolderTree& tree, TreeDelegate& delegate)
    : browser_(browser), tree_(tree) {
    delegate.labelEditEnded = [this](const QString& text) { EndLabelEditLater(BytesOfText(text)); };
}

void FolderNaming::AddNewFolderNode() {
    if (IsNaming()) return StartLabelEdit();
    FolderNode* parent = tree_.SelectedNode();
    if (parent == nullptr) return;
    tree_.Expand(*parent);
    if (parent->Key() == kComputerKey) return;
    placeholder_ = tree_.AddFolder(*parent, JoinPath(tree_.RealPathOf(*parent), kPlaceholder));
    tree_.SelectNode(*placeholder_);
    StartLabelEdit();
}

void FolderNaming::StartLabelEdit() {
    QTreeWidget* tree = tree_.TreeViewS();
    placeholder_->setFlags(placeholder_->flags() | Qt::ItemIsEditable);
    tree_.EnsureVisible(*placeholder_);
    browser_.host.SetKeyPreview(false);
    if (!tree->isPersistentEditorOpen(placeholder_)) tree->editItem(placeholder_);
}

/// Not at once: the editor is still closing, and a message would let it close again.
void FolderNaming::EndLabelEditLater(const std::string& name) {
    if (!IsNaming()) return;
    endedWith_ = name;
    QMetaObject::invokeMethod(this, &FolderNaming::FinishLabelEdit, Qt::QueuedConnection);
}

void FolderNaming::FinishLabelEdit() {
    if (const auto name = std::exchange(endedWith_, std::nullopt)) AfterLabelEdit(*name);
}

void FolderNaming::AfterLabelEdit(const std::string& name) {
    AddTreeViewSFolder(name);
    if (!IsNaming()) browser_.host.SetKeyPreview(true);
}

void FolderNaming::AddTreeViewSFolder(std::string name) {
    if (!IsNaming()) return;
    tree_.SelectNode(*placeholder_);
    if (name.empty()) name = BytesOfText(placeholder_->Text());
    std::string folder;
    std::string leaf;
    SplitPath(placeholder_->Key(), folder, leaf);
    bool ok = true;
    CheckTextN(folder, name, ok);
    if (!ok) return;
    FolderNode* node = std::exchange(placeholder_, nullptr);
    node->setFlags(node->flags() & ~Qt::ItemIsEditable);
    node->Rename(folder + name, ShownText(name));
    mkdir(node->Key().c_str(), 0777);
}

void FolderNaming::CheckTextN(const std::string& path, const std::string& name, bool& ok) {
    ok = IsFolderName(name) && !HasSibling(path + name) &&
         CheckPathNameValid(browser_.session.AppPath, name, PathNameKind::F);
    if (ok) return;
    browser_.prompts.Ask({"Folder Name has existed or invalid!", PromptButtons::Ok, PromptIcon::Warning});
    StartLabelEdit();
}

bool FolderNaming::HasSibling(const std::string& path) const {
    const FolderNode* parent = placeholder_->Parent();
    for (int i = 0; i < parent->childCount(); ++i)
        if (tree_.RealPathOf(*parent->Child(i)) == path) return true;
    return false;
}

void FolderNaming::Abandon() {
    if (!IsNaming()) return;
    placeholder_ = nullptr;
    endedWith_.reset();
    browser_.host.SetKeyPreview(true);
}

}  // namespace tessara
