#pragma once

#include <QCheckBox>

namespace tessara {

/// A check box that is seen on dark ground while it is empty: the toolkit frames it in a darker shade still.
class FramedCheckBox final : public QCheckBox {
    Q_OBJECT
  public:
    using QCheckBox::QCheckBox;

  protected:
    void initStyleOption(QStyleOptionButton* option) const override;
};

}  // namespace tessara
