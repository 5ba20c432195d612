#include "core/rastx/MetafileModule.h"

#include <dlfcn.h>

#include <filesystem>
#include <string>

namespace tessara {
namespace {

PlayMetafileFunction LoadFrom(const std::filesystem::path& folder) {
    // The module stays loaded: pictures that it made refer to its code.
    void* module = dlopen((folder / kMetafileModuleName).c_str(), RTLD_NOW | RTLD_LOCAL);
    return module ? reinterpret_cast<PlayMetafileFunction>(dlsym(module, kPlayMetafileSymbol)) : nullptr;
}

PlayMetafileFunction LoadPlayer() {
    std::error_code unknown;
    const std::filesystem::path executable = std::filesystem::read_symlink("/proc/self/exe", unknown);
    if (!unknown) {
        if (const auto player = LoadFrom(executable.parent_path())) return player;
    }
    return LoadFrom(TESSARA_MODULE_DIR);
}

}  // namespace

Result<Picture> PlayMetafile(MetafileKind kind, Bytes file, const DecodeOptions& options) {
    static const PlayMetafileFunction player = LoadPlayer();
    if (!player)
        return Unsupported(std::string("metafiles need the module ") + kMetafileModuleName +
                           ", which cannot be loaded");
    Result<Picture> played = Damaged("the metafile was not drawn");
    player(kind, file, options, played);
    return played;
}

}  // namespace tessara
