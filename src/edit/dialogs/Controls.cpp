#include "edit/dialogs/Controls.h"

#include <QHBoxLayout>
#include <QStyle>

namespace tessara {

QLineEdit* MakeValueBox(QWidget* parent) {
    auto* const box = new QLineEdit(parent);
    box->setAlignment(Qt::AlignRight);
    box->setFixedWidth(box->fontMetrics().horizontalAdvance(QStringLiteral("00000000")) + 8);
    return box;
}

void ShowText(QLineEdit* box, const QString& text) {
    if (box->text() != text) box->setText(text);
}

QToolButton* MakeHelpIcon(QWidget* parent) {
    auto* const frame = Named(new QWidget(parent), QStringLiteral("PictureHelp"));
    auto* const icon = Named(new QToolButton(frame), QStringLiteral("ImageHelp"));
    icon->setIcon(icon->style()->standardIcon(QStyle::SP_MessageBoxQuestion));
    icon->setAutoRaise(true);
    icon->setCursor(Qt::PointingHandCursor);
    icon->setAccessibleName(QStringLiteral("Help"));
    auto* const layout = new QHBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(icon);
    return icon;
}

}  // namespace tessara
