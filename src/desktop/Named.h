#pragma once

#include <QString>
#include <concepts>

namespace tessara {

/// The name of a control in an array: "Check1(2)".
QString Indexed(QAnyStringView array, std::integral auto index) {
    return QStringLiteral("%1(%2)").arg(array.toString()).arg(index);
}

/// Gives a control its name, its own or that of its place in an array, and hands it back.
template <typename Control>
Control* Named(Control* control, QAnyStringView name) {
    control->setObjectName(name);
    return control;
}
template <typename Control>
Control* Named(Control* control, QAnyStringView array, std::integral auto index) {
    return Named(control, Indexed(array, index));
}

}  // namespace tessara
