#include "browse/FileCommands.h"

#include "tests/browse/BrowsedFolders.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;
using test::Names;

class FileCommandsTest : public test::BrowsedFolders {
  protected:
    FileCommands commands_{browser};

    /// Lists five files, of which those at the positions are checked.
    void Open(const std::vector<int>& checked) {
        for (const char* name : {"a.bmp", "b.bmp", "c.bmp", "d.bmp", "\xff.bmp"})
            test::WriteWhole(folder_.File("disk/a/" + std::string(name)), ByteVector(1024));
        test::Must(browser.FileViewFile.SetPath(disk_));
        test::Must(browser.FileViewFile.SetPath(disk_ + "/a"));
        for (const int row : checked) list_.SetChecked(row, true);
        summary_.SelectIcoSourceIco();
        prompts.asked.clear();
        host.calls.clear();
    }
    std::string Checks() const {
        std::string checks;
        for (int row = 0; row < list_.RowCount(); ++row) checks += list_.IsChecked(row) ? 'x' : '.';
        return checks;
    }
    /// The first characters of the names that are left in the list and on the disk.
    std::string Listed() const {
        std::string names;
        for (int row = 0; row < list_.RowCount(); ++row) names += list_.KeyOf(row)[disk_.size() + 3];
        return names;
    }
    std::string OnDisk() const {
        std::string names;
        for (const auto& entry : fs::directory_iterator(disk_ + "/a"))
            if (entry.is_regular_file()) names += entry.path().filename().string()[0];
        std::ranges::sort(names, {}, [](char c) { return static_cast<unsigned char>(c); });
        return names;
    }
};

TEST_F(FileCommandsTest, SelectionsCheckAndCount) {
    Open({1, 2});
    struct Case {
        int entry;
        const char* checks;
        int count;
    };
    for (const Case& row :
         {Case{2, "x..xx", 3}, {0, "xxxxx", 5}, {2, ".....", 0}, {0, "xxxxx", 5}, {1, ".....", 0}}) {
        commands_.mFile_Click(row.entry);
        EXPECT_EQ(Checks(), row.checks) << row.entry;
        EXPECT_EQ(session.SelectedCount, row.count) << row.entry;
    }
    EXPECT_EQ(host.Count("StopCapture"), 5);
}

TEST_F(FileCommandsTest, QuestionsDecideWhatIsDeleted) {
    const std::string menu = "Delete the files selected?";
    const std::string one = "Do you want to delete the selected file from your disk?";
    const std::string several = "Do you want to delete the selected files from your disk?";
    struct Case {
        std::string question;
        std::vector<int> checked;
        Answer answer;
        const char* listed;
        const char* onDisk;
        const char* message;
    };
    const Case cases[] = {
        {menu, {0, 4}, Answer::No, "abcd\xff", "abcd\xff", nullptr},
        {menu, {0, 4}, Answer::Yes, "bcd", "bcd", nullptr},
        {several, {1, 2}, Answer::Yes, "ad\xff", "ad\xff", "files have been deleted from your disk."},
        {several, {1, 2}, Answer::No, "ad\xff", "abcd\xff", "files have been deleted from above File List."},
        {one, {3}, Answer::Yes, "abc\xff", "abc\xff", "file has been deleted from your disk."},
        {one, {3}, Answer::No, "abc\xff", "abcd\xff", "file has been deleted from above File List."},
    };
    for (const Case& row : cases) {
        Open(row.checked);
        prompts.answers = {row.answer};
        if (row.question == menu)
            commands_.mFile_Click(5);
        else
            commands_.DeleteWithQuestions();
        EXPECT_EQ(Listed(), row.listed) << row.question;
        EXPECT_EQ(OnDisk(), row.onDisk) << row.question;
        Names texts = {row.question};
        if (row.message != nullptr) texts.push_back(std::string("The selected ") + row.message);
        EXPECT_EQ(Asked(), texts);
        EXPECT_EQ(prompts.asked.front().icon, PromptIcon::Warning);
        EXPECT_EQ(prompts.asked.front().buttons, PromptButtons::YesNo);
    }
}

TEST_F(FileCommandsTest, OnlyRemovalFromTheListSumsUpWhatIsLeft) {
    Open({0, 1, 4});
    int removed = 2;
    commands_.RemoveCheckedFromList(removed);
    EXPECT_EQ(removed, 5);
    EXPECT_EQ(host.filePanels[1], "Total 2 Files (2 KB)");
    EXPECT_EQ(session.SelectedCount, 0);

    Open({0, 1});
    fs::remove(disk_ + "/a/a.bmp");
    fs::create_directories(disk_ + "/a/a.bmp/full");
    commands_.DelFilefromListViewFile();
    EXPECT_EQ(Listed(), "cd\xff");
    EXPECT_EQ(OnDisk(), "cd\xff") << "what cannot be deleted is passed over";
    EXPECT_EQ(browser.FileViewFile.ListCount(), 3);
    EXPECT_EQ(session.SelectedCount, 2);
}

TEST_F(FileCommandsTest, ListModesAreSetMarkedAndShown) {
    Open({});
    test::WriteWhole(disk_ + "/a/t.txt", {});
    session.formats.ImportFormats[0].Enabled = false;
    struct Case {
        int entry;
        bool all;
        bool importOnly;
        int rows;
    };
    for (const Case& row : {Case{10, true, false, 6}, {12, false, true, 0}, {11, false, false, 5}}) {
        commands_.mFile_Click(row.entry);
        EXPECT_EQ(session.ConvertOptions.ListAllFiles, row.all) << row.entry;
        EXPECT_EQ(session.ConvertOptions.ListImportOnly, row.importOnly) << row.entry;
        EXPECT_EQ(list_.RowCount(), row.rows) << row.entry;
    }
    EXPECT_EQ(host.Count("SetmnFile"), 3);
    fs::remove(disk_ + "/a/a.bmp");
    commands_.mFile_Click(14);
    EXPECT_EQ(list_.RowCount(), 4);
}

TEST_F(FileCommandsTest, OtherEntriesGoWhereTheyBelong) {
    for (const int entry : {7, 8, 16, 3, 99}) commands_.mFile_Click(entry);
    EXPECT_EQ(host.calls, (Names{"StopCapture", "OpenImportViewer", "StopCapture", "OpenExportViewer",
                                 "StopCapture", "StartSlideShow", "StopCapture", "StopCapture"}));
    GoTo(disk_ + "/a");
    commands_.mFolder_Click(0);
    EXPECT_FALSE(tree_.Computer()->isExpanded());
    commands_.mFolder_Click(2);
    EXPECT_TRUE(tree_.Computer()->isExpanded()) << "the selected node is in sight again";
    commands_.mFolder_Click(4);
    EXPECT_TRUE(tree_.Naming().IsNaming());
    commands_.mFolder_Click(1);
    EXPECT_FALSE(tree_.Naming().IsNaming());
    EXPECT_EQ(host.Count("StopCapture"), 9);
}

}  // namespace
}  // namespace tessara
