#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace tessara {

/// Bytes, of a path or a table, as text to show; what is no UTF-8 shows as replacement characters.
inline QString ShownText(std::string_view bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}
inline std::string BytesOfText(const QString& text) {
    return text.toStdString();
}

/// For places that have room for one line: a line break in a name shows as a sign.
inline QString OnOneLine(QString text) {
    constexpr QChar kSignForLineBreak(0x21b5);
    return text.replace(QChar::LineFeed, kSignForLineBreak);
}
/// A tool tip that shows a text as it stands, also where it looks like markup.
QString ToolTipOf(const QString& text);

}  // namespace tessara
