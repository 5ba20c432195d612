#include "core/rastx/codecs/Tif.h"

#include "core/ByteReader.h"
#include "core/Module.h"

namespace tessara {

bool RecogniseTif(Bytes file) {
    using namespace std::string_view_literals;
    return HasSignature(file, "II*\0"sv) || HasSignature(file, "MM\0*"sv) || HasSignature(file, "II+\0"sv) ||
           HasSignature(file, "MM\0+"sv);
}

Result<Picture> DecodeTif(Bytes file, const DecodeOptions& options) {
    if (!RecogniseTif(file)) return Damaged("the file does not begin like a TIFF");
    static const Result<void*> function = LoadModuleFunction("tessara_tiff", kReadTiffFunction);
    if (!function) return Unsupported("TIFF cannot be read: " + function.Error().message);
    Result<Picture> read = Damaged("the file was not read");
    reinterpret_cast<ReadTiffFunction>(function.Value())(file, options, read);
    return read;
}

}  // namespace tessara
