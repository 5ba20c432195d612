#include "browse/FolderTree.h"

#include "tests/browse/BrowsedFolders.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;
using test::Names;

class FolderTreeTest : public test::BrowsedFolders {
  protected:
    void ClickOnMark(const FolderNode& node) const {
        ClickAt(PlaceOf(node).center() - QPoint(PlaceOf(node).width() / 2 + 8, 0));
    }
};

TEST_F(FolderTreeTest, TheTopHasFixedDrivesReadOneLevelAhead) {
    Names roots;
    for (int i = 0; i < tree_.TreeViewS()->topLevelItemCount(); ++i)
        roots.push_back(tree_.TreeViewS()->topLevelItem(i)->text(0).toStdString());
    EXPECT_EQ(roots, (Names{"My Computer", "Desktop", "My Documents"}));
    EXPECT_EQ(Below(*tree_.Computer()), (Names{"DISK (" + disk_ + ")", "STICK (" + stick_ + ")"}));
    EXPECT_EQ(Below(Node(disk_)), (Names{"a", "desk"})) << "the desktop stands in its folder too";
    EXPECT_TRUE(Below(InDisk("a")).empty());
    EXPECT_EQ(Below(Node("My Documents")), Names{"A"});
    EXPECT_EQ(Below(InDisk("desk")), Names{"icons"});
    fs::create_directories(folder_.File("stick/dcim"));
    tree_.ResetTreeViewS(false);
    EXPECT_EQ(Below(*tree_.Computer()).size(), 2u) << "a second build doubles nothing";
    EXPECT_TRUE(Below(Node(stick_)).empty()) << "a removable drive is not touched";
    EXPECT_TRUE(Node(stick_).CanExpand()) << "but can be opened";
    EXPECT_FALSE(host.busy);
}

TEST_F(FolderTreeTest, ALookAheadCanRunTwiceAndBeUndone) {
    tree_.GetTreePath(disk_ + "/a");
    tree_.GetTreePath(disk_ + "/a");
    EXPECT_EQ(Below(InDisk("a")), (Names{"b", "e"}));
    tree_.DelTreePath(disk_ + "/a");
    EXPECT_TRUE(Below(InDisk("a")).empty());
}

TEST_F(FolderTreeTest, AClickShowsTheFolderAndAnExpandReadsBelow) {
    test::WriteWhole(folder_.File("disk/a/p.bmp"), {});
    tree_.TreeViewS()->expandItem(tree_.Computer());
    ClickOnMark(Node(disk_));
    EXPECT_EQ(SelectedKey(), disk_);
    EXPECT_EQ(browser.FileViewFile.Path(), disk_) << "the list follows the expanded node";
    EXPECT_EQ(Below(InDisk("a")), (Names{"b", "e"}));
    EXPECT_TRUE(Below(InDisk("a/b")).empty());

    session.ImageValid = true;
    ClickAt(PlaceOf(InDisk("a")).center());
    EXPECT_EQ(SelectedKey(), disk_ + "/a");
    EXPECT_EQ(list_.RowCount(), 1);
    EXPECT_TRUE(Below(InDisk("a/b")).empty()) << "a plain click reads no folders";
    EXPECT_FALSE(session.ImageValid);
    EXPECT_EQ(host.treeToolTip, disk_ + "/a");
    EXPECT_EQ(host.caption, "Tessara Pro v4.0 -> " + disk_ + "/a");
    EXPECT_EQ(box_.Text(), disk_ + "/a");

    for (int i = 0; i < 3; ++i) ClickOnMark(InDisk("a"));
    EXPECT_TRUE(InDisk("a").isExpanded());
    EXPECT_EQ(Below(InDisk("a")), (Names{"b", "e"}));
    EXPECT_EQ(Below(InDisk("a/b")), Names{"c"});
    EXPECT_TRUE(Below(InDisk("a/e")).empty());
    EXPECT_TRUE(prompts.asked.empty());
}

TEST_F(FolderTreeTest, KeysThatMoveTheHighlightShowItsFolder) {
    GoTo(disk_ + "/a");
    struct Row {
        Qt::Key key;
        std::string shown;
    };
    const Row rows[] = {{Qt::Key_Down, disk_ + "/a/b"},    {Qt::Key_Asterisk, disk_ + "/a/b"},
                        {Qt::Key_Right, disk_ + "/a/b/c"}, {Qt::Key_Left, disk_ + "/a/b"},
                        {Qt::Key_Up, disk_ + "/a"},        {Qt::Key_End, documents_},
                        {Qt::Key_PageUp, documents_},      {Qt::Key_Down, disk_}};
    for (const Row& row : rows) {
        QTest::keyClick(tree_.TreeViewS(), row.key);
        EXPECT_EQ(browser.FileViewFile.Path(), row.shown) << QKeySequence(row.key).toString().toStdString();
    }
    EXPECT_TRUE(InDisk("a/b").isExpanded());
    EXPECT_FALSE(InDisk("a/b/c").isExpanded()) << "one level at a time";
    session.ImageValid = true;
    QTest::keyClick(tree_.TreeViewS(), Qt::Key_Left);
    EXPECT_FALSE(Node(disk_).isExpanded());
    EXPECT_TRUE(session.ImageValid) << "the highlight has stayed where it was";
}

TEST_F(FolderTreeTest, ADeepNodeIsScrolledToItsName) {
    std::string path = disk_;
    for (int depth = 0; depth < 30; ++depth) path += "/deeper";
    fs::create_directories(path + "/end");
    GoTo(path);
    const QRect cell = PlaceOf(*tree_.SelectedNode());
    EXPECT_GE(cell.left(), 0);
    EXPECT_LT(cell.left() + 60, Viewport()->width());
    GoTo(disk_);
    EXPECT_GE(PlaceOf(Node(disk_)).left(), 0);
}

TEST_F(FolderTreeTest, RowsReachTheTreesEdgeWithAScrollBarAndWithout) {
    FolderTree tree{browser, nullptr};
    tree.resize(600, 30);
    tree.ResetTreeViewS(false);
    tree.Computer()->setExpanded(true);
    tree.EnsureVisible(*tree.Computer());
    for (const int height : {900, 30}) {
        tree.resize(600, height);
        tree.show();  // it was filled before, too low for its rows
        const int right = tree.TreeViewS()->visualItemRect(tree.Computer()).right();
        EXPECT_EQ(right, tree.TreeViewS()->viewport()->width() - 1) << height;
    }
}

TEST_F(FolderTreeTest, OnlyInputIsAClick) {
    Click(InDisk("a"));
    const std::size_t before = host.calls.size();
    tree_.SelectNode(Node(disk_));
    tree_.Expand(Node(disk_));
    EXPECT_EQ(host.calls.size(), before);
    EXPECT_EQ(browser.FileViewFile.Path(), disk_ + "/a");
    // The pointer slips off the node: what is selected is shown all the same.
    const QPoint outside(150, Viewport()->height() - 5);
    for (const QPoint& end : {outside, PlaceOf(InDisk("a")).center()}) {
        QTest::mousePress(Viewport(), Qt::LeftButton, {}, PlaceOf(InDisk("desk")).center());
        QTest::mouseMove(Viewport(), end);
        QTest::mouseRelease(Viewport(), Qt::LeftButton, {}, end);
        EXPECT_EQ(SelectedKey(), disk_ + "/desk");
        EXPECT_EQ(browser.FileViewFile.Path(), disk_ + "/desk");
    }
    ClickAt(PlaceOf(InDisk("a")).center(), Qt::RightButton);
    EXPECT_EQ(host.calls.back(), "PopMenu TreeViewS");
    ClickAt(outside);
    EXPECT_EQ(SelectedKey(), disk_ + "/desk");
}

TEST_F(FolderTreeTest, DocumentsKeepTheirVirtualKeys) {
    test::WriteWhole(folder_.File("docs/A/x.bmp"), {});
    Expand(Node("My Documents"));
    Click(Node("My Documents/A"));
    EXPECT_EQ(Below(Node("My Documents/A")), Names{"x"});
    EXPECT_EQ(browser.FileViewFile.Path(), documents_ + "/A");
    EXPECT_EQ(list_.RowCount(), 1);
    EXPECT_EQ(box_.Text(), documents_ + "/A");
    EXPECT_EQ(host.caption, "Tessara Pro v4.0 -> My Documents/A");

    Click(*tree_.Computer());
    EXPECT_EQ(list_.RowCount(), 1) << "the computer has no files of its own";
    EXPECT_EQ(box_.Text(), documents_ + "/A");
    EXPECT_EQ(host.caption, "Tessara Pro v4.0 -> mycomputer");
}

TEST_F(FolderTreeTest, TheListIsMadeAnewWhenItMust) {
    test::WriteWhole(folder_.File("disk/a/p.bmp"), {});
    const auto rebuildsOf = [this](const std::function<void()>& action) {
        const int before = Rebuilds();
        action();
        return Rebuilds() - before;
    };
    EXPECT_EQ(rebuildsOf([&] { Click(InDisk("a")); }), 1);
    EXPECT_EQ(rebuildsOf([&] { Click(InDisk("a")); }), 0);
    list_.ClearRows();
    EXPECT_EQ(rebuildsOf([&] { Click(InDisk("a")); }), 1);
    GoTo(disk_ + "/desk");
    EXPECT_EQ(rebuildsOf([&] { Click(InDisk("a")); }), 1) << "a typed path has led away";
    EXPECT_EQ(list_.RowCount(), 1);
    EXPECT_EQ(rebuildsOf([&] { emit tree_.TreeViewS()->itemDoubleClicked(&Node(disk_), 0); }), 1);
}

TEST_F(FolderTreeTest, AMissingDriveIsRetriedOrGivenUp) {
    Click(InDisk("a"));
    test::WriteWhole(folder_.File("disk/p.bmp"), {});
    Click(Node(disk_));
    host.filePanels = {{2, "old"}, {3, "old"}};
    prompts.answers = {Answer::Retry, Answer::Cancel};
    Expand(Node(stick_));
    EXPECT_EQ(Asked(), Names(2, "Cannot switch to " + stick_));
    EXPECT_EQ(prompts.asked[0].buttons, PromptButtons::RetryCancel);
    EXPECT_EQ(list_.RowCount(), 0);
    EXPECT_EQ(host.filePanels[1], "No image files found in the current folder.");
    EXPECT_EQ(host.filePanels[2] + host.filePanels[3], "");
    EXPECT_EQ(browser.FileViewFile.Path(), disk_);
    EXPECT_EQ(host.treeToolTip, disk_);
    EXPECT_EQ(host.caption, "Tessara Pro v4.0 -> " + stick_);
    EXPECT_FALSE(host.busy);
    session.ConvertOptions.ListAllFiles = true;
    Click(Node(stick_));
    EXPECT_EQ(host.filePanels[1], "No files found in the current folder.");
    prompts.asked.clear();
    fs::create_directories(folder_.File("stick/dcim/1"));
    Expand(Node(stick_));
    EXPECT_TRUE(prompts.asked.empty());
    EXPECT_EQ(browser.FileViewFile.Path(), stick_);
    EXPECT_EQ(Below(Node(stick_)), Names{"dcim"});
    EXPECT_TRUE(Node(stick_ + "/dcim").CanExpand());
    EXPECT_FALSE(Node(stick_ + "/dcim/1").CanExpand());
}

TEST_F(FolderTreeTest, FoldersThatCameAndWentAreSeenWhenTheirNumberChanges) {
    Expand(Node(disk_));
    FolderNode& a = InDisk("a");
    Expand(a);
    fs::create_directories(disk_ + "/a/f/g");
    fs::create_directories(disk_ + "/a/h");
    fs::remove(disk_ + "/a/e");
    Expand(a);
    EXPECT_EQ(Below(a), (Names{"b", "f", "h"}));
    EXPECT_EQ(Below(InDisk("a/f")), Names{"g"});
    fs::rename(disk_ + "/a/h", disk_ + "/a/i");
    Expand(a);
    EXPECT_EQ(Below(a), (Names{"b", "f", "h"})) << "as many as before: nothing is read";
    tree_.ResetTreeViewS(false);
    Expand(a);
    EXPECT_EQ(Below(a), (Names{"b", "f", "i"})) << "a build forgets what was read";
}

TEST_F(FolderTreeTest, CollapseEmptiesTheListAndRefreshComesBack) {
    test::WriteWhole(folder_.File("disk/a/b/p.bmp"), {});
    GoTo(disk_ + "/a/b");
    tree_.CloseTreeS();
    EXPECT_FALSE(tree_.Computer()->isExpanded());
    EXPECT_EQ(list_.RowCount(), 0);
    EXPECT_EQ(host.filePanels, (std::map<int, std::string>{{1, ""}, {2, ""}, {3, ""}}));
    EXPECT_EQ(SelectedKey(), disk_ + "/a/b");
    EXPECT_EQ(browser.FileViewFile.Path(), disk_ + "/a/b");

    fs::create_directory(disk_ + "/new");
    session.SelectedCount = 7;
    tree_.RefreshTreeViewS();
    EXPECT_EQ(SelectedKey(), disk_ + "/a/b");
    EXPECT_EQ(Below(Node(disk_)), (Names{"a", "desk", "new"}));
    EXPECT_EQ(list_.RowCount(), 1);
    EXPECT_EQ(session.SelectedCount, 0);

    // Without rows the box leads, and the tree stays at its top.
    GoTo(disk_ + "/desk");
    box_.SetText(disk_ + "/a/b");
    tree_.RefreshTreeViewS();
    EXPECT_EQ(SelectedKey(), "none");
    EXPECT_EQ(browser.FileViewFile.Path(), disk_ + "/a/b");
    EXPECT_EQ(list_.RowCount(), 1);
}

TEST_F(FolderTreeTest, DraggingNearTheEdgesScrolls) {
    for (int i = 0; i < 90; ++i) fs::create_directories(disk_ + "/n" + std::to_string(100 + i) + "/s");
    tree_.RefreshTreeViewS();
    tree_.Expand(*tree_.Computer());
    Expand(Node(disk_));
    tree_.TreeViewS()->scrollToTop();
    QCoreApplication::processEvents();
    const auto textAt = [this](int y) { return tree_.TreeViewS()->itemAt(60, y)->text(0).toStdString(); };
    const std::string middle = disk_ + "/" + textAt(200);
    tree_.TreeViewS_DragOver(60 * 15, 200 * 15);
    EXPECT_EQ(SelectedKey(), middle) << "the node below the pointer expands";
    EXPECT_TRUE(Node(middle).isExpanded());
    EXPECT_EQ(textAt(2), "My Computer");
    tree_.TreeViewS_DragOver(60 * 15, 390 * 15);
    const std::string top = textAt(2);
    EXPECT_NE(top, "My Computer");
    tree_.TreeViewS_DragOver(60 * 15, 2 * 15);
    EXPECT_LT(textAt(2), top);
}

}  // namespace
}  // namespace tessara
