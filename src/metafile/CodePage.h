#pragma once

#include <iconv.h>
#include <QString>
#include <vector>

#include "core/Bytes.h"

namespace tessara::metafile {

/// Text of bytes, decoded: one UTF-16 string, and for each of its units how many bytes it came from (0 for
/// the second half of a pair), since widths are given for bytes.
struct DecodedText {
    QString text;
    std::vector<int> bytesOfUnit;
};

/// Decodes bytes by the character set number of a font; what cannot be decoded is taken as Latin-1.
DecodedText DecodeText(Bytes bytes, unsigned charset);

/// Whether the characters of a font are symbols by their place, and the usual characters for those of the
/// fonts that everybody used: `code` is the byte, also as U+F000 plus the byte.
bool IsSymbolFont(const QString& face, unsigned charset);
char32_t SymbolOf(const QString& face, char32_t code);

}  // namespace tessara::metafile
