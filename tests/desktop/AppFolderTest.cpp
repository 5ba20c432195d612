#include "desktop/AppFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/Support.h"

namespace tessara {
namespace {

TEST(AppFolder, IsTheProgramsOwnUnlessFilesCannotBeMadeThere) {
    const test::TemporaryFolder folder;
    const std::string user = folder.File("data/tessara");
    EXPECT_EQ(AppFolder(folder.Path() + "/", user), folder.Path());
    EXPECT_FALSE(std::filesystem::exists(user));
    EXPECT_EQ(AppFolder("/no/such/folder", user), user);
    EXPECT_TRUE(std::filesystem::is_directory(user));
}

}  // namespace
}  // namespace tessara
