#pragma once

#include <QStyledItemDelegate>

#include "desktop/PathText.h"

namespace tessara {

/// Rows have one height, whatever is in a name.
class OneLineDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QString displayText(const QVariant& value, const QLocale&) const override {
        return OnOneLine(value.toString());
    }
};

}  // namespace tessara
