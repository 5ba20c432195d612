#pragma once

#include <QComboBox>
#include <string>

#include "browse/Browser.h"

namespace tessara {

/// The path box `ImageComboPath` under the tree: shows the folder, drops down the last ones, takes a typed
/// path.
class PathBox : public QWidget {
    Q_OBJECT
  public:
    PathBox(Browser& browser, QWidget* parent);

    QComboBox* ImageComboPath() const { return ImageComboPath_; }
    std::string Text() const;
    void SetText(const std::string& path);

    /// Walks down the tree to the path in the box.
    void ImageCobomKeyup(bool quiet);
    /// Enters a path in the list; a virtual one is turned into the real one in place.
    void AddimgCombopath(std::string& path);
    void SetMeCaption();
    /// Fills the box from the older list of the settings file.
    void SetComboPath();
    /// True reads the recent paths, False writes them.
    void SaveGetComBox(bool read);

  private:
    Browser& browser_;
    QComboBox* ImageComboPath_ = nullptr;
};

}  // namespace tessara
