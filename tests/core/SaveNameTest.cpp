#include "core/SaveName.h"

#include <gtest/gtest.h>

namespace tessara {
namespace {

TEST(SaveName, StartsWithTheTypeAndTheNameOfTheRefusedTarget) {
    struct Case {
        const char* folder;
        const char* name;
        std::string_view filter;
        const char* path;
    };
    const Case cases[] = {
        {"/out/", "a.gif", "GIF Files (*.gif)", "/out/a"},
        {"/out", "Photo.JPG", "JPG Files (*.jpg)", "/out/Photo"},
        {"/out/", "a.Png", "PNG Files (*.png)", "/out/a"},
        {"/out/", "a.wbmp", "WBMP Files (*.wbmp)", "/out/a.wbmp"},
        {"/out/", "a.bmp", "Windows Bitmap (*.bmp)", "/out/a"},
        {"/out/", "a.emf", "EMF Files (*.emf)", "/out/a"},
        {"/out/", "a.tga", "TGA Files (*.tga)", "/out/a"},
        {"/out/", "a.tif", "TIF Files (*.tif)", "/out/a"},
        {"/out/", "a.wmf", "WMF Files (*.wmf)", "/out/a"},
        {"/out/", "a.b.ico", "Icon Files (*.ico)", "/out/a.b"},
        {"/out/", "a.txt", "GIF Files (*.gif)", "/out/a"},
        {"/out/", "plain", "GIF Files (*.gif)", "/out/plain"},
        {"", "a.bmp", "Windows Bitmap (*.bmp)", "a"},
    };
    for (const Case& row : cases) {
        const SaveNameStart start = StartOfSaveName(row.folder, row.name);
        EXPECT_EQ(SaveNameFilters()[static_cast<std::size_t>(start.filterIndex - 1)].name, row.filter);
        EXPECT_EQ(start.path, row.path);
    }
    EXPECT_EQ(SaveNameFilters().back().name, "All Files (*.*)");
}

}  // namespace
}  // namespace tessara
