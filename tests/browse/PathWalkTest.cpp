#include "browse/PathWalk.h"

#include <gtest/gtest.h>

#include <map>

#include "browse/Enumerators.h"

namespace tessara {
namespace {

constexpr PathRules kUnix = PathRules::Native();
constexpr PathRules kDrives = PathRules::WithDriveLetters();
using Keys = std::vector<std::string>;

TEST(AbsolutePath, CompletesWhatIsTyped) {
    struct Case {
        const char* typed;
        PathRules rules;
        const char* drive;
        const char* path;
    };
    const Case cases[] = {
        {"\\temp", kDrives, "D:", "D:\\temp\\"},
        {"c:windows", kDrives, "D:", "c:\\windows\\"},
        {"c:", kDrives, "D:", "c:\\"},
        {"C:/a/b", kDrives, "D:", "C:\\a\\b\\"},
        {"/usr/share", kUnix, "/media/stick", "/usr/share/"},
        {"photos", kUnix, "/media/stick", "/media/stick/photos/"},
        {"photos", kUnix, "/", "/photos/"},
        {"", kUnix, "/", "/"},
        {"~", kUnix, "/", "/home/me/"},
        {"~/a", kUnix, "/media/stick", "/home/me/a/"},
        {"~a", kUnix, "/", "/~a/"},
        {"//usr/./share//x/..", kUnix, "/", "/usr/share/"},
        {"/../..", kUnix, "/", "/"},
        {"/a\\b", kUnix, "/", "/a\\b/"},
    };
    for (const Case& row : cases)
        EXPECT_EQ(AbsolutePath(row.typed, row.drive, "/home/me", row.rules), row.path) << row.typed;
}

TEST(PathParts, AreCutAtTheSeparatorOfTheSystem) {
    struct Case {
        const char* path;
        PathRules rules;
        const char* head;
        const char* rest;
        const char* last;
    };
    const Case cases[] = {{"C:\\a\\b", kDrives, "C:", "a\\b", "b"},
                          {"a\\", kDrives, "a", "", ""},
                          {"a", kDrives, "a", "", "a"},
                          {"", kDrives, "", "", ""},
                          {"a\\b/c", kUnix, "a\\b", "c", "c"},
                          {"/a", kUnix, "", "a", "a"},
                          {"/x/a\\b", kUnix, "", "x/a\\b", "a\\b"}};
    for (const Case& row : cases) {
        std::string head;
        std::string rest = row.path;
        PathHead(head, rest, row.rules);
        EXPECT_EQ(head, row.head) << row.path;
        EXPECT_EQ(rest, row.rest) << row.path;
        std::string last = row.path;
        GetPath(last, row.rules);
        EXPECT_EQ(last, row.last) << row.path;
    }
}

/// A tree made of the names below each key.
class ScriptedTree final : public TreeWalker {
  public:
    std::map<std::string, Keys> names;
    PathRules rules;
    std::string place = "computer";

    ScriptedTree(std::map<std::string, Keys> tree, PathRules pathRules)
        : names(std::move(tree)), rules(pathRules) {}
    Keys KeysBelow() override {
        Keys keys = names[place];
        if (place != "computer")
            for (std::string& key : keys) key = JoinPath(place, key, rules);
        return keys;
    }
    void Enter(std::size_t position) override { place = KeysBelow()[position]; }
};

TEST(WalkDown, EndsAtTheDeepestPlaceThatThereIs) {
    const std::map<std::string, Keys> letters = {
        {"computer", {"A:", "C:", "D:"}}, {"C:", {"Temp", "Windows"}}, {"C:\\Windows", {"System"}}};
    const std::map<std::string, Keys> mounts = {
        {"computer", {"/", "/media/me/STICK", "/media/me"}},
        {"/", {"HOME", "home", "media", "Photos", "PHOTOS"}},
        {"/home", {"a\\b", "me"}},
        {"/home/me", {"Desktop"}},
        {"/media", {"me", "me2"}},
        {"/media/me", {"STICK"}},
        {"/media/me/STICK", {"dcim"}},
    };
    struct Case {
        PathRules rules;
        const char* path;
        const char* place;
    };
    const Case cases[] = {
        {kDrives, "c:\\windows\\", "C:\\Windows"},
        {kDrives, "C:\\WINDOWS\\SYSTEM\\", "C:\\Windows\\System"},
        {kDrives, "C:\\Windows\\hidden\\deep\\", "C:\\Windows"},
        {kDrives, "d:\\", "D:"},
        {kDrives, "E:\\x\\", "computer"},
        {kUnix, "/", "/"},
        {kUnix, "/home/me/Desktop/", "/home/me/Desktop"},
        {kUnix, "/home/a\\b/", "/home/a\\b"},
        {kUnix, "/HOME/me/", "/HOME"},
        {kUnix, "/photos/", "/Photos"},
        {kUnix, "/media/me2/", "/media/me2"},
        {kUnix, "/media/me/stick/", "/media/me/STICK"},
        {kUnix, "/media/me/STICK/dcim/", "/media/me/STICK/dcim"},
        {kUnix, "/media/me/STICK2/", "/media/me"},
    };
    for (const Case& row : cases) {
        ScriptedTree tree(row.rules.driveLetters ? letters : mounts, row.rules);
        WalkDown(tree, row.path, row.rules);
        EXPECT_EQ(tree.place, row.place) << row.path;
    }
}

}  // namespace
}  // namespace tessara
