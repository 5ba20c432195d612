#pragma once

#include "artwork/ToolStrip.h"
#include "settings/Session.h"

namespace tessara {

/// The toolbar `FrameToolBar1`: the strip `PictureToolBack` with the buttons of ToolButtons().
class Toolbar final : public QWidget {
    Q_OBJECT
  public:
    Toolbar(const Session& session, QWidget* parent);

    ToolStrip* PictureToolBack() const { return PictureToolBack_; }
    ImageTool* Imagetool(int Index) const { return PictureToolBack_->Imagetool(Index); }

    /// Along the top of a window of that width in pixels. Its own edges stay out of sight.
    void Place(int windowWidth);
    void SetImageTool(int index, bool enabled) { PictureToolBack_->SetImageTool(index, enabled); }
    /// The pointer has moved beside the buttons, here or elsewhere on the window.
    void ToolbarMouseLeft();

  Q_SIGNALS:
    void Imagetool_Click(int Index);
    /// The progress of a running job is to be brought to the front.
    void ProgressToFront();
    /// The viewer that shows the slides is to be set to its normal state and brought to the front.
    void SlidesToFront();

  private:
    const Session& session_;
    ToolStrip* PictureToolBack_;
};

}  // namespace tessara
