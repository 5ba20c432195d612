#include "settings/Defaults.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "settings/SettingsFile.h"
#include "tests/Support.h"

namespace tessara {
namespace {

class DefaultsTest : public testing::Test, protected DefaultsHost {
  protected:
    DefaultsTest() {
        session_.AppPath = folder_.Path();
        session_.formats.SetFormats();
        for (FormatRow& row : session_.formats.ImportFormats) row.Enabled = true;
        for (FormatRow& row : session_.formats.ExportFormats) row.Enabled = true;
    }

    void EnterFolder(const std::string& folder) override { calls_.push_back("enter " + folder); }
    void PrintNote() override { calls_.emplace_back("note"); }

    void Get(bool readFile) {
        Getdefault(session_, *this, readFile, [this] { calls_.emplace_back("fill"); });
    }
    int CountOn() const {
        return static_cast<int>(
            std::ranges::count(session_.formats.ExportFormats, true, &FormatRow::Enabled));
    }

    test::TemporaryFolder folder_;
    const SettingsFile file_{folder_.File("ts40.cfg")};
    Session session_;
    std::vector<std::string> calls_;
};

using Calls = std::vector<std::string>;

TEST_F(DefaultsTest, AFirstRunWritesTwoFormatsAndShowsAll) {
    session_.SlideOptions.SlideDelay = 1;
    Get(true);
    EXPECT_EQ(calls_, (Calls{"enter " + folder_.Path(), "note"}));
    EXPECT_EQ(session_.ConvertOptions, ConvertOptions::FirstRun(folder_.Path()));
    EXPECT_EQ(session_.SlideOptions, SlideOptions{});
    EXPECT_EQ(CountOn(), 10);
    EXPECT_EQ(std::filesystem::file_size(file_.Path()), 808u);
    calls_.clear();
    session_.Starting = false;
    Get(true);
    EXPECT_EQ(CountOn(), 2);
    Get(false);
    EXPECT_EQ(calls_, (Calls{"enter " + folder_.Path(), "fill", "note", "fill", "note"}));
}

TEST_F(DefaultsTest, TheStartFolderIsTheProgramsWhereTheFieldHoldsNone) {
    struct Case {
        const char* field;
        std::string entered;
        std::string shown;
    };
    const Case cases[] = {
        {"/in///", "/in", "/in"},
        {"///", folder_.Path(), ""},
        {"/in", folder_.Path(), folder_.Path()},
    };
    for (const Case& row : cases) {
        ConvertOptions options = ConvertOptions::FirstRun("/");
        options.StartFolder = row.field;
        options.ImportOn[3] = false;
        test::Must(file_.Write(options));
        calls_.clear();
        Get(true);
        EXPECT_EQ(calls_, (Calls{"enter " + row.entered, "note"}));
        EXPECT_EQ(ControlsOf(session_.ConvertOptions, folder_.Path()).TextInFolder, row.shown);
        EXPECT_FALSE(session_.formats.ImportFormats[3].Enabled);
    }
}

TEST_F(DefaultsTest, AFileThatCannotBeReadStays) {
    // A file too large to be read, and a folder in its place.
    test::WriteWhole(file_.Path(), AsBytes("x"));
    std::filesystem::resize_file(file_.Path(), std::uintmax_t{5} << 30);
    Get(true);
    EXPECT_EQ(session_.ConvertOptions, ConvertOptions::FirstRun(folder_.Path()));
    EXPECT_EQ(std::filesystem::file_size(file_.Path()), std::uintmax_t{5} << 30);
    std::filesystem::remove(file_.Path());
    std::filesystem::create_directory(file_.Path());
    Get(true);
    EXPECT_TRUE(std::filesystem::is_directory(file_.Path()));
}

TEST_F(DefaultsTest, OptionsComeBackFromTheDialogAsTheyWentThere) {
    const ConvertOptions before = ConvertOptions::FirstRun("/in");
    OptionsControls controls = ControlsOf(before, "/app");
    session_.ConvertOptions = before;
    bool changed = false;
    Savedefault(session_, *this, controls, before, false, changed);
    EXPECT_FALSE(changed);
    EXPECT_EQ(session_.ConvertOptions, before);
    EXPECT_FALSE(file_.HasContents());
    controls.OptionPic = controls.OptionOv = -1;
    Savedefault(session_, *this, controls, before, false, changed);
    EXPECT_EQ(session_.ConvertOptions, before);

    struct Case {
        const char* name;
        void (*change)(OptionsControls&);
    };
    const Case cases[] = {
        {"list", [](OptionsControls& shown) { shown.OptionList = 0; }},
        {"import", [](OptionsControls& shown) { shown.CheckIn[24] = false; }},
        {"scope", [](OptionsControls& shown) { shown.OptionPic = 2; }},
        {"export", [](OptionsControls& shown) { shown.CheckOut[9] = true; }},
        {"target", [](OptionsControls& shown) { shown.TextOutFolder = "/new"; }},
        {"start", [](OptionsControls& shown) { shown.TextInFolder = "/new"; }},
        {"overwrite", [](OptionsControls& shown) { shown.OptionOv = 1; }},
    };
    for (const Case& row : cases) {
        controls = ControlsOf(before, "/app");
        row.change(controls);
        session_.ConvertOptions = before;
        changed = false;
        Savedefault(session_, *this, controls, before, true, changed);
        EXPECT_TRUE(changed) << row.name;
        ConvertOptions read;
        test::Must(file_.Read(read));
        EXPECT_EQ(read, session_.ConvertOptions) << row.name;
        EXPECT_NE(read, before) << row.name;
        EXPECT_EQ(session_.formats.ImportFormats[24].Enabled, controls.CheckIn[24]);
    }
    EXPECT_EQ(CountOn(), 10) << "the rows of export formats follow their controls, not the job's flags";
}

}  // namespace
}  // namespace tessara
