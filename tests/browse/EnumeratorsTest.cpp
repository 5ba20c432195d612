#include "browse/Enumerators.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tests/Support.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

/// Files of every kind of name, and links that lead to a file, a folder, nowhere, and in circles.
class Enumerators : public testing::Test {
  protected:
    test::TemporaryFolder folder_;
    const std::vector<std::string> files_ = {"-rf",           "B.bmp",        std::string(255, 'a'), "b.bmp",
                                             "new\nline.bmp", "\xc3\xa9.bmp", "\xff\xfe.bmp"};

    Enumerators() {
        for (const std::string& name : files_) test::WriteWhole(folder_.File(name), {});
        test::WriteWhole(folder_.File(".hidden"), {});
        fs::create_directory(folder_.File("sub"));
        fs::create_directory(folder_.File(".hidden folder"));
        fs::create_symlink("b.bmp", folder_.File("to file"));
        fs::create_symlink("missing", folder_.File("to nothing"));
        fs::create_symlink("itself", folder_.File("itself"));
        fs::create_symlink("..", folder_.File("up"));
    }
};

template <typename Enumerator>
std::vector<std::string> ListOf(const Enumerator& enumerator) {
    std::vector<std::string> list;
    for (int i = 0; i < enumerator.ListCount(); ++i) list.push_back(enumerator.List(i));
    return list;
}

TEST_F(Enumerators, FilesAreListedByTheirBytesWhateverTheyAre) {
    FileEnumerator files;
    test::Must(files.SetPath(folder_.Path()));
    std::vector<std::string> expected = files_;
    expected.insert(expected.begin() + 4, "itself");
    expected.insert(expected.begin() + 6, {"to file", "to nothing"});
    EXPECT_EQ(ListOf(files), expected);
}

TEST_F(Enumerators, FoldersAreFullPathsAndALinkToOneCounts) {
    FolderEnumerator folders;
    test::Must(folders.SetPath(folder_.Path() + "/"));
    EXPECT_EQ(ListOf(folders), (std::vector{folder_.File("sub"), folder_.File("up")}));
}

TEST_F(Enumerators, AFolderThatCannotBeReadChangesNothing) {
    FileEnumerator files;
    FolderEnumerator folders;
    test::Must(files.SetPath(folder_.Path()));
    test::Must(folders.SetPath(folder_.Path()));
    int changes = 0;
    files.PathChange = [&] { ++changes; };
    fs::permissions(folder_.File("sub"), fs::perms::none);
    std::vector<std::string> bad = {"", folder_.File("missing"), folder_.File("b.bmp"),
                                    folder_.File("itself")};
    if (geteuid() != 0) bad.push_back(folder_.File("sub"));
    for (const std::string& path : bad) {
        EXPECT_FALSE(files.SetPath(path)) << path;
        EXPECT_FALSE(folders.SetPath(path)) << path;
    }
    fs::permissions(folder_.File("sub"), fs::perms::owner_all);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(files.Path(), folder_.Path());
    EXPECT_EQ(files.ListCount(), 10);
    EXPECT_EQ(folders.ListCount(), 2);
}

TEST_F(Enumerators, OnlyAnotherFolderRaisesPathChange) {
    FileEnumerator files;
    int changes = 0;
    files.PathChange = [&] { ++changes; };
    for (const std::string& path : {folder_.Path(), folder_.Path(), folder_.File("sub"), folder_.Path()})
        test::Must(files.SetPath(path));
    EXPECT_EQ(changes, 3);
}

TEST_F(Enumerators, RefreshSeesNewFilesAndThatAFolderHasGone) {
    FileEnumerator files;
    test::Must(files.SetPath(folder_.File("sub")));
    test::WriteWhole(folder_.File("sub/new.bmp"), {});
    EXPECT_EQ(files.ListCount(), 0);
    test::Must(files.Refresh());
    EXPECT_EQ(ListOf(files), std::vector<std::string>{"new.bmp"});
    fs::remove_all(folder_.File("sub"));
    EXPECT_FALSE(files.Refresh());
    EXPECT_EQ(files.ListCount(), 0);
}

}  // namespace
}  // namespace tessara
