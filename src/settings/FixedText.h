#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tessara {

/// What ends a text within a field of fixed length.
inline constexpr std::string_view kTerminator = "///";

/// What stands before the first terminator of a field, none where there is no terminator. Of the root's four
/// separators the first is the path, not the terminator's.
inline std::optional<std::string> TextOfField(std::string_view field) {
    const std::size_t end = field.starts_with("////") ? 1 : field.find(kTerminator);
    if (end == std::string_view::npos) return std::nullopt;
    return std::string(field.substr(0, end));
}

/// At most `size` bytes of a UTF-8 text, never a part of a character.
inline std::string_view CutText(std::string_view text, std::size_t size) {
    if (text.size() <= size) return text;
    const auto continues = [&](std::size_t i) {
        return (static_cast<unsigned char>(text[i]) & 0xc0) == 0x80;
    };
    constexpr std::size_t kLongestCharacter = 4;
    std::size_t end = size;
    while (end > 0 && size - end < kLongestCharacter && continues(end)) --end;
    // Bytes that are no UTF-8 have no characters to keep whole.
    return text.substr(0, continues(end) ? size : end);
}

/// A text cut or filled with blanks to exactly `size` bytes.
inline std::string FixedText(std::string_view text, std::size_t size) {
    std::string field(CutText(text, size));
    field.resize(size, ' ');
    return field;
}

}  // namespace tessara
