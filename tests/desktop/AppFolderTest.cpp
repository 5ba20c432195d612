#include "desktop/AppFolder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "tests/Support.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

/// Root may write everywhere. While one of these lives the process asks for its rights as nobody's.
class AskingAsNobody {
  public:
    AskingAsNobody() { EXPECT_TRUE(!isRoot_ || setreuid(65534, 0) == 0); }
    ~AskingAsNobody() { EXPECT_TRUE(!isRoot_ || setreuid(0, 0) == 0); }

  private:
    const bool isRoot_ = getuid() == 0;
};

TEST(AppFolder, IsTheProgramsOwnUnlessFilesCannotBeMadeThere) {
    const test::TemporaryFolder folder;
    const std::string program = folder.File("program");
    const std::string user = folder.File("data/tessara");
    fs::create_directory(program);
    fs::permissions(folder.Path(), static_cast<fs::perms>(0755));
    const AskingAsNobody nobody;

    fs::permissions(program, static_cast<fs::perms>(0777));
    EXPECT_EQ(AppFolder(program + "/", user), program);
    EXPECT_FALSE(fs::exists(user));

    fs::permissions(program, static_cast<fs::perms>(0555));
    EXPECT_EQ(AppFolder(program, user), user);
    EXPECT_TRUE(fs::is_directory(user));
}

TEST(AppFolder, OfAnInstallationForAllIsEachUsersAlone) {
    const test::TemporaryFolder folder;
    for (const char* program : {"/usr/bin", "/usr/local/bin"}) {
        for (const char* user : {"anna", "bert"}) {
            const std::string own = folder.File(user) + program;
            EXPECT_EQ(AppFolder(program, own), own);
            EXPECT_EQ(fs::status(own).permissions(), fs::perms::owner_all);
        }
    }
}

}  // namespace
}  // namespace tessara
