#include "browse/PathBox.h"

#include <QApplication>
#include <QLineEdit>

#include "tests/browse/BrowsedFolders.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;
using test::Names;

class PathBoxTest : public test::BrowsedFolders {
  protected:
    QComboBox& Combo() const { return *box_.ImageComboPath(); }
    Names Items() const {
        Names items;
        for (int i = 0; i < Combo().count(); ++i) items.push_back(Combo().itemText(i).toStdString());
        return items;
    }
    void Add(std::string path) { box_.AddimgCombopath(path); }
};

TEST_F(PathBoxTest, ATypedPathWalksDownTheDrive) {
    for (const char* name : {"disk/Upper", "disk/upper", "disk/back\\slash", "disk/\xff", "stick/dcim/1"})
        fs::create_directories(folder_.File(name));
    tree_.RefreshTreeViewS();
    struct Case {
        std::string typed;
        std::string key;
    };
    const Case cases[] = {
        {disk_ + "/a/b", disk_ + "/a/b"},
        {disk_ + "/a/b/", disk_ + "/a/b"},
        {"a/../desk", disk_ + "/desk"},
        {"a", disk_ + "/a"},
        {"upper", disk_ + "/upper"},
        {"back\\slash", disk_ + "/back\\slash"},
        {"a\\b\\c", disk_ + "/a/b/c"},
        {disk_ + "/\xff", disk_ + "/\xff"},
        {disk_ + "/.hidden", disk_},
        {stick_ + "/dcim", stick_ + "/dcim"},
        {"dcim/1", stick_ + "/dcim/1"},
        {"", stick_},
        {disk_ + "/desk/icons", disk_ + "/desk/icons"},
    };
    for (const Case& row : cases) {
        host.calls.clear();
        GoTo(row.typed);
        EXPECT_EQ(SelectedKey(), row.key) << row.typed;
        EXPECT_EQ(browser.FileViewFile.Path(), row.key) << row.typed;
        EXPECT_EQ(box_.Text(), row.key) << row.typed;
        EXPECT_EQ(host.caption, "Tessara Pro v4.0 -> " + row.key) << row.typed;
        EXPECT_EQ(host.calls.back(), "UndoRefresh KILL") << row.typed;
    }
    EXPECT_EQ(tree_.SelectedNode()->Parent()->Key(), disk_ + "/desk");
    EXPECT_EQ(tree_.SelectedNode()->Parent()->Parent()->Key(), disk_) << "not the node of the desktop";
    EXPECT_TRUE(prompts.asked.empty());
    EXPECT_FALSE(host.busy);
}

TEST_F(PathBoxTest, TheWalkReadsOneLevelAheadAndOpensItsEnd) {
    GoTo(disk_ + "/a");
    EXPECT_TRUE(InDisk("a").isExpanded());
    EXPECT_EQ(Below(InDisk("a/b")), Names{"c"});
    EXPECT_TRUE(Below(InDisk("a/b/c")).empty());
    session.ImageValid = true;
    GoTo(box_.Text());
    EXPECT_EQ(SelectedKey(), disk_ + "/a");
    EXPECT_EQ(Rebuilds(), 1) << "the same path again rebuilds nothing";
    EXPECT_FALSE(session.ImageValid);
}

TEST_F(PathBoxTest, AMissingPathIsRetriedOrLeftInTheBox) {
    GoTo(disk_ + "/a");
    prompts.answers = {Answer::Retry, Answer::Cancel};
    GoTo("none");
    const std::string path = disk_ + "/none/";
    EXPECT_EQ(Asked(), Names(2, "Cannot switch to " + path));
    EXPECT_EQ(box_.Text(), path);
    EXPECT_EQ(SelectedKey(), "none");
    EXPECT_EQ(browser.FileViewFile.Path(), disk_ + "/a");
    EXPECT_EQ(host.calls.back(), "UndoRefresh KILL");
    EXPECT_FALSE(session.StartFolderBad);
    EXPECT_EQ(Items(), Names{disk_ + "/a"}) << "no folder to return to";

    box_.SetText(disk_ + "/a/missing");
    box_.ImageCobomKeyup(true);
    EXPECT_EQ(SelectedKey(), disk_ + "/a") << "in silence it goes as far as it can";

    session.Starting = true;
    GoTo(path);
    EXPECT_TRUE(session.StartFolderBad);
    EXPECT_EQ(prompts.asked.size(), 2u);
}

TEST_F(PathBoxTest, EnterCountsWhereItWasPressed) {
    box_.show();
    QApplication::setActiveWindow(&box_);
    QLineEdit* line = Combo().lineEdit();
    const auto background = [&] { return Combo().palette().color(QPalette::Base).value(); };
    line->clearFocus();
    EXPECT_EQ(background(), 230);
    line->setFocus();
    EXPECT_EQ(background(), 255);
    line->setText(QString::fromStdString(disk_ + "/a"));
    QTest::keyRelease(line, Qt::Key_Return);
    EXPECT_EQ(SelectedKey(), "none") << "the key has answered a message";
    QTest::keyClick(line, Qt::Key_Return);
    EXPECT_EQ(SelectedKey(), disk_ + "/a");
    box_.SetText(disk_ + "/desk");
    emit Combo().activated(0);
    EXPECT_EQ(SelectedKey(), disk_ + "/a") << "an item of the list is where to go";
}

TEST_F(PathBoxTest, TheListKeepsTheLastPathsInTheirOrder) {
    Click(InDisk("a"));
    Click(Node("My Documents"));
    Click(InDisk("desk"));
    Click(InDisk("a"));
    const Names items = {disk_ + "/a", documents_, disk_ + "/desk"};
    EXPECT_EQ(Items(), items);
    EXPECT_EQ(Combo().currentIndex(), 0);
    EXPECT_EQ(box_.Text(), disk_ + "/a");
    for (int i = 0; i < 18; ++i) Add("/p" + std::to_string(i));
    EXPECT_EQ(Combo().count(), 21);
    Add("mycomputer");
    EXPECT_EQ(Items().front(), documents_);
    EXPECT_EQ(box_.Text(), "/p17");
    std::string path = "My Documents/A";
    box_.AddimgCombopath(path);
    EXPECT_EQ(path, documents_ + "/A");
    EXPECT_EQ(Items().back(), path);
    EXPECT_EQ(Combo().count(), 21);
    EXPECT_EQ(host.treeToolTip, path);
}

TEST_F(PathBoxTest, RecentPathsOutliveTheRun) {
    box_.SetComboPath();
    box_.SaveGetComBox(true);
    EXPECT_EQ(box_.Text(), session.AppPath);
    EXPECT_TRUE(Items().empty());
    tree_.SelectNode(Node(disk_));
    for (const char* path : {"/b", "/\xff", "/a"}) Add(path);
    box_.SaveGetComBox(false);

    PathBox next(browser, nullptr);
    next.SetComboPath();
    next.SaveGetComBox(true);
    EXPECT_EQ(next.Text(), session.AppPath) << "the text is no item of the list";
    ASSERT_EQ(next.ImageComboPath()->count(), 3);
    emit next.ImageComboPath()->activated(1);
    EXPECT_EQ(Asked(), Names{"Cannot switch to /\xff/"});
}

}  // namespace
}  // namespace tessara
