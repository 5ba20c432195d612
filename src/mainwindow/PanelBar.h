#pragma once

#include <QLabel>
#include <vector>

namespace tessara {

/// A status bar of panels side by side. Panels count from 1 and have the keys of their bar with their number.
class PanelBar : public QWidget {
    Q_OBJECT
  public:
    PanelBar(const QString& name, const QString& key, int panels, QWidget* parent);

    void SetText(int panel, const QString& text);
    QString Text(int panel) const;
    /// Pixels; what the last panel has is what is left of the bar.
    void SetPanelWidth(int panel, int width);
    /// Stands at the bar's right end while it is shown; the panels' texts then leave it its room.
    void SetEndControl(QWidget* control);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Panel {
        QLabel* label;
        QString text = {};  ///< whole, where the label has no room for it
        int width = 0;
        int left = 0, end = 0;
    };
    int PlaceEndControl();
    void Place();
    void ShowText(std::size_t index);
    Panel& At(int panel) { return panels_[static_cast<std::size_t>(panel - 1)]; }

    std::vector<Panel> panels_;
    QWidget* endControl_ = nullptr;
};

}  // namespace tessara
