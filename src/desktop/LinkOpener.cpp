#include "desktop/LinkOpener.h"

#include <QDesktopServices>
#include <QUrl>
#include <filesystem>

#include "core/Text.h"
#include "desktop/PathText.h"

namespace tessara {

std::string LinkAddress(std::string target, std::string_view kind) {
    for (char& c : target) c = LowerCase(c);
    target.erase(target.find_last_not_of(std::string_view(" \0", 2)) + 1);
    if (EqualIgnoringCase(kind, "WEB")) {
        const bool hasScheme = target.starts_with("http://") || target.starts_with("ftp://");
        return hasScheme ? target : "http://" + target;
    }
    return EqualIgnoringCase(kind, "MAIL") ? "mailto:" + target : target;
}

std::string FolderAddress(const std::string& folder) {
    std::error_code ignored;
    const std::string whole = std::filesystem::absolute(folder, ignored).string();
    // Byte by byte, for a name that is no valid UTF-8.
    return "file://" + QByteArray::fromStdString(whole).toPercentEncoding("/").toStdString();
}

void DesktopLinkOpener::Open(const std::string& address) {
    QDesktopServices::openUrl(QUrl(ShownText(address)));
}

}  // namespace tessara
