#pragma once

#include <QLabel>
#include <QPixmap>

namespace tessara {

/// What the user sees while the program starts. A click or a key closes it early.
class SplashForm final : public QWidget {
    Q_OBJECT
  public:
    SplashForm();

    QLabel* LabelVersion() const { return LabelVersion_; }
    QLabel* LabelBuild() const { return LabelBuild_; }

    /// Shows it complete, in the middle of the screen, without waiting for the event loop.
    void ShowAtOnce();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QLabel* AddLabel(double fontScale, float brightness);
    void PlaceLabels(QLabel* name);

    QLabel* LabelVersion_ = nullptr;
    QLabel* LabelBuild_ = nullptr;
};

}  // namespace tessara
