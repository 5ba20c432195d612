#include "core/SaveName.h"

#include <gtest/gtest.h>

namespace tessara {
namespace {

TEST(SaveName, StartsWithTheTypeAndTheNameOfTheRefusedTarget) {
    struct Case {
        const char* folder;
        const char* name;
        int index;
        std::string_view filter;
        const char* path;
    };
    const Case cases[] = {
        {"/out/", "a.gif", 1, "GIF Files (*.gif)", "/out/a"},
        {"/out", "Photo.JPG", 2, "JPG Files (*.jpg)", "/out/Photo"},
        {"/out/", "a.Png", 3, "PNG Files (*.png)", "/out/a"},
        {"/out/", "a.wbmp", 4, "WBMP Files (*.wbmp)", "/out/a.wbmp"},
        {"/out/", "a.bmp", 5, "Windows Bitmap (*.bmp)", "/out/a"},
        {"/out/", "a.emf", 6, "EMF Files (*.emf)", "/out/a"},
        {"/out/", "a.tga", 7, "TGA Files (*.tga)", "/out/a"},
        {"/out/", "a.tif", 8, "TIF Files (*.tif)", "/out/a"},
        {"/out/", "a.wmf", 9, "WMF Files (*.wmf)", "/out/a"},
        {"/out/", "a.b.ico", 10, "Icon Files (*.ico)", "/out/a.b"},
        {"/out/", "a.txt", 1, "GIF Files (*.gif)", "/out/a"},
        {"/out/", "plain", 1, "GIF Files (*.gif)", "/out/plain"},
        {"", "a.bmp", 5, "Windows Bitmap (*.bmp)", "a"},
    };
    for (const Case& row : cases) {
        const SaveNameStart start = StartOfSaveName(row.folder, row.name);
        EXPECT_EQ(start.filterIndex, row.index);
        EXPECT_EQ(SaveNameFilters()[static_cast<std::size_t>(start.filterIndex - 1)].name, row.filter);
        EXPECT_EQ(start.path, row.path);
    }
    ASSERT_EQ(SaveNameFilters().size(), 11u);
    EXPECT_EQ(SaveNameFilters().back().name, "All Files (*.*)");
}

}  // namespace
}  // namespace tessara
