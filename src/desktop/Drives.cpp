#include "desktop/Drives.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <span>
#include <sstream>

namespace tessara {
namespace {

constexpr std::string_view kDiskSystems[] = {
    "apfs",    "bcachefs", "btrfs",   "exfat", "ext2",  "ext3",  "ext4",    "f2fs",
    "fuseblk", "hfs",      "hfsplus", "jfs",   "minix", "msdos", "ntfs",    "ntfs3",
    "nilfs2",  "reiserfs", "ufs",     "vfat",  "xfs",   "zfs",   "iso9660", "udf",
};
constexpr std::string_view kNetworkSystems[] = {
    "9p",
    "afs",
    "ceph",
    "cifs",
    "davfs",
    "fuse.davfs",
    "fuse.glusterfs",
    "fuse.rclone",
    "fuse.sshfs",
    "fuse.vmhgfs-fuse",
    "glusterfs",
    "lustre",
    "ncpfs",
    "nfs",
    "nfs4",
    "smb3",
    "smbfs",
    "vboxsf",
    "virtiofs",
};
/// Folders of the system: what is mounted there is part of it, as is what is mounted below those that end in
/// a separator.
constexpr std::string_view kSystemFolders[] = {
    "/bin/",  "/boot/", "/dev/",  "/efi/",  "/etc/", "/home", "/lib/", "/nix/", "/opt",  "/proc/",
    "/root/", "/run/",  "/sbin/", "/snap/", "/srv",  "/sys/", "/tmp/", "/usr/", "/var/",
};
constexpr std::string_view kUserMounts = "/run/media/";

bool Contains(std::span<const std::string_view> names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

bool IsNetwork(const Mount& mount) {
    return Contains(kNetworkSystems, mount.fileSystem);
}

bool IsOfTheSystem(const std::string& path) {
    if (path.starts_with(kUserMounts)) return false;
    return path.find("/.") != std::string::npos ||
           std::ranges::any_of(kSystemFolders, [&](std::string_view folder) {
               return folder.back() == '/' ? (path + "/").starts_with(folder) : path == folder;
           });
}

/// A folder mounted a second time elsewhere, as containers do. Parts of a btrfs volume look the same.
bool IsPartOfAnother(const Mount& mount) {
    return mount.root != "/" && mount.fileSystem != "btrfs" && !IsNetwork(mount);
}

bool IsDrive(const Mount& mount) {
    return (Contains(kDiskSystems, mount.fileSystem) || IsNetwork(mount)) && !IsPartOfAnother(mount) &&
           !IsOfTheSystem(mount.mountPoint);
}

bool IsDevice(const std::string& source) {
    return source.starts_with("/dev/");
}

/// What two mounts of one file system have in common.
std::string Identity(const Mount& mount) {
    return IsDevice(mount.source) ? mount.source : mount.device;
}

DriveType TypeOf(const Mount& mount, bool removable) {
    if (IsNetwork(mount)) return DriveType::Remote;
    const auto isFrom = [&](std::string_view device) { return mount.source.starts_with(device); };
    if (isFrom("/dev/ram") || isFrom("/dev/zram")) return DriveType::RamDisk;
    const bool disc = mount.fileSystem == "iso9660" || mount.fileSystem == "udf";
    if (isFrom("/dev/sr") || (disc && isFrom("/dev/loop"))) return DriveType::CdRom;
    return removable ? DriveType::Removable : DriveType::Fixed;
}

Drive DriveOf(const Mount& mount, const DeviceFacts& facts) {
    std::string line = mount.mountPoint;
    if (!facts.label.empty())
        line += " [" + facts.label + "]";
    else if (IsNetwork(mount))
        line += " " + mount.source;
    return {mount.mountPoint, line, TypeOf(mount, facts.removable)};
}

/// The table writes blanks and the like as a backslash and three octal digits.
std::string Unescaped(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned code = 0;
        const bool escape = text[i] == '\\' && i + 3 < text.size() &&
                            std::from_chars(&text[i + 1], &text[i + 1] + 3, code, 8).ptr == &text[i + 1] + 3;
        plain += escape ? static_cast<char>(code) : text[i];
        if (escape) i += 3;
    }
    return plain;
}

}  // namespace

std::vector<Mount> ParseMounts(std::string_view mountInfo) {
    std::vector<Mount> mounts;
    std::istringstream lines{std::string(mountInfo)};
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string id, parent, options, word;
        Mount mount;
        fields >> id >> parent >> mount.device >> mount.root >> mount.mountPoint >> options;
        while (fields >> word && word != "-") {
        }
        if (!(fields >> mount.fileSystem >> mount.source)) continue;
        for (std::string* path : {&mount.root, &mount.mountPoint, &mount.source}) *path = Unescaped(*path);
        mounts.push_back(std::move(mount));
    }
    return mounts;
}

std::vector<Drive> DrivesOf(const std::vector<Mount>& mounts,
                            const std::function<DeviceFacts(const std::string& source)>& facts) {
    std::map<std::string, const Mount*> byMountPoint;
    // What is mounted later hides what was there.
    for (const Mount& mount : mounts) byMountPoint[mount.mountPoint] = &mount;
    std::set<std::string> seen;
    if (const auto root = byMountPoint.find("/"); root != byMountPoint.end())
        seen.insert(Identity(*root->second));
    std::vector<Drive> drives = {{"/", "/ [File System]", DriveType::Fixed}};
    for (const auto& [mountPoint, mount] : byMountPoint) {
        if (mountPoint == "/" || !IsDrive(*mount) || !seen.insert(Identity(*mount)).second) continue;
        drives.push_back(DriveOf(*mount, IsDevice(mount->source) ? facts(mount->source) : DeviceFacts()));
    }
    return drives;
}

}  // namespace tessara
