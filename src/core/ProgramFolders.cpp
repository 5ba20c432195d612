#include "core/ProgramFolders.h"

namespace tessara {

std::filesystem::path ExecutableFolder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

std::string HelpFolder() {
    const std::filesystem::path beside = ExecutableFolder();
    for (const std::filesystem::path& folder : {beside / "help", beside / TESSARA_HELP_FROM_BIN}) {
        std::error_code error;
        if (std::filesystem::is_directory(folder, error)) return folder.lexically_normal().string();
    }
    return {};
}

}  // namespace tessara
