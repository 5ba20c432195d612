#include <sys/stat.h>
#include <unistd.h>

#include "tests/mainwindow/DrivenMainForm.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;
using test::Names;

/// Folders and files that are not as one expects them.
class BitingFoldersTest : public test::DrivenMainForm {
  protected:
    const std::string photos_ = disk_ + "/photos";

    std::string SelectedKey() const {
        const FolderNode* node = form_->Tree().SelectedNode();
        return node == nullptr ? "none" : node->Key();
    }
};

TEST_F(BitingFoldersTest, AnyNameIsEnteredShownCheckedAndDeleted) {
    const std::string kNames[] = {
        "with blanks",
        " ",
        "Gr\xc3\xb6\xc3\x9f"
        "e",
        "line\nbreak",
        "no \xff\xfe text",
        "-rf",
        "*?[a]'\"$",
        "back\\slash",
        std::string(251, 'x'),
    };
    for (const std::string& name : kNames) {
        fs::create_directories(photos_ + "/" + name + "dirs");
        MakePicture("photos/" + name + "dirs/" + name + ".bmp", 3);
    }
    ASSERT_TRUE(Load());
    for (const std::string& name : kNames) {
        SCOPED_TRACE(name);
        const std::string folder = photos_ + "/" + name + "dirs", file = folder + "/" + name + ".bmp";
        ClickNode(photos_);
        TypePath(folder);
        EXPECT_EQ(SelectedKey(), folder);
        ClickNode(photos_);
        ClickNode(folder);
        EXPECT_EQ(form_->Box().Text(), folder);
        ASSERT_EQ(List().topLevelItemCount(), 1);
        EXPECT_EQ(form_->List().KeyOf(0), file);
        ClickRow(0);
        EXPECT_EQ(PaneWidths(), std::pair(3, 3));
        form_->List().SetChecked(0, true);
        desktop_.prompts.answers = {Answer::Yes};
        form_->Imagetool_Click(5);
        EXPECT_FALSE(fs::exists(file));
        EXPECT_TRUE(Rows().empty());
    }
}

TEST_F(BitingFoldersTest, AFolderThatGoesWhileItIsShownCanStillBeLeft) {
    MakePicture("photos/a.bmp", 3);
    MakePicture("photos/b.bmp", 5);
    MakePicture("app/c.bmp", 7);
    ASSERT_TRUE(Load());
    ClickNode(photos_);
    ClickRow(0);
    fs::remove_all(photos_);
    ClickRow(1);
    EXPECT_EQ(PaneWidths(), std::pair(0, 0));
    EXPECT_EQ(Label("LabelPict"), "Size : 0 x 0");
    form_->List().FileViewFile_PathChange();
    EXPECT_EQ(Panel(1), "No image file found in current folder.");
    ClickNode(app_);
    EXPECT_EQ(Rows(), Names{"c.bmp"});
    EXPECT_TRUE(desktop_.prompts.asked.empty());
    desktop_.prompts.answers = {Answer::Retry, Answer::Cancel};
    ClickNode(photos_);
    EXPECT_EQ(Asked(), Names(2, "Cannot switch to " + photos_));
    EXPECT_EQ(Panel(1), "No image files found in the current folder.");
    ClickNode(app_);
    EXPECT_EQ(Rows(), Names{"c.bmp"});
}

TEST_F(BitingFoldersTest, LinksThatLoopAreFollowedAsFarAsOneWalks) {
    fs::create_directory_symlink(disk_, photos_ + "/loop");
    fs::create_symlink("self.bmp", photos_ + "/self.bmp");
    fs::create_symlink("nowhere", photos_ + "/dangling.bmp");
    ASSERT_TRUE(Load());
    std::string path = photos_;
    for (int depth = 0; depth < 5; ++depth) {
        TypePath(path);
        EXPECT_EQ(SelectedKey(), path);
        EXPECT_EQ(Rows(), (Names{"dangling.bmp", "self.bmp"}));
        path += "/loop/photos";
    }
    for (const int row : {0, 1}) {
        ClickRow(row);
        EXPECT_EQ(PaneWidths(), std::pair(0, 0));
    }
    for (int depth = 0; depth < 50; ++depth) path += "/loop/photos";
    TypePath(path);
    EXPECT_EQ(Asked(), Names{"Cannot switch to " + path + "/"}) << "the system follows only so many";
}

TEST_F(BitingFoldersTest, WhatIsNoFileOrNoPictureLeavesThePanesEmpty) {
    MakePicture("photos/a.bmp", 3);
    ASSERT_EQ(mkfifo((photos_ + "/b.bmp").c_str(), 0600), 0);
    test::WriteWhole(photos_ + "/c.bmp", AsBytes("no picture"));
    test::WriteWhole(photos_ + "/d.bmp", {});
    ASSERT_TRUE(Load());
    ClickNode(photos_);
    for (const int row : {1, 2, 3}) {
        ClickRow(0);
        EXPECT_EQ(PaneWidths(), std::pair(3, 3));
        ClickRow(row);
        EXPECT_EQ(PaneWidths(), std::pair(0, 0)) << row;
    }
}

TEST_F(BitingFoldersTest, WhatMayNotBeReadIsTold) {
    if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
    MakePicture("photos/a.bmp", 3);
    chmod((photos_ + "/a.bmp").c_str(), 0);
    fs::create_directories(photos_ + "/locked/below");
    chmod((photos_ + "/locked").c_str(), 0);
    ASSERT_TRUE(Load());
    ClickNode(photos_);
    ClickRow(0);
    EXPECT_EQ(PaneWidths(), std::pair(0, 0));
    ClickNode(photos_ + "/locked");
    EXPECT_EQ(Asked(), Names{"Cannot switch to " + photos_ + "/locked"});
    chmod((photos_ + "/locked").c_str(), 0700);
}

TEST_F(BitingFoldersTest, OnAFullDiskItRunsWithoutItsFiles) {
    for (const char* name : {"/ts40.cfg", "/Recentlyused.src"}) fs::create_symlink("/dev/full", app_ + name);
    test::WriteWhole(app_ + "/Undo", AsBytes("no folder"));
    MakePicture("photos/a.bmp", 3);
    ASSERT_TRUE(Load());
    ClickNode(photos_);
    ClickRow(0);
    EXPECT_EQ(PaneWidths(), std::pair(3, 3));
    EXPECT_TRUE(form_->close());
    EXPECT_TRUE(desktop_.prompts.asked.empty());
    EXPECT_TRUE(fs::is_symlink(app_ + "/ts40.cfg"));
}

}  // namespace
}  // namespace tessara
