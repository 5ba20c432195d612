#pragma once

#include "edit/Editor.h"
#include "edit/ResizeValues.h"

namespace tessara {

/// What the resize dialog does to the export pane and its history. Every Apply resamples the picture that the
/// pane held at first, so that trying out sizes never degrades it.
class ResizeSession {
  public:
    explicit ResizeSession(Editor& editor);

    void Apply(const ResizeValues& values);
    void Undo() { editor_.StepBack(); }

  private:
    void DoResize(const ResizeValues& values);

    Editor& editor_;
    Picture PicTemp_;  ///< as the dialog found it
};

}  // namespace tessara
