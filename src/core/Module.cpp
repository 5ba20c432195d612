#include "core/Module.h"

#include <dlfcn.h>

#include "core/ProgramFolders.h"

namespace tessara {

Result<void*> LoadModuleFunction(const std::string& module, const char* function) {
    std::error_code error;
    std::string reason;
    const std::filesystem::path beside = ExecutableFolder();
    for (const std::filesystem::path& folder : {beside, beside / TESSARA_MODULE_FROM_BIN}) {
        const std::string path = (folder / ("lib" + module + ".so")).string();
        void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!library) {
            if (const char* message = dlerror(); std::filesystem::exists(path, error)) reason = message;
            continue;
        }
        if (void* found = dlsym(library, function)) return found;
        return CannotRead(path + " is not of this version");
    }
    return CannotRead(reason.empty() ? module + " is not installed" : reason);
}

}  // namespace tessara
