#pragma once

#include <array>
#include <string>

#include "edit/Editor.h"

namespace tessara {

/// What a pane whose rectangles crop shows around itself.
class SelectionLabels {
  public:
    virtual ~SelectionLabels() = default;
    /// The corner, "x,y".
    virtual void SetLabelXY(const std::string& text) = 0;
    /// The size, "w x h".
    virtual void SetLabelWH(const std::string& text) = 0;
    /// Of the pane.
    virtual void SetImportToolTip(const std::string& text) = 0;
};

inline constexpr const char* kSelectToolTip = "Drag out a rectangle to select";

/// A rectangle dragged out on a pane: on release the part under it becomes the whole export picture. The
/// import pane and the import viewer have one each.
class SelectionGesture {
  public:
    /// `active` tells whether a rubber band stands on `pane`.
    SelectionGesture(Editor& editor, Rastx& pane, SelectionLabels& labels, bool& active)
        : editor_(editor), pane_(pane), labels_(labels), active_(active) {}

    /// `other` is the gesture on the other pane, whose band is given up; null where there is none.
    void ImageMouseDown(SelectionGesture* other);
    void ImageMouseMove();
    void ImageMouseUp();

  private:
    /// Left, top, right and bottom, inclusive.
    using Edges = std::array<int, 4>;
    Edges CurrentEdges() const;
    void ShowSize();
    void Crop();

    Editor& editor_;
    Rastx& pane_;
    SelectionLabels& labels_;
    bool& active_;
    Edges remembered_{};  ///< at mouse down
};

}  // namespace tessara
