#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QToolButton>
#include <span>
#include <string_view>

namespace tessara {

/// A control under its own name, or as one of an array.
template <typename Control>
Control* Named(Control* control, const QString& name) {
    control->setObjectName(name);
    return control;
}
template <typename Control>
Control* Named(Control* control, const QString& array, std::size_t index) {
    return Named(control, QStringLiteral("%1(%2)").arg(array).arg(index));
}

/// A text of a table.
inline QString TableText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A box for a number of a few digits.
QLineEdit* MakeValueBox(QWidget* parent);
/// Leaves the cursor where it is if the text is there already.
void ShowText(QLineEdit* box, const QString& text);

/// A button that Alt and a letter press; its text stays as it is given.
QPushButton* MakeButton(const QString& text, Qt::Key letter, QWidget* parent);

/// Lays out a dialog of a fixed size: its controls, and to their right the buttons with room below them.
/// Gives the layout of the buttons.
QBoxLayout* LayOutWithButtons(QDialog* dialog, QLayout* controls, std::span<QPushButton* const> buttons);

/// The help icon `ImageHelp` in its frame `PictureHelp`; gives the icon.
QToolButton* MakeHelpIcon(QWidget* parent);

}  // namespace tessara
