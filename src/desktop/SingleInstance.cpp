#include "desktop/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QStandardPaths>
#include <cerrno>
#include <cstdlib>

#include "desktop/PathText.h"

namespace tessara {

SingleInstance::SingleInstance(const std::string& lockFile)
    // Programs that we start must not inherit the lock.
    : descriptor_(open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (descriptor_ >= 0) first_ = flock(descriptor_, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

SingleInstance::~SingleInstance() {
    if (descriptor_ >= 0) close(descriptor_);
}

std::string InstanceLockFile() {
    std::string display;
    for (const char* name : {"WAYLAND_DISPLAY", "DISPLAY"})
        if (const char* value = std::getenv(name); value && display.empty()) display = value;
    for (char& c : display)
        if (c == '/') c = '-';
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return BytesOfText(folder) + "/tessara-" + display + ".lock";
}

}  // namespace tessara
