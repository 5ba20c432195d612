#pragma once

#include "core/rastx/Picture.h"
#include "settings/Session.h"

namespace tessara {

/// What fills the corners of rotated pictures: the transparent colour, or white where none is chosen.
inline ColorNumber RotationBackground(const Session& session) {
    return session.TransparentColor < 0 ? RGB(255, 255, 255) : session.TransparentColor;
}

/// Chooses the transparent colour out of a picture; a new one has chosen none.
class TransparentColorPicker {
  public:
    TransparentColorPicker(Session& session, Picture Pic_Image)
        : session_(session), Pic_Image_(Pic_Image.FlattenedOnWhite()) {
        session_.TransparentColor = -1;
    }

    /// Takes the pixel's colour; a position outside the picture chooses none.
    void Pick(int X, int Y) {
        const bool inside = X >= 0 && X < Pic_Image_.Width() && Y >= 0 && Y < Pic_Image_.Height();
        session_.TransparentColor = inside ? ColorFromPixel(Pic_Image_.At(X, Y)) : -1;
    }

  private:
    Session& session_;
    Picture Pic_Image_;
};

}  // namespace tessara
