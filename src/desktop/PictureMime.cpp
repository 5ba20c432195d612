#include "desktop/PictureMime.h"

#include <QImage>
#include <QUrl>
#include <algorithm>
#include <optional>

#include "core/ByteSink.h"
#include "core/Files.h"
#include "core/Paths.h"
#include "core/Text.h"
#include "core/rastx/Codec.h"
#include "desktop/PathText.h"
#include "desktop/PictureImage.h"

namespace tessara {
namespace {

const QString kImageFormat = QStringLiteral("application/x-qt-image");

/// The media types of our own codecs; what keeps most of a picture comes first.
struct MediaType {
    const char* name;
    const char* extension;
    bool offered;
};
constexpr MediaType kMediaTypes[] = {
    {"image/png", "png", true},       {"image/bmp", "bmp", true},   {"image/x-bmp", "bmp", false},
    {"image/x-MS-bmp", "bmp", false}, {"image/tiff", "tif", false}, {"image/jpeg", "jpg", false},
    {"image/gif", "gif", false},
};

QByteArray Encoded(const Picture& picture, const std::string& suffix) {
    const auto format = std::ranges::find(ExportFormatTable(), suffix, &ExportFormat::suffix);
    MemorySink sink;
    if (!format->codec->encode(picture, {}, sink)) return {};
    const ByteVector& bytes = sink.Written();
    return QByteArray(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
}

bool IsImportExtension(std::string_view extension) {
    return std::ranges::any_of(ImportFormatTable(), [extension](const ImportFormat& format) {
        return EqualIgnoringCase(format.label, extension);
    });
}

/// The first copied file that we can read by its name.
std::optional<std::string> CopiedFile(const QMimeData& data) {
    for (const QUrl& url : data.urls()) {
        std::string path = BytesOfText(url.toLocalFile());
        if (IsImportExtension(ExtensionOf(path))) return path;
    }
    return std::nullopt;
}

Result<Picture> ReadPicture(const std::string& path) {
    TRY_ASSIGN(const FileBytes file, FileBytes::Read(path));
    return DecodeFile(file.View(), ExtensionOf(path));
}

Result<Picture> Decoded(const QByteArray& file, const char* extension) {
    return DecodeFile(
        {reinterpret_cast<const std::uint8_t*>(file.data()), static_cast<std::size_t>(file.size())},
        extension);
}

}  // namespace

QStringList PictureMime::formats() const {
    QStringList offered;
    for (const MediaType& type : kMediaTypes)
        if (type.offered) offered << QString::fromLatin1(type.name);
    return offered << kImageFormat;
}

QVariant PictureMime::retrieveData(const QString& format, QMetaType) const {
    if (format == kImageFormat) return SharedImage(picture_);
    for (const MediaType& type : kMediaTypes)
        if (type.offered && format == QLatin1String(type.name))
            return Encoded(picture_, std::string(".") + type.extension);
    return {};
}

bool OffersPicture(const QMimeData& data) {
    const QStringList formats = data.formats();
    const bool known = std::ranges::any_of(kMediaTypes, [&](const MediaType& type) {
        return formats.contains(QLatin1String(type.name), Qt::CaseInsensitive);
    });
    return known || data.hasImage() || CopiedFile(data);
}

Result<Picture> TakePicture(const QMimeData& data) {
    for (const MediaType& type : kMediaTypes) {
        const QByteArray file = data.data(QString::fromLatin1(type.name));
        if (file.isEmpty()) continue;
        auto picture = Decoded(file, type.extension);
        if (picture) return picture;
    }
    const QImage image = qvariant_cast<QImage>(data.imageData());
    if (!image.isNull()) return PictureOf(image);
    if (const auto path = CopiedFile(data)) return ReadPicture(*path);
    return CannotRead("the clipboard holds no picture");
}

}  // namespace tessara
