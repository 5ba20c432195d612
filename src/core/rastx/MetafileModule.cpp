#include "core/rastx/MetafileModule.h"

#include "core/Module.h"

namespace tessara {

Result<Picture> PlayMetafile(MetafileKind kind, Bytes file, const DecodeOptions& options) {
    static const Result<void*> function = LoadModuleFunction("tessara_metafile", kPlayMetafileFunction);
    if (!function) return Unsupported("metafiles cannot be drawn: " + function.Error().message);
    Result<Picture> played = Damaged("the metafile was not drawn");
    reinterpret_cast<PlayMetafileFunction>(function.Value())(kind, file, options, played);
    return played;
}

}  // namespace tessara
