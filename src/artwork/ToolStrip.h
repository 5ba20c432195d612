#pragma once

#include <QAbstractButton>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "artwork/Artwork.h"
#include "artwork/TiledBack.h"

namespace tessara {

/// A button that is nothing but its picture of 16 by 16 pixels.
class ImageTool final : public QAbstractButton {
    Q_OBJECT
  public:
    ImageTool(std::string_view drawing, QWidget* parent);

    PictureState Picture() const { return picture_; }
    void SetPicture(PictureState picture);
    /// The area around the button, in its parent, that shows hover and focus.
    QRect Plate() const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    std::string drawing_;
    PictureState picture_ = PictureState::Normal;
};

/// Where the pictures of an image list begin, which holds those of one state after the other.
struct ImageListScheme {
    int normal;
    int hover;
    int disabled;
};

/// A strip of picture buttons, the control array `Imagetool`, one of which may be under the pointer.
class ToolStrip final : public TiledBack {
    Q_OBJECT
  public:
    ToolStrip(const ImageListScheme& scheme, QWidget* parent);

    /// Appends a button; `left` is in pixels.
    void AddTool(std::string_view drawing, const QString& tooltip, int left);
    ImageTool* Imagetool(int Index) const { return tools_[static_cast<std::size_t>(Index)]; }
    int ToolCount() const { return static_cast<int>(tools_.size()); }

    /// The button's state, and its normal or disabled picture.
    void SetImageTool(int index, bool enabled);
    /// The number, in the image list, of the picture that the button shows.
    int PictureNumber(int Index) const;

    /// The button under the pointer, -1 if none.
    int HoverIndex() const { return HoverIndex_; }
    void Imagetool_MouseMove(int Index);
    /// The button under the pointer, if enabled, gets its normal picture.
    void EndHover();
    /// While it is True, hovering leaves all pictures as they are.
    std::function<bool()> hoverPaused = [] { return false; };

  Q_SIGNALS:
    void Imagetool_Click(int Index);
    /// The pointer moved beside the buttons.
    void BackMouseMove();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    void SetPictureIfEnabled(int Index, PictureState picture);

    ImageListScheme scheme_;
    std::vector<ImageTool*> tools_;
    int HoverIndex_ = -1;
};

}  // namespace tessara
