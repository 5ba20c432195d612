#pragma once

#include <QPalette>

namespace tessara {

/// What a list, a box or a status bar stands on in a window of this palette: (230, 230, 230), white while it
/// is typed in. In a dark palette it is as far from the window's other fields, on the dark side.
QColor QuietGround(const QPalette& window);
QColor TypingGround(const QPalette& window);

/// The palette of a list or a box with such a ground, and with text that can be read on it.
QPalette FieldPalette(QPalette window, const QColor& ground);

/// A palette whose check boxes are seen on any ground: the toolkit makes their frames from the window's
/// colour.
QPalette FramedBoxPalette(QPalette window);

/// Of separators and grips, which are seen without being looked at.
QColor FaintLine(const QPalette& window);

}  // namespace tessara
