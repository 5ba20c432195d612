#pragma once

#include <QString>
#include <string>

namespace tessara {

/// Bytes of a path as text to show; bytes that are no UTF-8 show as replacement characters.
inline QString ShownText(const std::string& bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}
inline std::string BytesOfText(const QString& text) {
    return text.toStdString();
}

}  // namespace tessara
