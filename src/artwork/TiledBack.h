#pragma once

#include <QPixmap>
#include <QWidget>

namespace tessara {

/// A strip whose background is one quiet tile, laid side by side.
class TiledBack : public QWidget {
    Q_OBJECT
  public:
    explicit TiledBack(QWidget* parent);

    /// Paints the background anew, in the palette's present colours.
    void SetBackPict();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    QPixmap MakeTile() const;

    QPixmap tile_;  ///< as high as the strip; empty until it is painted
};

}  // namespace tessara
