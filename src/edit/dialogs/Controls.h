#pragma once

#include <QBoxLayout>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QToolButton>
#include <span>

#include "desktop/Named.h"

namespace tessara {

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
