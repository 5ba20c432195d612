#include "mainwindow/PanelBar.h"

#include <QPainter>
#include <QResizeEvent>
#include <algorithm>

#include "artwork/FieldColors.h"
#include "desktop/PathText.h"

namespace tessara {
namespace {

constexpr int kMargin = 6;  ///< pixels beside a panel's text

}  // namespace

PanelBar::PanelBar(const QString& name, const QString& key, int panels, QWidget* parent) : QWidget(parent) {
    setObjectName(name);
    for (int i = 1; i <= panels; ++i) {
        auto* label = new QLabel(this);
        label->setObjectName(key + QString::number(i));
        label->setTextFormat(Qt::PlainText);
        panels_.push_back({.label = label});
    }
}

void PanelBar::SetText(int panel, const QString& text) {
    At(panel).text = text;
    Place();
}

QString PanelBar::Text(int panel) const {
    return panels_[static_cast<std::size_t>(panel - 1)].text;
}

void PanelBar::SetPanelWidth(int panel, int width) {
    At(panel).width = width;
    Place();
}

void PanelBar::SetEndControl(QWidget* control) {
    endControl_ = control;
    control->installEventFilter(this);
    Place();
}

/// The right end of what is left for the panels.
int PanelBar::PlaceEndControl() {
    if (endControl_ == nullptr || endControl_->isHidden()) return width();
    const int wanted = endControl_->sizeHint().width();
    endControl_->setGeometry(width() - wanted, 0, wanted, height());
    return width() - wanted;
}

void PanelBar::Place() {
    const int end = PlaceEndControl();
    int left = 0;
    for (std::size_t i = 0; i < panels_.size(); ++i) {
        Panel& panel = panels_[i];
        panel.left = left;
        panel.end = i + 1 == panels_.size() ? end : std::min(end, left + panel.width);
        left = panel.end;
    }
    for (std::size_t i = 0; i < panels_.size(); ++i) ShowText(i);
    update();
}

void PanelBar::ShowText(std::size_t index) {
    Panel& panel = panels_[index];
    // A long text runs on over empty panels.
    std::size_t last = index;
    while (last + 1 < panels_.size() && panels_[last + 1].text.isEmpty()) ++last;
    const QFontMetrics metrics = panel.label->fontMetrics();
    const int room = std::max(0, panels_[last].end - panel.left - 2 * kMargin);
    const QString line = OnOneLine(panel.text);
    const QString shown = metrics.elidedText(line, Qt::ElideMiddle, room);
    panel.label->setGeometry(panel.left + kMargin, 0, std::min(metrics.horizontalAdvance(shown) + 1, room),
                             height());
    panel.label->setText(shown);
    panel.label->setAccessibleName(panel.text);
    panel.label->setToolTip(shown == line ? QString() : ToolTipOf(panel.text));
}

void PanelBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Place();
}

bool PanelBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent) Place();
    return QWidget::eventFilter(watched, event);
}

void PanelBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QuietGround(palette()));
    painter.setPen(FaintLine(palette()));
    for (const Panel& panel : panels_) {
        const bool covered = std::ranges::any_of(panels_, [&](const Panel& other) {
            return other.left < panel.left && other.label->geometry().right() >= panel.left;
        });
        if (panel.left > 0 && !covered) painter.drawLine(panel.left, 3, panel.left, height() - 4);
    }
}

}  // namespace tessara
