#pragma once

#include <QWidget>

#include "desktop/RastxPane.h"
#include "edit/Editor.h"

namespace tessara {

/// The export viewer: a window that mirrors the export picture, by way of the clipboard.
class FormviewExport final : public QWidget {
    Q_OBJECT
  public:
    explicit FormviewExport(Editor& editor);

    /// The pane, whose index is always 0.
    RastxPane& rastx1(int) { return *rastx1_; }
    /// Fits the pane to the window, and takes the export picture anew.
    void SetupRastx();

  Q_SIGNALS:
    void ImportViewerWanted();
    /// The window has closed; whoever owns it may delete it later.
    void Unloaded();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    void Form_Load();

    Editor& editor_;
    RastxPane* rastx1_;
};

}  // namespace tessara
