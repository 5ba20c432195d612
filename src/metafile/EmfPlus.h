#pragma once

#include <optional>

#include "core/rastx/Codec.h"

namespace tessara::metafile {

/// What the comments of an enhanced metafile carry beside its own records.
struct EmfComments {
    /// The newer records that some programs hide in comments are the whole drawing: the plain records are
    /// empty.
    bool plusOnly = false;
    /// The first image of the newer records, as a file of its own (PNG, JPEG, ...) or as raw pixels.
    ByteVector plusImage;
    /// A Windows metafile of the same drawing.
    Bytes windowsMetafile;
};

EmfComments ReadEmfComments(Bytes file);

/// Decodes an image object of the newer records.
Result<Picture> DecodePlusImage(Bytes object, const DecodeOptions& options);

}  // namespace tessara::metafile
