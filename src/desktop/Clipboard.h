#pragma once

#include <functional>

#include "core/rastx/Rastx.h"

namespace tessara {

/// The clipboard as the carrier of pictures.
class Clipboard : public PictureCarrier {
  public:
    /// Raised when what the clipboard holds may have changed, by whomever.
    std::function<void()> Changed = {};

    /// Whether Take has something to try.
    virtual bool HasPicture() const = 0;
};

/// A clipboard of this process alone.
class ScriptedClipboard final : public Clipboard {
  public:
    Picture picture;
    int puts = 0;

    void Put(const Picture& given) override {
        ++puts;
        picture = given;
        if (Changed) Changed();
    }
    Result<Picture> Take() override {
        if (picture.Empty()) return CannotRead("nothing has been copied");
        return picture;
    }
    bool HasPicture() const override { return !picture.Empty(); }
};

}  // namespace tessara
