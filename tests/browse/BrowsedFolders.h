#pragma once

#include <gtest/gtest.h>

#include <QTest>
#include <filesystem>
#include <string>
#include <vector>

#include "browse/FileList.h"
#include "browse/FolderNaming.h"
#include "browse/FolderTree.h"
#include "browse/PathBox.h"
#include "browse/SelectionSummary.h"
#include "tests/Support.h"
#include "tests/browse/RecordingHost.h"

namespace tessara::test {

using Names = std::vector<std::string>;

/// Tree, box and list over folders on a real disk: a fixed drive "disk", a removable one "stick" (which is
/// not in yet), the desktop on the disk and the documents beside it.
class BrowsedFolders : public testing::Test, protected RecordedBrowser {
  protected:
    TemporaryFolder folder_;
    const std::string disk_ = folder_.File("disk");
    const std::string stick_ = folder_.File("stick");
    const std::string documents_ = folder_.File("docs");
    FileList list_{browser, nullptr};
    SelectionSummary summary_{browser};
    FolderTree tree_{browser, nullptr};
    PathBox box_{browser, nullptr};

    BrowsedFolders() {
        for (const char* name :
             {"disk/a/b/c/d", "disk/a/e", "disk/desk/icons", "disk/.hidden", "docs/A/x", "app"})
            std::filesystem::create_directories(folder_.File(name));
        shell.drives = {{disk_, disk_ + " [DISK]", DriveType::Fixed},
                        {stick_, stick_ + " [STICK]", DriveType::Removable}};
        session.AppPath = folder_.File("app");
        session.DesktopPath = disk_ + "/desk";
        session.DocumentsPath = documents_;
        session.Starting = false;
        tree_.resize(300, 400);
        tree_.show();
        tree_.ResetTreeViewS(false);
    }

    FolderNode& Node(const std::string& key) const {
        FolderNode* node = tree_.NodeOf(key);
        if (node == nullptr) throw std::runtime_error("no node " + key);
        return *node;
    }
    FolderNode& InDisk(const std::string& name) const { return Node(disk_ + "/" + name); }
    static Names Below(const FolderNode& node) {
        Names names;
        for (int i = 0; i < node.childCount(); ++i) names.push_back(node.Child(i)->Text().toStdString());
        return names;
    }
    std::string SelectedKey() const {
        const FolderNode* node = tree_.SelectedNode();
        return node == nullptr ? "none" : node->Key();
    }
    void Click(FolderNode& node) {
        tree_.SelectNode(node);
        tree_.TreeViewS_Click();
    }
    QWidget* Viewport() const { return tree_.TreeViewS()->viewport(); }
    QRect PlaceOf(const FolderNode& node) const { return tree_.TreeViewS()->visualItemRect(&node); }
    void ClickAt(const QPoint& position, Qt::MouseButton button = Qt::LeftButton) const {
        QTest::mouseClick(Viewport(), button, {}, position);
    }
    /// As the plus mark does it. A node that is expanded is collapsed first.
    void Expand(FolderNode& node) {
        node.setExpanded(false);
        tree_.Expand(node);
        tree_.TreeViewS_Click();
    }
    void GoTo(const std::string& path) {
        box_.SetText(path);
        box_.ImageCobomKeyup(false);
    }
    /// How often the list was made anew.
    int Rebuilds() const { return host.Count("ClearPanes"); }
    Names Asked() const {
        Names texts;
        for (const Prompt& prompt : prompts.asked) texts.push_back(prompt.text);
        return texts;
    }
};

}  // namespace tessara::test
