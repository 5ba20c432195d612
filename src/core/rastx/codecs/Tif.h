#pragma once

#include "core/rastx/Codec.h"

namespace tessara {

/// TIFF and BigTIFF: the first picture of a file. libtiff brings so many libraries along that it would double
/// the start of every conversion, so the reader is a module that is loaded when the first TIFF is read;
/// without it reading is an `Unsupported` failure.
bool RecogniseTif(Bytes file);
Result<Picture> DecodeTif(Bytes file, const DecodeOptions& options);
Result<void> EncodeTif(const Picture& picture, const EncodeOptions& options, ByteSink& sink);

/// What the module exports under the name kReadTiffFunction.
using ReadTiffFunction = void (*)(Bytes file, const DecodeOptions& options, Result<Picture>& read);
inline constexpr char kReadTiffFunction[] = "TessaraReadTiff";

}  // namespace tessara
