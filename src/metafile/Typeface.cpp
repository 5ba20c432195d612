#include "metafile/Typeface.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <algorithm>
#include <cstdio>
#include <mutex>

#include "metafile/CodePage.h"

namespace tessara::metafile {
namespace {

/// The size at which outlines are taken; large enough for their coordinates to be exact.
constexpr int kPixelsPerEm = 512;

enum class Style { Sans, Serif, Fixed };

struct KnownFace {
    const char* start;  ///< of the name; styles such as "Italic" may follow
    Style style;
    const char* twin = nullptr;  ///< a free font of the same widths, where it is not the style's own
};

/// Faces whose style is known whatever the file says; some were bitmaps or logical names. All others go by
/// their pitch, or are taken for sans serif.
constexpr KnownFace kKnownFaces[] = {
    {"Arial Narrow", Style::Sans, "Liberation Sans Narrow"},
    {"Calibri", Style::Sans, "Carlito"},
    {"Times", Style::Serif},
    {"Tms Rmn", Style::Serif},
    {"MS Serif", Style::Serif},
    {"Symbol", Style::Serif},
    {"Cambria", Style::Serif, "Caladea"},
    {"Garamond", Style::Serif, "EB Garamond"},
    {"Georgia", Style::Serif, "Gelasio"},
    {"Palatino", Style::Serif, "P052"},
    {"Book Antiqua", Style::Serif, "P052"},
    {"Bookman", Style::Serif, "URW Bookman"},
    {"Century", Style::Serif, "C059"},
    {"Courier", Style::Fixed},
    {"Fixedsys", Style::Fixed},
    {"Terminal", Style::Fixed},
    {"Consolas", Style::Fixed, "Inconsolata"},
    {"Lucida Console", Style::Fixed},
};

Style StyleByPitch(const Font& font) {
    constexpr unsigned kFixedPitch = 1, kRoman = 1, kModern = 3;
    const unsigned family = font.pitchAndFamily >> 4;
    if (family == kRoman) return Style::Serif;
    return family == kModern || (font.pitchAndFamily & 3) == kFixedPitch ? Style::Fixed : Style::Sans;
}

/// What stands for a face of a style, best first: fonts of the widths that documents were laid out with.
QStringList FamiliesOf(Style style) {
    const auto list = [](std::initializer_list<const char*> names) {
        QStringList families;
        for (const char* name : names) families << QLatin1String(name);
        return families;
    };
    switch (style) {
        case Style::Serif:
            return list({"Liberation Serif", "Nimbus Roman", "TeX Gyre Termes", "DejaVu Serif"});
        case Style::Fixed:
            return list({"Liberation Mono", "Nimbus Mono PS", "TeX Gyre Cursor", "DejaVu Sans Mono"});
        case Style::Sans:
            break;
    }
    return list({"Liberation Sans", "Nimbus Sans", "TeX Gyre Heros", "DejaVu Sans"});
}

QStringList FamiliesOf(const Font& font) {
    QString face = font.face;
    if (face.startsWith(QLatin1Char('@'))) face.remove(0, 1);  // the variant for vertical lines
    const auto* known = std::ranges::find_if(kKnownFaces, [&](const KnownFace& row) {
        return face.startsWith(QLatin1String(row.start), Qt::CaseInsensitive);
    });
    QStringList families;
    // Symbols were turned into the characters they show; a symbol font would take these for codes.
    if (!face.isEmpty() && !IsSymbolFont(face, font.charset)) families << face;
    if (known == std::end(kKnownFaces)) return families + FamiliesOf(StyleByPitch(font));
    if (known->twin) families << QLatin1String(known->twin);
    return families + FamiliesOf(known->style);
}

QFont SystemFont(const Font& font) {
    QFont found(FamiliesOf(font));
    found.setPixelSize(kPixelsPerEm);
    const auto faceSays = [&](const char* style) {
        return font.face.contains(QLatin1String(style), Qt::CaseInsensitive);
    };
    found.setItalic(font.italic || faceSays(" Italic"));
    const int weight = font.weight > 0 ? font.weight : faceSays(" Bold") ? 700 : 400;
    found.setWeight(static_cast<QFont::Weight>(std::clamp(weight, 1, 1000)));
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

const Typeface* TypefaceCache::Find(const Font& font, WorkBudget& budget) {
    constexpr double kPerTypeface = 5e6;
    EnsureFontsAvailable();
    const QString key = QStringLiteral("%1/%2/%3/%4/%5")
                            .arg(font.face)
                            .arg(font.weight)
                            .arg(static_cast<int>(font.italic))
                            .arg(font.pitchAndFamily)
                            .arg(font.charset);
    std::shared_ptr<const Typeface>& typeface = typefaces_[key];
    if (!typeface && budget.Spend(kPerTypeface)) typeface = std::make_shared<const Typeface>(font);
    return typeface.get();
}

namespace {

/// The toolkit's remarks about the system are of no use to somebody who converts a file.
void PassOverRemarks(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg) std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
}

}  // namespace

void EnsureFontsAvailable() {
    static std::once_flag once;
    std::call_once(once, [] {
        if (QCoreApplication::instance()) return;
        static int count = 3;
        static char name[] = "tessara", option[] = "-platform", platform[] = "offscreen";
        static char* arguments[] = {name, option, platform, nullptr};
        qInstallMessageHandler(PassOverRemarks);
        // Never deleted: nothing says when the last picture is drawn, and the process's end frees it.
        new QGuiApplication(count, arguments);
    });
}

}  // namespace tessara::metafile
