#include "core/Paths.h"

#include <gtest/gtest.h>

#include "core/SystemVersion.h"

namespace tessara {
namespace {

constexpr PathRules kUnix = PathRules::Native();
constexpr PathRules kDrives = PathRules::WithDriveLetters();

TEST(SplitPath, CutsBehindTheLastSeparatorOfEitherKind) {
    struct Case {
        const char* path;
        PathRules rules;
        const char* folder;
        const char* name;
    };
    const Case cases[] = {
        {"/in/a.bmp", kUnix, "/in/", "a.bmp"},
        {"c:\\in\\a.bmp", kDrives, "c:\\in\\", "a.bmp"},
        {"c:\\in/b\\a.bmp", kUnix, "c:\\in/b\\", "a.bmp"},
        {"/in/", kUnix, "/in/", ""},
        {"d:b.xyz", kDrives, "d:\\", "b.xyz"},
        {"d:b.xyz", kUnix, "before", "d:b.xyz"},
        {"plain", kDrives, "before", "plain"},
        {"", kUnix, "before", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.path);
        std::string folder = "before";
        std::string name = "before";
        SplitPath(row.path, folder, name, row.rules);
        EXPECT_EQ(folder, row.folder);
        EXPECT_EQ(name, row.name);
    }
}

TEST(TrimSpaces, TakesBlanksAloneFromBothEnds) {
    struct Case {
        const char* text;
        const char* trimmed;
    };
    for (const Case& row : {Case{"  a b ", "a b"}, {"\ta ", "\ta"}, {"   ", "   "}, {"", ""}}) {
        std::string text = row.text;
        TrimSpaces(text);
        EXPECT_EQ(text, row.trimmed) << '"' << row.text << '"';
    }
}

TEST(GetFileWeb, KnowsExtensionsOfThreeAndFourCharacters) {
    struct Case {
        const char* path;
        PathRules rules;
        const char* folder;
        const char* base;
        const char* extension;
    };
    const Case cases[] = {
        {"/in/photo.tif", kUnix, "/in/", "photo", "tif"},
        {"/in/photo.tiff", kUnix, "/in/", "photo", "tiff"},
        {"c:photo.wbmp", kDrives, "c:\\", "photo", "wbmp"},
        {"/in/a.b.gif", kUnix, "/in/", "a.b", "gif"},
        {"/in/.bmp", kUnix, "/in/", "", "bmp"},
        {"photo.bmp", kUnix, "old/", "photo", "bmp"},
        {"/in/picture.x", kUnix, "/in/", "old", "old"},
        {"/in/none", kUnix, "/in/", "old", "old"},
        {"/in/a.b/none", kUnix, "/in/a.b/", "old", "old"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.path);
        std::string folder = "old";
        std::string base = "old";
        std::string extension = "old";
        GetFileWeb(row.path, folder, base, extension, row.rules);
        EXPECT_EQ(folder, row.folder);
        EXPECT_EQ(base, row.base);
        EXPECT_EQ(extension, row.extension);
    }
}

TEST(FindXP, AsksForVersionAndPlaceOfTheDesktop) {
    struct Case {
        int major, minor;
        const char* desktop;
        bool isXP;
    };
    const Case cases[] = {
        {5, 1, "C:\\Documents and Settings\\me\\Desktop", true},
        {6, 0, "C:\\Documents and Settings\\me\\Desktop", true},
        {5, 0, "C:\\Documents and Settings\\me\\Desktop", false},
        {6, 1, "/home/me/Desktop", false},
        {6, 1, "", false},
    };
    for (const Case& row : cases) {
        bool isXP = !row.isXP;
        FindXP(row.major, row.minor, row.desktop, isXP);
        EXPECT_EQ(isXP, row.isXP) << row.major << '.' << row.minor << ' ' << row.desktop;
    }
}

}  // namespace
}  // namespace tessara
