#include "metafile/Typeface.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <algorithm>
#include <mutex>

namespace tessara::metafile {
namespace {

/// The size at which outlines are taken; large enough for their coordinates to be exact.
constexpr int kPixelsPerEm = 512;

struct Alias {
    const char* face;
    const char* meant;
};

/// Faces that were bitmaps or logical names; outline fonts of the same look stand for them.
constexpr Alias kAliases[] = {
    {"System", "Arial"},       {"Helv", "Arial"},         {"MS Sans Serif", "Arial"},
    {"MS Shell Dlg", "Arial"}, {"MS Shell Dlg 2", "Arial"}, {"Tms Rmn", "Times New Roman"},
    {"MS Serif", "Times New Roman"}, {"Fixedsys", "Courier New"}, {"Terminal", "Courier New"},
};

QString FamilyOf(const Font& font) {
    QString face = font.face;
    if (face.startsWith(QLatin1Char('@'))) face.remove(0, 1);  // the variant for vertical lines
    for (const Alias& alias : kAliases)
        if (face.compare(QLatin1String(alias.face), Qt::CaseInsensitive) == 0) return QLatin1String(alias.meant);
    return face.isEmpty() ? QStringLiteral("Arial") : face;
}

QFont::StyleHint HintOf(const Font& font) {
    constexpr unsigned kFixedPitch = 1, kRoman = 1, kModern = 3;
    const unsigned family = font.pitchAndFamily >> 4;
    if (family == kRoman) return QFont::Times;
    if (family == kModern || (font.pitchAndFamily & 3) == kFixedPitch) return QFont::TypeWriter;
    return QFont::Helvetica;
}

QFont SystemFont(const Font& font) {
    QFont found(FamilyOf(font));
    found.setStyleHint(HintOf(font));
    found.setPixelSize(kPixelsPerEm);
    found.setItalic(font.italic);
    found.setWeight(static_cast<QFont::Weight>(std::clamp(font.weight > 0 ? font.weight : 400, 1, 1000)));
    found.setHintingPreference(QFont::PreferNoHinting);
    return found;
}

}  // namespace

Typeface::Typeface(const Font& font) : font_(SystemFont(font)) {
    const QFontMetricsF metrics(font_);
    ascent_ = metrics.ascent() / kPixelsPerEm;
    descent_ = metrics.descent() / kPixelsPerEm;
    averageWidth_ = metrics.averageCharWidth() / kPixelsPerEm;
    underlinePosition_ = metrics.underlinePos() / kPixelsPerEm;
    strikeOutPosition_ = -metrics.strikeOutPos() / kPixelsPerEm;
    lineWidth_ = std::max(0.04, metrics.lineWidth() / kPixelsPerEm);
}

Typeface::Glyphs Typeface::Shaped(const QString& text) const {
    QPainterPath outline;
    outline.addText(0, 0, font_, text);
    outline.setFillRule(Qt::WindingFill);
    constexpr double kScale = 1.0 / kPixelsPerEm;
    return {QTransform::fromScale(kScale, kScale).map(outline),
            QFontMetricsF(font_).horizontalAdvance(text) * kScale};
}

const Typeface::Glyphs& Typeface::Character(const QString& character) const {
    auto found = characters_.find(character);
    if (found == characters_.end()) found = characters_.insert(character, Shaped(character));
    return *found;
}

const Typeface& TypefaceCache::Find(const Font& font) {
    EnsureFontsAvailable();
    const QString key = QStringLiteral("%1/%2/%3/%4")
                            .arg(font.face)
                            .arg(font.weight)
                            .arg(static_cast<int>(font.italic))
                            .arg(font.pitchAndFamily);
    std::shared_ptr<const Typeface>& typeface = typefaces_[key];
    if (!typeface) typeface = std::make_shared<const Typeface>(font);
    return *typeface;
}

void EnsureFontsAvailable() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (QCoreApplication::instance()) return;
        static int count = 3;
        static char name[] = "tessara", option[] = "-platform", platform[] = "offscreen";
        static char* arguments[] = {name, option, platform, nullptr};
        // Never deleted: nothing says when the last picture is drawn, and the process's end frees it.
        new QGuiApplication(count, arguments);
    });
}

}  // namespace tessara::metafile
