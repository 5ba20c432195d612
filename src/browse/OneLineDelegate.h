#pragma once

#include <QStyledItemDelegate>

namespace tessara {

/// Rows have one height: a line break in a name shows as a sign.
class OneLineDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QString displayText(const QVariant& value, const QLocale&) const override {
        constexpr QChar kSignForLineBreak(0x2424);
        return value.toString().replace(QChar::LineFeed, kSignForLineBreak);
    }
};

}  // namespace tessara
