#pragma once

#include <string>

namespace tessara {

/// The buttons of the image viewer, by their index in `Imagetool`.
enum ViewerTool {
    kPrevious,
    kNext,
    kSlideShow,
    kSlideOptions,
    kNormalShow,
    kZoomOut,
    kZoomIn,
    kDelete,
    kFullScreen,
};

/// What walking through the list and the slide show need of the viewer around them.
class ViewerStage {
  public:
    virtual ~ViewerStage() = default;
    virtual int ItemCount() const = 0;
    virtual void SetImageTool(int index, bool enabled) = 0;
    virtual void SetSlideToolTip(const std::string& text) = 0;
    virtual void ShowFullScreen() = 0;
    /// Shows the file at ListIndex; does nothing where there is none.
    virtual void Loadfile00() = 0;
    /// Shrinks the picture to the pane where it is larger and slides are resized, and tells its zoom.
    virtual void FitSlide() = 0;
};

}  // namespace tessara
