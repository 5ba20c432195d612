#include "core/PathNames.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace tessara {
namespace {

bool CanMakeFolder(const std::string& path) {
    if (mkdir(path.c_str(), 0777) != 0) return errno == EEXIST;
    rmdir(path.c_str());
    return true;
}

}  // namespace

bool CheckPathNameValid(const std::string& appPath, const std::string& text, PathNameKind kind) {
    if (text.find('\0') != std::string::npos) return false;
    if (kind == PathNameKind::P) return CanMakeFolder(text);
    // A separator would try a folder elsewhere.
    return text.find('/') == std::string::npos && CanMakeFolder(appPath + "/temp" + text + "1");
}

}  // namespace tessara
