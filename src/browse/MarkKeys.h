#pragma once

#include <QAbstractItemView>
#include <QPersistentModelIndex>
#include <functional>

namespace tessara {

/// Tells when a key that moved the mark of a view comes up. A key that is held down repeats; only where it
/// stops is what is marked wanted. Up and Down count also where they lead nowhere.
class MarkKeys final : public QObject {
  public:
    MarkKeys(QAbstractItemView* view, std::function<void()> moved);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QAbstractItemView* view_;
    std::function<void()> moved_;
    bool pressed_ = false;        ///< here, and not where the focus has come from
    QPersistentModelIndex mark_;  ///< when the key went down
};

}  // namespace tessara
