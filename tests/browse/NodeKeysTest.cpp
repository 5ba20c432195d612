#include "browse/NodeKeys.h"

#include <gtest/gtest.h>

namespace tessara {
namespace {

constexpr PathRules kUnix = PathRules::Native();
constexpr PathRules kDrives = PathRules::WithDriveLetters();

TEST(DriveNodeFor, ShowsLabelOrRemoteNameAndThePictureOfTheType) {
    struct Case {
        PathRules rules;
        Drive drive;
        const char* key;
        const char* text;
        TreePicture picture;
        bool lookAhead;
    };
    using enum DriveType;
    using enum TreePicture;
    const Case cases[] = {
        {kDrives, {"", "c: [SYSTEM]", Fixed}, "C:", "SYSTEM (C:)", FixedDisk, true},
        {kDrives, {"", "d:", CdRom}, "D:", " (D:)", OpticalDisc, true},
        {kDrives, {"", "a: [X]", Removable}, "A:", "A:", Floppy, false},
        {kDrives, {"", "e: [X]", Removable}, "E:", "X (E:)", RemovableDisk, false},
        {kDrives, {"", "f: \\\\h\\s", Remote}, "F:", " \\\\h\\s (F:)", NetworkDrive, true},
        {kUnix, {"/m", "/m [fe80::1]:/s", Remote}, "/m", " [fe80::1]:/s (/m)", NetworkDrive, true},
        {kUnix, {"/", "/ [File System]", Fixed}, "/", "File System (/)", FixedDisk, true},
        {kUnix, {"/m/[a]", "/m/[a]", RamDisk}, "/m/[a]", " (/m/[a])", RemovableDisk, true},
        {kUnix, {"/m", "/m []", Undetermined}, "/m", " (/m)", UnknownDrive, true},
    };
    for (const Case& row : cases) {
        const DriveNode node = DriveNodeFor(row.drive, row.rules);
        EXPECT_EQ(node.key, row.key);
        EXPECT_EQ(node.text, row.text);
        EXPECT_EQ(node.picture, row.picture) << row.text;
        EXPECT_EQ(node.lookAhead, row.lookAhead) << row.text;
    }
}

}  // namespace
}  // namespace tessara
