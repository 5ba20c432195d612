#include "mainwindow/HelpPage.h"

#include <QEvent>
#include <QFileInfo>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "artwork/Artwork.h"

namespace tessara {
namespace {

constexpr int kMargin = 24;
constexpr int kSmallest = -4, kLargest = 12;  // points

/// The colours that stand in the style sheet, for how much of the text's colour lies on the background.
struct PageColor {
    const char* drawn;
    float textShare;
};
constexpr PageColor kGreys[] = {{"#eef1f1", 0.06f}, {"#cdd3d4", 0.22f}, {"#555c61", 0.78f}};
constexpr char kDrawnAccent[] = "#0f8f88";

}  // namespace

HelpPage::HelpPage(QString folder, QWidget* parent) : FocusFramed(parent), folder_(std::move(folder)) {
    setObjectName(QStringLiteral("HelpPage"));
    setAccessibleName(QStringLiteral("Page"));
    document()->setDocumentMargin(kMargin);
}

void HelpPage::Open(const QString& topic) {
    const QString page = folder_ + QLatin1Char('/') + topic.section(QLatin1Char('#'), 0, 0);
    if (!QFileInfo(page).isFile()) return;
    QUrl url = QUrl::fromLocalFile(page);
    if (const QString mark = topic.section(QLatin1Char('#'), 1); !mark.isEmpty()) url.setFragment(mark);
    setSource(url);
}

QString HelpPage::TopicOf(const QUrl& address) {
    return address.hasFragment() ? address.fileName() + QLatin1Char('#') + address.fragment()
                                 : address.fileName();
}

void HelpPage::Zoom(int steps) {
    const int zoom = std::clamp(zoom_ + steps, kSmallest, kLargest);
    zoomIn(zoom - std::exchange(zoom_, zoom));
}

QByteArray HelpPage::Tinted(QByteArray styleSheet) const {
    const QColor base = palette().color(QPalette::Active, QPalette::Base);
    const QColor text = palette().color(QPalette::Active, QPalette::Text);
    for (const PageColor& grey : kGreys)
        styleSheet.replace(grey.drawn, Mixed(base, text, grey.textShare).name().toLatin1());
    return styleSheet.replace(kDrawnAccent, ArtworkAccent(palette()).name().toLatin1());
}

QVariant HelpPage::loadResource(int type, const QUrl& name) {
    const QVariant resource = QTextBrowser::loadResource(type, name);
    return type == QTextDocument::StyleSheetResource ? Tinted(resource.toByteArray()) : resource;
}

void HelpPage::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || source().isEmpty()) return;
    const int position = verticalScrollBar()->value();
    reload();
    verticalScrollBar()->setValue(position);
}

void HelpPage::wheelEvent(QWheelEvent* event) {
    if (!(event->modifiers() & Qt::ControlModifier)) return QTextBrowser::wheelEvent(event);
    if (const int turn = event->angleDelta().y(); turn != 0) Zoom(turn > 0 ? 1 : -1);
    event->accept();
}

}  // namespace tessara
