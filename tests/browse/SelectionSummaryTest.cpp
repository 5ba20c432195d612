#include "browse/SelectionSummary.h"

#include <gtest/gtest.h>

#include "browse/FileList.h"
#include "tests/browse/RecordingHost.h"

namespace tessara {
namespace {

class SelectionSummaryTest : public testing::Test, protected test::RecordedBrowser {
  protected:
    FileList list_{browser, nullptr};
    SelectionSummary summary_{browser};

    void AddRow(const char* size) {
        list_.ListViewFile()->addTopLevelItem(new QTreeWidgetItem(QStringList{"a.bmp", "", size}));
    }
};

TEST_F(SelectionSummaryTest, TellsTotalsAndEnablesWhatMakesSense) {
    struct Row {
        const char* name;
        std::vector<const char*> sizes;
        std::vector<int> checked;
        const char* total;
        const char* selection;
        std::vector<bool> tools;  // 3 select all, 4 cancel, 5 delete, 12 select all
    };
    const Row kRows[] = {
        {"none", {}, {}, "as it was", "as it was", {false, false, false, false}},
        {"one", {"123456 (120.6KB)"}, {}, "Total 1 File (120.6 KB)", "as it was", {true, false, false, true}},
        {"one, checked",
         {"512 (.5KB)"},
         {0},
         "Total 1 File (.5 KB)",
         " 1 File Selected (.5 KB)",
         {false, true, true, false}},
        {"1024 KB stay KB",
         {"524288 (512KB)", "524288 (512KB)"},
         {0, 1},
         "Total 2 Files (1024 KB)",
         " 2 Files Selected (1024 KB)",
         {false, true, true, false}},
        {"more are MB",
         {"524288 (512KB)", "1048576 (1024KB)"},
         {1},
         "Total 2 Files (1.5 MB)",
         " 1 File Selected (1024 KB)",
         {true, true, true, true}},
        {"from 2 GB on sizes are negative",
         {"-2147483648 (-2097152KB)", "1024 (1KB)"},
         {},
         "Total 2 Files (-2097151 KB)",
         "as it was",
         {true, false, false, true}},
    };
    for (const Row& row : kRows) {
        list_.ClearRows();
        for (const char* size : row.sizes) AddRow(size);
        for (const int i : row.checked) list_.SetChecked(i, true);
        host.filePanels = {{1, "as it was"}, {2, "as it was"}};
        session.ImageValid = true;
        summary_.SelectIcoSourceIco();
        EXPECT_EQ(host.filePanels[1], row.total) << row.name;
        EXPECT_EQ(host.filePanels[2], row.selection) << row.name;
        EXPECT_EQ(session.SelectedCount, static_cast<int>(row.checked.size())) << row.name;
        EXPECT_EQ(session.ImageValid, !row.sizes.empty()) << row.name;
        EXPECT_EQ(host.MenuEnabled("mnFile", -1), !row.sizes.empty()) << row.name;
        const std::vector<bool> menus = {host.MenuEnabled("mFile", 0), host.MenuEnabled("mFile", 1),
                                         host.MenuEnabled("mFile", 4), host.MenuEnabled("mFile", 0)};
        EXPECT_EQ(menus, row.tools) << row.name;
        EXPECT_EQ(host.MenuEnabled("mFile", 5), host.MenuEnabled("mFile", 4)) << row.name;
        const std::vector<bool> tools = {host.imageTools[3], host.imageTools[4], host.imageTools[5],
                                         host.imageTools[12]};
        EXPECT_EQ(tools, row.tools) << row.name;
    }
}

TEST_F(SelectionSummaryTest, TheNoteTellsWhatAConversionWouldDo) {
    struct Row {
        std::uint8_t scope;
        std::vector<std::size_t> formats;
        const char* note;
    };
    const Row kRows[] = {
        {1, {1, 2}, "Current Options : Convert Selected Files to GIF, JPG images."},
        {2, {9}, "Current Options : Convert All Graphics to ICO images."},
        {0, {}, "Current Options : Convert current file t images."},
    };
    for (const Row& row : kRows) {
        session.ConvertOptions.ConvertScope = row.scope;
        for (FormatRow& format : session.formats.ExportFormats) format.Enabled = false;
        for (const std::size_t i : row.formats) session.formats.ExportFormats[i].Enabled = true;
        summary_.PrintNote();
        EXPECT_EQ(host.optionsPanel, row.note);
    }
}

}  // namespace
}  // namespace tessara
