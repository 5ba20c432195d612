#include "desktop/FileTypes.h"

#include <QIcon>
#include <QPainter>
#include <algorithm>

#include "core/Files.h"
#include "core/Text.h"
#include "core/rastx/Codec.h"
#include "core/rastx/effects/Resample.h"
#include "desktop/PathText.h"
#include "desktop/PictureImage.h"

namespace tessara {
namespace {

/// Draws on a grid of 16 by 16 whatever the icon's side, with all edges on whole pixels.
class IconDrawing {
  public:
    explicit IconDrawing(int side) : side_(side), pixmap_(side, side) {
        pixmap_.fill(Qt::transparent);
        painter_.begin(&pixmap_);
    }

    QPixmap Finish() {
        painter_.end();
        return pixmap_;
    }

    /// A sheet of paper with its corner folded.
    void Sheet() {
        painter_.setPen(QPen(QColor(120, 128, 138), Line()));
        painter_.setBrush(Qt::white);
        painter_.drawPolygon(QPolygonF({Edge(2, 1), Edge(10, 1), Edge(13, 4), Edge(13, 14), Edge(2, 14)}));
        painter_.setBrush(QColor(222, 226, 231));
        painter_.drawPolygon(QPolygonF({Edge(10, 1), Edge(10, 4), Edge(13, 4)}));
    }
    void Bar(int x, int y, int width, int height, const QColor& color) {
        painter_.fillRect(QRect(At(x, y), At(x + width, y + height) - QPoint(1, 1)), color);
    }
    /// A landscape in a frame of the given colour.
    void Landscape(const QColor& color) {
        Bar(4, 6, 8, 7, color.darker(125));
        const QRect view(At(4, 6) + QPoint(Line(), Line()), At(12, 13) - QPoint(1 + Line(), 1 + Line()));
        painter_.fillRect(view, color.lighter(165));
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.setClipRect(view);
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(Qt::white);
        painter_.drawEllipse(QRectF(At(9, 7), At(11, 9)));
        painter_.setBrush(color);
        painter_.drawPolygon(QPolygon({At(3, 13), At(7, 8), At(9, 11), At(10, 10), At(13, 13)}));
    }

  private:
    int Line() const { return std::max(1, side_ / 32); }
    QPoint At(int x, int y) const { return {(x * side_ + 8) / 16, (y * side_ + 8) / 16}; }
    /// A point of an outline: in the middle of a pixel.
    QPointF Edge(int x, int y) const { return At(x, y) + QPointF(0.5, 0.5); }

    int side_;
    QPixmap pixmap_;
    QPainter painter_;
};

/// Neighbours in the list of formats get colours far from each other.
QColor ColorOf(const QMimeType& type) {
    const auto formats = ImportFormatTable();
    const auto format = std::ranges::find_if(formats, [&](const ImportFormat& row) {
        return type.suffixes().contains(QString::fromLatin1(row.label.data(), qsizetype(row.label.size())),
                                        Qt::CaseInsensitive);
    });
    if (format == formats.end()) return QColor(130, 140, 150);
    return QColor::fromHsv(static_cast<int>(210 + 137 * (format - formats.begin())) % 360, 165, 205);
}

QPixmap DrawnIcon(const QMimeType& type, int side) {
    IconDrawing drawing(side);
    drawing.Sheet();
    if (type.name().startsWith(QLatin1String("image/"))) {
        drawing.Landscape(ColorOf(type));
    } else if (type.inherits(QStringLiteral("text/plain"))) {
        for (int y = 6; y < 13; y += 2) drawing.Bar(4, y, y == 12 ? 4 : 8, 1, QColor(150, 158, 168));
    }
    return drawing.Finish();
}

std::string Capitalised(std::string text) {
    if (!text.empty()) text[0] = UpperCase(text[0]);
    return text;
}

}  // namespace

std::string TypeNameFrom(const std::string& description, std::string_view extension) {
    constexpr std::string_view kImage = " image";
    if (description.size() > kImage.size() && description.ends_with(kImage))
        return "Image (" + description.substr(0, description.size() - kImage.size()) + ")";
    if (extension.empty() || !EqualIgnoringCase(description.substr(0, extension.size()), extension))
        return Capitalised(description);
    const std::size_t end = description.find_first_of(" -");
    if (end == std::string::npos) return "File (" + description + ")";
    return Capitalised(description.substr(end + 1)) + " (" + description.substr(0, end) + ")";
}

QPixmap IconOfType(const QMimeType& type, int side) {
    const QIcon icon = QIcon::fromTheme(type.iconName(), QIcon::fromTheme(type.genericIconName()));
    const QPixmap themed = icon.pixmap(QSize(side, side), 1.0);
    if (themed.isNull()) return DrawnIcon(type, side);
    return themed;
}

QPixmap IconOfIconFile(const std::string& path, int side) {
    const auto file = FileBytes::Read(path);
    if (!file) return {};
    const auto icon = DecodeFile(file.Value().View(), "ico");
    if (!icon) return {};
    const int longest = std::max(icon.Value().Width(), icon.Value().Height());
    const auto shown = Resample(icon.Value(), icon.Value().Width() * side / longest,
                                icon.Value().Height() * side / longest, ResampleQuality::Best);
    return shown ? QPixmap::fromImage(ImageOn(shown.Value()).copy()) : QPixmap();
}

}  // namespace tessara
