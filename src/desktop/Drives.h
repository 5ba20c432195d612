#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/Shell.h"

namespace tessara {

/// A mounted file system, as the system's table of mounts lists it.
struct Mount {
    std::string device;  ///< its number, "8:1"
    std::string root;    ///< the folder within the file system that is mounted: "/" for all of it
    std::string mountPoint;
    std::string fileSystem;  ///< "ext4"
    std::string source;      ///< "/dev/sda1", "server:/share"
};
/// Reads the lines of /proc/self/mountinfo; what is no such line is left out.
std::vector<Mount> ParseMounts(std::string_view mountInfo);

/// What is known of a device besides.
struct DeviceFacts {
    bool removable = false;
    std::string label;
};

/// The root of the file system, and behind it what a person would call a drive, by mount point: no pseudo
/// file system, none of the system's own parts, none that is mounted twice. `facts` is asked for paths of
/// devices.
std::vector<Drive> DrivesOf(const std::vector<Mount>& mounts,
                            const std::function<DeviceFacts(const std::string& source)>& facts);

/// The drives of this machine. Touches none of them, so that no disc spins up and no lost server is waited
/// for.
std::vector<Drive> MountedDrives();

}  // namespace tessara
