#include "core/PathNames.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/Support.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

TEST(CheckPathNameValid, TriesTheNameAndLeavesNothingBehind) {
    const test::TemporaryFolder folder;
    const std::string app = folder.File("app");
    fs::create_directories(app + "/tempkept1");
    fs::create_directory(app + "/temp");
    test::WriteWhole(folder.File("file"), {});
    fs::create_symlink("missing", folder.File("dangling"));
    const std::string nul("a\0b", 3);
    struct Case {
        const char* what;
        std::string text;
        PathNameKind kind;
        bool valid;
    };
    const Case cases[] = {
        {"a name", "photo 1", PathNameKind::F, true},
        {"bytes that are no text", "\xff\xfe", PathNameKind::F, true},
        {"a time of day", "10:30", PathNameKind::F, true},
        {"a name whose trial exists", "kept", PathNameKind::F, true},
        {"a name too long", std::string(251, 'a'), PathNameKind::F, false},
        {"a folder and a name", "a/b", PathNameKind::F, false},
        {"a way out", "/../../b", PathNameKind::F, false},
        {"a name with a NUL", nul, PathNameKind::F, false},
        {"an existing folder", app, PathNameKind::P, true},
        {"the root", "/", PathNameKind::P, true},
        {"a folder that can be made", folder.File("new"), PathNameKind::P, true},
        {"the same with a separator", folder.File("new/"), PathNameKind::P, true},
        {"a file", folder.File("file"), PathNameKind::P, true},
        {"a link to nothing", folder.File("dangling"), PathNameKind::P, true},
        {"below a missing folder", folder.File("no/new"), PathNameKind::P, false},
        {"below a file", folder.File("file/new"), PathNameKind::P, false},
        {"nothing", "", PathNameKind::P, false},
        {"a path with a NUL", folder.File(nul), PathNameKind::P, false},
    };
    for (const Case& row : cases)
        EXPECT_EQ(CheckPathNameValid(app, row.text, row.kind), row.valid) << row.what;
    EXPECT_FALSE(fs::exists(folder.File("new")));
    EXPECT_TRUE(fs::is_empty(app + "/tempkept1")) << "what was there stays";
    EXPECT_EQ(std::distance(fs::directory_iterator(app), {}), 2);
}

}  // namespace
}  // namespace tessara
