#include "browse/NodeKeys.h"

#include <algorithm>

#include "core/Text.h"

namespace tessara {
namespace {

/// By drive type.
constexpr TreePicture kDrivePictures[] = {
    TreePicture::UnknownDrive, TreePicture::FixedDisk,   TreePicture::RemovableDisk, TreePicture::FixedDisk,
    TreePicture::NetworkDrive, TreePicture::OpticalDisc, TreePicture::RemovableDisk,
};

/// "C: [SYSTEM]" reads "SYSTEM (C:)"; what stands behind the key without brackets, such as the name of a
/// remote folder, stays with its blank.
std::string DriveText(std::string_view key, std::string_view line) {
    std::string_view label = line.substr(std::min(key.size(), line.size()));
    if (label.starts_with(" [") && label.ends_with(']')) label = label.substr(2, label.size() - 3);
    return std::string(label) + " (" + std::string(key) + ")";
}

}  // namespace

bool IsVirtualKey(std::string_view key) {
    return key.starts_with(kDocumentsKey);
}

std::string RealPath(const std::string& key, const std::string& documentsPath) {
    return IsVirtualKey(key) ? documentsPath + key.substr(kDocumentsKey.size()) : key;
}

DriveNode DriveNodeFor(const Drive& drive, PathRules rules) {
    const std::string key = rules.driveLetters ? UpperCase(drive.line.substr(0, 2)) : drive.key;
    DriveNode node{key, DriveText(key, drive.line), kDrivePictures[static_cast<int>(drive.type)],
                   drive.type != DriveType::Removable};
    const bool isFloppy = drive.type == DriveType::Removable && (key == "A:" || key == "B:");
    if (isFloppy) {
        node.picture = TreePicture::Floppy;
        node.text = key;
    }
    return node;
}

}  // namespace tessara
