#include "edit/dialogs/Controls.h"

#include "artwork/Artwork.h"

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

QPushButton* MakeButton(const QString& text, Qt::Key letter, QWidget* parent) {
    auto* const button = new QPushButton(text, parent);
    button->setShortcut(Qt::ALT | letter);
    return button;
}

QBoxLayout* LayOutWithButtons(QDialog* dialog, QLayout* controls, std::span<QPushButton* const> buttons) {
    auto* const column = new QVBoxLayout;
    column->setSpacing(8);
    for (QPushButton* const button : buttons) column->addWidget(button);
    column->addStretch();

    auto* const whole = new QHBoxLayout(dialog);
    whole->setContentsMargins(14, 14, 14, 14);
    whole->setSpacing(18);
    whole->addLayout(controls, 1);
    whole->addLayout(column);
    whole->setSizeConstraint(QLayout::SetFixedSize);
    return column;
}

QToolButton* MakeHelpIcon(QWidget* parent) {
    auto* const frame = Named(new QWidget(parent), QStringLiteral("PictureHelp"));
    auto* const icon = Named(new QToolButton(frame), QStringLiteral("ImageHelp"));
    icon->setIcon(Artwork("help"));
    icon->setAutoRaise(true);
    icon->setCursor(Qt::PointingHandCursor);
    icon->setToolTip(QStringLiteral("Help"));
    icon->setAccessibleName(icon->toolTip());
    auto* const layout = new QHBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(icon);
    return icon;
}

}  // namespace tessara
