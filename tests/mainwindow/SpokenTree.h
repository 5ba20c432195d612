#pragma once

#include <QAccessibleInterface>
#include <QWidget>
#include <string>

namespace tessara::test {

/// "CheckBox".
std::string RoleName(const QAccessibleInterface& thing);

/// What a screen reader finds in a window: a line for all that has a name or takes the focus, below what it
/// belongs to. A star stands behind the role of what takes the focus, a description behind a dash. Neighbours
/// of one kind that have nothing but their names share a line:
///
///     CheckBox* unchecked: Progressive encoding, Save as grayscale image
///     Slider*: Image Quality = 80 of 1 to 100
std::string SpokenTree(QWidget& window);

}  // namespace tessara::test
