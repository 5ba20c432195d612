#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "desktop/Drives.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

std::string Contents(const fs::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

fs::path Resolved(const fs::path& path) {
    std::error_code error;
    return fs::canonical(path, error);
}

/// Whether a block device, given by its folder in /sys, is one that is taken out.
bool IsRemovable(fs::path device) {
    std::error_code error;
    // An encrypted or joined volume is as removable as what it lies on.
    for (const auto& below : fs::directory_iterator(device / "slaves", error))
        return IsRemovable(Resolved(below.path()));
    if (fs::exists(device / "partition", error)) device = device.parent_path();
    // Cards in a reader of their own do not count as removable for the system.
    return Contents(device / "removable").starts_with('1') ||
           Contents(device / "device/type").starts_with("SD");
}

/// The names of links are written with codes such as "\x20".
std::string LabelOf(const std::string& name) {
    std::string label;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool code = name.compare(i, 2, "\\x") == 0 && i + 3 < name.size();
        label += code ? static_cast<char>(std::strtol(name.substr(i + 2, 2).c_str(), nullptr, 16)) : name[i];
        if (code) i += 3;
    }
    return label;
}

DeviceFacts FactsOf(const std::string& source) {
    const fs::path device = Resolved(source);
    const fs::path described = Resolved("/sys/class/block" / device.filename());
    DeviceFacts facts{!described.empty() && IsRemovable(described), {}};
    std::error_code error;
    for (const auto& link : fs::directory_iterator("/dev/disk/by-label", error))
        if (Resolved(link.path()) == device) facts.label = LabelOf(link.path().filename());
    return facts;
}

}  // namespace

std::vector<Drive> MountedDrives() {
    return DrivesOf(ParseMounts(Contents("/proc/self/mountinfo")), FactsOf);
}

}  // namespace tessara
