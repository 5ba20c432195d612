#include "browse/FolderNaming.h"

#include <QApplication>
#include <QLineEdit>

#include "tests/browse/BrowsedFolders.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;
using test::Names;

class FolderNamingTest : public test::BrowsedFolders {
  protected:
    FolderNaming& naming_ = tree_.Naming();

    void Start(const std::string& parentKey) {
        tree_.SelectNode(Node(parentKey));
        naming_.AddNewFolderNode();
    }
    /// The open editor; null where no label is edited.
    QLineEdit* Editor() const { return tree_.TreeViewS()->viewport()->findChild<QLineEdit*>(); }
    void Type(const QString& name) const {
        Editor()->setText(name);
        Press(Qt::Key_Return);
    }
    void Press(Qt::Key key) const {
        QTest::keyClick(Editor(), key);
        Settle();
    }
    /// An edit ends behind its last event, and its editor goes behind the edit.
    static void Settle() {
        for (int i = 0; i < 3; ++i) QCoreApplication::sendPostedEvents(nullptr, 0);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void ClickOn(const FolderNode& node) const {
        ClickAt(PlaceOf(node).center());
        Settle();
    }
};

TEST_F(FolderNamingTest, AGoodNameMakesTheFolder) {
    Start(disk_ + "/a");
    EXPECT_EQ(SelectedKey(), disk_ + "/a/New Folder ???");
    EXPECT_EQ(Editor()->text(), "New Folder ???");
    EXPECT_EQ(Editor()->selectedText(), Editor()->text());
    EXPECT_FALSE(host.keyPreview);
    Type(QString::fromUtf8("Fotos \xc3\xa4"));
    EXPECT_EQ(SelectedKey(), disk_ + "/a/Fotos \xc3\xa4");
    EXPECT_TRUE(fs::is_directory(disk_ + "/a/Fotos \xc3\xa4"));
    EXPECT_EQ(InDisk("a/Fotos \xc3\xa4").Text().toStdString(), "Fotos \xc3\xa4");
    EXPECT_TRUE(host.keyPreview);
    EXPECT_FALSE(naming_.IsNaming());
    EXPECT_TRUE(prompts.asked.empty());
    EXPECT_TRUE(fs::is_empty(session.AppPath));
}

TEST_F(FolderNamingTest, ABadNameIsAskedForAgain) {
    GoTo(disk_ + "/a");
    Start(disk_ + "/a");
    const Names bad = {
        "", " ", ".", "..", "what?", "b", "x/y", "x\\y", "c:", std::string(256, 'x'), "New Folder ???"};
    for (const std::string& name : bad) {
        prompts.asked.clear();
        Type(QString::fromStdString(name));
        EXPECT_EQ(Asked(), Names{"Folder Name has existed or invalid!"}) << name;
        EXPECT_TRUE(naming_.IsNaming()) << name;
        ASSERT_NE(Editor(), nullptr) << name;
        EXPECT_EQ(Editor()->text(), "New Folder ???") << name;
        EXPECT_FALSE(host.keyPreview) << name;
    }
    EXPECT_EQ(prompts.asked[0].icon, PromptIcon::Warning);
    Type("good");
    EXPECT_TRUE(fs::is_directory(disk_ + "/a/good")) << "what was refused leaves no trace";
    EXPECT_EQ(std::distance(fs::directory_iterator(disk_ + "/a"), {}), 3);
}

TEST_F(FolderNamingTest, ThereIsNoWayOutWithoutAName) {
    QApplication::setActiveWindow(&tree_);
    Start(disk_);
    const std::vector<std::pair<const char*, std::function<void()>>> ways = {
        {"Esc", [this] { Press(Qt::Key_Escape); }},
        {"Tab", [this] { Press(Qt::Key_Tab); }},
        {"a click on another node", [this] { ClickOn(InDisk("a")); }},
        {"the focus goes",
         [this] {
             Editor()->clearFocus();
             Settle();
         }},
        {"a click by code", [this] { tree_.TreeViewS_Click(); }},
        {"another new folder", [this] { naming_.AddNewFolderNode(); }},
    };
    for (const auto& [name, leave] : ways) {
        leave();
        EXPECT_TRUE(naming_.IsNaming()) << name;
        EXPECT_NE(Editor(), nullptr) << name;
        EXPECT_EQ(SelectedKey(), disk_ + "/New Folder ???") << name;
    }
    EXPECT_EQ(Asked(), Names(5, "Folder Name has existed or invalid!"));
    EXPECT_EQ(Below(Node(disk_)), (Names{"a", "desk", "New Folder ???"}));
    tree_.RefreshTreeViewS();
    EXPECT_FALSE(naming_.IsNaming()) << "a new tree has no such node";
    EXPECT_TRUE(host.keyPreview);
}

TEST_F(FolderNamingTest, AKeyOfTheEditorDoesNotEnterTheFolder) {
    QApplication::setActiveWindow(&tree_);
    GoTo(disk_ + "/a");
    Start(disk_ + "/a");
    QTest::keyPress(Editor(), Qt::Key_Control);
    Editor()->setText("one");
    Editor()->clearFocus();
    Settle();
    naming_.AddNewFolderNode();
    Type("two");
    QTest::keyRelease(tree_.TreeViewS(), Qt::Key_Return);
    EXPECT_EQ(SelectedKey(), disk_ + "/a/one/two");
    EXPECT_EQ(browser.FileViewFile.Path(), disk_ + "/a");
}

TEST_F(FolderNamingTest, AClickElsewhereTakesTheNameAndGoesThrough) {
    QApplication::setActiveWindow(&tree_);
    Start(disk_);
    Editor()->setText("typed");
    ClickOn(InDisk("a"));
    EXPECT_TRUE(fs::is_directory(disk_ + "/typed"));
    EXPECT_EQ(SelectedKey(), disk_ + "/a");
    EXPECT_EQ(browser.FileViewFile.Path(), disk_ + "/a");
    EXPECT_TRUE(prompts.asked.empty());
}

TEST_F(FolderNamingTest, UnderDocumentsTheNewKeyIsReal) {
    Start("My Documents");
    EXPECT_EQ(SelectedKey(), documents_ + "/New Folder ???");
    Type("A");
    EXPECT_EQ(prompts.asked.size(), 1u) << "the folder stands in the tree under a virtual key";
    Type("B");
    EXPECT_TRUE(fs::is_directory(documents_ + "/B"));
    Expand(Node("My Documents"));
    EXPECT_EQ(Below(Node("My Documents")), (Names{"A", "B"})) << "and is not doubled";
}

TEST_F(FolderNamingTest, TheComputerTakesNoFolders) {
    tree_.Computer()->setExpanded(false);
    Start("mycomputer");
    EXPECT_FALSE(naming_.IsNaming());
    EXPECT_TRUE(tree_.Computer()->isExpanded());
    EXPECT_EQ(tree_.Computer()->childCount(), 2);
}

}  // namespace
}  // namespace tessara
