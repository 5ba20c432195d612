#pragma once

#include <array>
#include <span>
#include <string_view>

#include "core/ByteSink.h"
#include "core/Bytes.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"

namespace tessara {

struct DecodeOptions {
    Limits limits;
    /// How many pictures may lie inside one another (an icon in a metafile in a metafile) before a decoder
    /// gives up.
    int nestingLeft = 3;

    /// For a picture carried inside another file; ask `nestingLeft` first.
    DecodeOptions Nested() const { return {limits, nestingLeft - 1}; }
};

/// What the save operations are told; each encoder takes what concerns it.
struct EncodeOptions {
    bool transparent = false;  ///< GIF, ICO: pixels of `color` become transparent
    ColorNumber color = 0;
    int quality = 80;          ///< JPG: 1 to 100
    bool grey = false;         ///< JPG
    bool progressive = false;  ///< JPG

    bool operator==(const EncodeOptions&) const = default;
};

/// How far the first bytes of a file tell its format.
enum class Recognition {
    Signature,  ///< a magic number that no other format here shares
    Structure,  ///< only plausible fields: asked after all signatures and after the file's extension
};

/// One file format: bytes in memory to a picture and back. No paths, no state.
struct Codec {
    std::string_view name;  ///< in capitals, as in the format tables
    Recognition recognition;
    bool (*recognise)(Bytes file);
    Result<Picture> (*decode)(Bytes file, const DecodeOptions& options);
    /// Null for a format that is only read.
    Result<void> (*encode)(const Picture& picture, const EncodeOptions& options, ByteSink& sink);
};

/// A row of the import table: an extension and the codec of files whose contents tell nothing.
struct ImportFormat {
    std::string_view label;  ///< the extension in the case of dialogs, "Jpeg"
    const Codec* codec;
};

/// A row of the export table.
struct ExportFormat {
    std::string_view label;   ///< "Jpg"
    std::string_view suffix;  ///< ".jpg"
    const Codec* codec;
};

/// Every codec, in the order in which a file's contents are tried.
std::span<const Codec> Codecs();
/// The 25 extensions that are read and the 10 that are written. The orders are fixed: indexes into them are
/// stored in the settings file.
std::span<const ImportFormat, 25> ImportFormatTable();
std::span<const ExportFormat, 10> ExportFormatTable();

/// The codec of a file: by its signature, else by its extension (in any case, without a dot), else by its
/// structure; null where nothing fits.
const Codec* FindCodec(Bytes file, std::string_view extension);

/// Decodes a whole file in memory.
Result<Picture> DecodeFile(Bytes file, std::string_view extension, const DecodeOptions& options = {});

}  // namespace tessara
