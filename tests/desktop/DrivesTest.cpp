#include "desktop/Drives.h"

#include <gtest/gtest.h>

#include <map>

namespace tessara {
namespace {

std::string Shown(const std::vector<Drive>& drives) {
    static const char* const kTypes[] = {"undetermined", "no root", "removable", "fixed",
                                         "remote",       "disc",    "ram disk"};
    std::string shown;
    for (const Drive& drive : drives)
        shown += drive.key + " = " + drive.line + ", " + kTypes[static_cast<int>(drive.type)] + "\n";
    return shown;
}

DeviceFacts Facts(const std::string& source) {
    static const std::map<std::string, DeviceFacts> kFacts = {
        {"/dev/sdb1", {true, "HOLIDAY 1"}}, {"/dev/sdc1", {false, "Archive"}}, {"/dev/sr0", {true, "DISC"}}};
    const auto found = kFacts.find(source);
    return found == kFacts.end() ? DeviceFacts() : found->second;
}

const std::string kRoot = "/ = / [File System], fixed\n";

TEST(Drives, AMountIsADriveWhereAPersonWouldSaySo) {
    struct Row {
        const char* mount;  // the line's end: where, " - ", what
        const char* drives;
    };
    const Row kRows[] = {
        {"/ /media/u/HOLIDAY\\0401 rw - vfat /dev/sdb1 rw",
         "/media/u/HOLIDAY 1 = /media/u/HOLIDAY 1 [HOLIDAY 1], removable\n"},
        {"/ /run/media/u/x rw shared:1 master:2 - ext4 /dev/sdc1 rw",
         "/run/media/u/x = /run/media/u/x [Archive], fixed\n"},
        {"/ /data rw - xfs /dev/sdd1 rw", "/data = /data, fixed\n"},
        {"/@photos /photos rw - btrfs /dev/sdd2 rw", "/photos = /photos, fixed\n"},
        {"/ /mnt/windows rw - fuseblk /dev/nvme0n1p3 rw", "/mnt/windows = /mnt/windows, fixed\n"},
        {"/ /media/cdrom0 ro - iso9660 /dev/sr0 ro", "/media/cdrom0 = /media/cdrom0 [DISC], disc\n"},
        {"/ /mnt/image ro - udf /dev/loop3 ro", "/mnt/image = /mnt/image, disc\n"},
        {"/ /mnt/stick ro - udf /dev/sdb1 ro", "/mnt/stick = /mnt/stick [HOLIDAY 1], removable\n"},
        {"/ /mnt/share rw - nfs4 server:/pictures rw", "/mnt/share = /mnt/share server:/pictures, remote\n"},
        {"/ /home/u/far rw - fuse.sshfs u@far: rw", "/home/u/far = /home/u/far u@far:, remote\n"},
        {"/ /mnt/ram rw - ext4 /dev/ram0 rw", "/mnt/ram = /mnt/ram, ram disk\n"},
        {"/ /proc rw - proc proc rw", ""},
        {"/ /mnt/scratch rw - tmpfs tmpfs rw", ""},
        {"/ /boot/efi rw - vfat /dev/sda2 rw", ""},
        {"/ /boot rw - ext4 /dev/sda3 rw", ""},
        {"/ /home rw - ext4 /dev/sda4 rw", ""},
        {"/ /var/lib/containers/x rw - ext4 /dev/sdd1 rw", ""},
        {"/ /snap/core/1 ro - squashfs /dev/loop0 ro", ""},
        {"/ /run/user/1000/gvfs rw - fuse.gvfsd-fuse gvfsd-fuse rw", ""},
        {"/ /home/u/.cache/share rw - cifs //server/x rw", ""},
        {"/ /merged rw - overlay overlay rw", ""},
        {"/var/project /project rw - ext4 /dev/sdd1 rw", ""},  // a folder of elsewhere
        {"/ /again rw - ext4 /dev/sda1 rw", ""},               // the root once more
        {"/ /broken", ""},
    };
    for (const Row& row : kRows) {
        const std::string table =
            std::string("20 1 8:1 / / rw - ext4 /dev/sda1 rw\n30 20 8:33 ") + row.mount + "\n";
        EXPECT_EQ(Shown(DrivesOf(ParseMounts(table), Facts)), kRoot + row.drives) << row.mount;
    }
}

TEST(Drives, EachVolumeIsListedOnceInTheOrderOfMountPoints) {
    const auto mounts = ParseMounts(
        "20 1 0:30 / / rw - overlay overlay rw\n"
        "21 20 8:65 / /z rw - ext4 /dev/sde1 rw\n"
        "22 20 8:33 / /mnt/one rw - ext4 /dev/sdc1 rw\n"
        "23 20 8:33 / /mnt/two rw - ext4 /dev/sdc1 rw\n"
        "24 20 0:40 / /far/a rw - nfs server:/a rw\n"
        "25 20 0:41 / /far/b rw - nfs server:/b rw\n"
        "26 20 0:99 / /z rw - tmpfs tmpfs rw\n");
    EXPECT_EQ(Shown(DrivesOf(mounts, Facts)), kRoot +
                                                  "/far/a = /far/a server:/a, remote\n"
                                                  "/far/b = /far/b server:/b, remote\n"
                                                  "/mnt/one = /mnt/one [Archive], fixed\n");
}

}  // namespace
}  // namespace tessara
