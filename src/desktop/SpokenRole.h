#pragma once

#include <QAccessible>
#include <QWidget>

namespace tessara {

/// A screen reader hears of the widget as of `role`. For widgets that paint themselves: of such the toolkit
/// only knows that they are there. To be called before anyone asks, so where the widget is made.
void SetSpokenRole(QWidget* widget, QAccessible::Role role);

}  // namespace tessara
