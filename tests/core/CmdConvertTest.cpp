#include "core/CmdConvert.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "core/Files.h"
#include "core/rastx/Codec.h"
#include "core/rastx/codecs/Bmp.h"
#include "core/rastx/codecs/Gif.h"
#include "tests/Support.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

class CommandLine : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directory(folder_.File("reports"));
        fs::create_directory(folder_.File("folder.bmp"));
        ASSERT_EQ(mkfifo(folder_.File("pipe.bmp").c_str(), 0600), 0);
        const ByteVector bitmap = test::Hex(
            "424d 46000000 00000000 36000000 28000000 02000000 02000000 0100 1800 00000000 10000000"
            "00000000 00000000 00000000 00000000 ff0000 00ff00 0000 0000ff ffffff 0000");
        for (const char* name : {"a.bmp", "A B.BMP", "a.tiff", "a.b", "a.xyz", "-o a.bmp"})
            test::WriteWhole(folder_.File(name), bitmap);
        test::WriteWhole(folder_.File("old.png"), AsBytes("old"));
        test::WriteWhole(folder_.File("broken.bmp"), AsBytes("BM, and then nothing of use"));
    }

    /// '@' in the line stands for the folder.
    std::string Expand(std::string line) const {
        for (std::size_t at; (at = line.find('@')) != std::string::npos;) line.replace(at, 1, folder_.Path());
        return line;
    }
    void Run(const std::string& line) { CmdConvert(Expand(line), folder_.File("reports")); }

    std::vector<std::string> Reports() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_.File("reports")))
            names.push_back(entry.path().filename().string());
        return names;
    }

    test::TemporaryFolder folder_;
};

TEST_F(CommandLine, RefusesInTheOrderOfTheChecksAndReports) {
    struct Case {
        const char* line;
        const char* report;
        const char* message;
    };
    const Case cases[] = {
        {"@/missing.bmp,@/old.png", "missing.bmp-old.png.err.txt", "Import file not found!"},
        {"@/folder.bmp,@/new.png", "folder.bmp-new.png.err.txt", "Import file not found!"},
        {"@/pipe.bmp,@/new.png", "pipe.bmp-new.png.err.txt", "Import file not found!"},
        {"\"@/a.bmp\",@/new.png", "a.bmp\"-new.png.err.txt", "Import file not found!"},
        {" -O @/a.bmp,@/new.png", "a.bmp-new.png.err.txt", "Import file not found!"},
        {"@/a.b,@/old.png", "a.b-old.png.err.txt", "Export file already exists!"},
        {"@/a.b,@/new.png", "a.b-new.png.err.txt", "Import file's format error!"},
        {"-O @/a.b,@/old.png", "a.b-old.png.err.txt", "Import file's format error!"},
        {"@/a.bmp,@/new", "a.bmp-new.err.txt", "Export file's format error!"},
        {"@/a.bmp,", "a.bmp-.err.txt", "Export file's format error!"},
        {"@/a.bmp,a.b", "a.bmp-a.b.err.txt", "Export file's format error!"},
        {"@/a.bmp,.bmp", "a.bmp-.bmp.err.txt", "Export file's format isn't supported!"},
        {"@/a.xyz,@/new.tiff", "a.xyz-new.tiff.err.txt", "Import file's format isn't supported!"},
        {"@/a.bmp,@/new.tiff", "a.bmp-new.tiff.err.txt", "Export file's format isn't supported!"},
        {"@/a.bmp,@/new.jpeg", "a.bmp-new.jpeg.err.txt", "Export file's format isn't supported!"},
        {"@/a.bmp,@/x,y.dib", "a.bmp-x,y.dib.err.txt", "Export file's format isn't supported!"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.line);
        Run(row.line);
        ASSERT_EQ(Reports(), std::vector<std::string>{row.report});
        const ByteVector text = test::ReadWhole(folder_.File("reports/") + row.report);
        EXPECT_EQ(std::string(text.begin(), text.end()), Expand(row.line) + "\n \n" + row.message + "\n");
        fs::remove(folder_.File("reports/") + row.report);
        EXPECT_EQ(test::ReadWhole(folder_.File("old.png")), test::Hex("6f6c64"));
    }
}

TEST_F(CommandLine, Converts) {
    struct Case {
        const char* line;
        const char* made;
    };
    const Case cases[] = {
        {"@/a.bmp,@/one.png", "one.png"},
        {"-O   @/a.bmp , @/two.png ", "two.png"},
        {"-o @/a.bmp,@/old.png", "old.png"},
        {"@/A B.BMP,@/with blank.TGA", "with blank.TGA"},
        {"@/a.tiff,@/contents decide.tif", "contents decide.tif"},
        {"@/a.bmp,@/comma, again.bmp", "comma, again.bmp"},
        {"-o @/-o a.bmp,@/dash.bmp", "dash.bmp"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.line);
        Run(row.line);
        const Picture picture = test::Must(DecodeFile(test::ReadWhole(folder_.File(row.made)), ""));
        EXPECT_EQ(test::Sketch(picture), "RW BG");
        EXPECT_TRUE(Reports().empty());
    }
}

TEST_F(CommandLine, WhiteIsTransparentInAnIconAndNowhereElse) {
    Run("@/a.bmp,@/a.ico");
    Run("@/a.bmp,@/a.gif");
    EXPECT_EQ(test::Sketch(test::Must(DecodeFile(test::ReadWhole(folder_.File("a.ico")), "ico"))), "R. BG");
    EXPECT_EQ(test::Sketch(test::Must(DecodeFile(test::ReadWhole(folder_.File("a.gif")), "gif"))), "RW BG");
}

TEST_F(CommandLine, KeepsSilent) {
    struct Case {
        const char* name;
        const char* line;
        const char* notMade;
    };
    const Case cases[] = {
        {"no comma", "@/a.bmp @/new.png", "new.png"},
        {"a file that is no picture", "@/broken.bmp,@/new.png", "new.png"},
        {"a folder that is missing", "@/a.bmp,@/nowhere/new.png", "nowhere"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        Run(row.line);
        EXPECT_FALSE(fs::exists(folder_.File(row.notMade)));
        EXPECT_TRUE(Reports().empty());
    }
    Run("-O @/broken.bmp,@/old.png");
    EXPECT_EQ(test::ReadWhole(folder_.File("old.png")), test::Hex("6f6c64"));
}

}  // namespace
}  // namespace tessara
