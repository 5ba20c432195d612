#include "mainwindow/PanelBar.h"

#include <QPainter>
#include <QResizeEvent>

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
        panels_.push_back({label, QString()});
    }
}

void PanelBar::SetText(int panel, const QString& text) {
    At(panel).text = text;
    ShowText(At(panel));
}

QString PanelBar::Text(int panel) const {
    return panels_[static_cast<std::size_t>(panel - 1)].text;
}

void PanelBar::SetPanelWidth(int panel, int width) {
    At(panel).width = width;
    Place();
}

void PanelBar::ShowText(Panel& panel) {
    const QString shown =
        panel.label->fontMetrics().elidedText(panel.text, Qt::ElideMiddle, panel.label->width());
    panel.label->setText(shown);
    panel.label->setAccessibleName(panel.text);
    panel.label->setToolTip(shown == panel.text ? QString() : panel.text);
}

void PanelBar::Place() {
    int left = 0;
    for (Panel& panel : panels_) {
        const int end = &panel == &panels_.back() ? width() : left + panel.width;
        panel.label->setGeometry(left + kMargin, 0, qMax(0, end - left - 2 * kMargin), height());
        ShowText(panel);
        left = end;
    }
}

void PanelBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Place();
}

void PanelBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    painter.setPen(palette().color(QPalette::Mid));
    int left = 0;
    for (const Panel& panel : panels_) {
        if (left > 0) painter.drawLine(left, 3, left, height() - 4);
        left += panel.width;
    }
}

}  // namespace tessara
