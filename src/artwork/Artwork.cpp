#include "artwork/Artwork.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <string>
#include <utility>

// The linker leaves the drawings out of a static library unless they are asked for; outside any namespace.
static void RegisterDrawings() {
    Q_INIT_RESOURCE(artwork);
}

namespace tessara {
namespace {

// The colours that stand in the drawings, for those of the palette.
constexpr char kDrawnNeutral[] = "#3b4046";
constexpr char kDrawnAccent[] = "#0f8f88";

struct Colors {
    QColor neutral;
    QColor accent;
};

Colors ColorsFor(PictureState state, const QPalette& palette) {
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    // In the full colour of the text, strokes look heavier than the text does.
    const QColor text = Mixed(palette.color(QPalette::Active, QPalette::WindowText), window, 0.15f);
    const QColor accent = ArtworkAccent(palette);
    switch (state) {
        case PictureState::Hover:
            return {Mixed(text, accent, 0.45f), accent.lighter(118)};
        case PictureState::Disabled: {
            const QColor grey = Mixed(window, text, 0.36f);
            return {grey, grey};
        }
        case PictureState::Selected: {
            const QColor light = palette.color(QPalette::Active, QPalette::HighlightedText);
            return {light, light};
        }
        case PictureState::Normal:
            break;
    }
    return {text, accent};
}

QString PathOf(std::string_view name) {
    RegisterDrawings();
    return QLatin1String(":/artwork/") + QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())) +
           QLatin1String(".svg");
}

QByteArray Drawing(const QString& path, const Colors& colors) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    QByteArray drawing = file.readAll();
    drawing.replace(kDrawnNeutral, colors.neutral.name().toLatin1());
    drawing.replace(kDrawnAccent, colors.accent.name().toLatin1());
    return drawing;
}

QPixmap Rendered(const QByteArray& drawing, QSize size, qreal devicePixelRatio) {
    QSvgRenderer renderer(drawing);
    if (!renderer.isValid()) return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPixmap pixmap(size * devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}

PictureState StateOf(QIcon::Mode mode) {
    switch (mode) {
        case QIcon::Disabled:
            return PictureState::Disabled;
        case QIcon::Active:
            return PictureState::Hover;
        case QIcon::Selected:
            return PictureState::Selected;
        case QIcon::Normal:
            break;
    }
    return PictureState::Normal;
}

/// Draws anew for each size and palette, so that an icon is never stretched and follows a change of colours.
class DrawingEngine final : public QIconEngine {
  public:
    DrawingEngine(std::string_view name, std::optional<QPalette> palette)
        : name_(name), palette_(std::move(palette)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        painter->drawPixmap(rect.topLeft(),
                            Picture(rect.size(), mode, painter->device()->devicePixelRatioF()));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return Picture(size, mode, 1);
    }
    QIconEngine* clone() const override { return new DrawingEngine(*this); }

  private:
    QPixmap Picture(QSize size, QIcon::Mode mode, qreal devicePixelRatio) const {
        return ArtworkPixmap(name_, size, StateOf(mode), devicePixelRatio,
                             palette_.value_or(QGuiApplication::palette()));
    }

    std::string name_;
    std::optional<QPalette> palette_;
};

}  // namespace

QIcon Artwork(std::string_view name, std::optional<QPalette> palette) {
    if (!QFile::exists(PathOf(name))) return {};
    return QIcon(new DrawingEngine(name, std::move(palette)));
}

QPixmap ArtworkPixmap(std::string_view name, QSize size, PictureState state, qreal devicePixelRatio,
                      const QPalette& palette) {
    const QString path = PathOf(name);
    const Colors colors = ColorsFor(state, palette);
    const QString key = QStringLiteral("%1 %2x%3@%4 %5 %6")
                            .arg(path)
                            .arg(size.width())
                            .arg(size.height())
                            .arg(devicePixelRatio)
                            .arg(colors.neutral.name(), colors.accent.name());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    pixmap = Rendered(Drawing(path, colors), size, devicePixelRatio);
    if (!pixmap.isNull()) QPixmapCache::insert(key, pixmap);
    return pixmap;
}

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QColor ArtworkAccent(const QPalette& palette) {
    return IsDark(palette) ? QColor(0x45, 0xc8, 0xbd) : QColor(QLatin1String(kDrawnAccent));
}

QColor Mixed(const QColor& a, const QColor& b, float share) {
    const auto mix = [share](float from, float to) { return from + (to - from) * share; };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()), mix(a.blueF(), b.blueF()));
}

}  // namespace tessara
