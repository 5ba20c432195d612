#pragma once

#include <QComboBox>
#include <string>

#include "browse/Browser.h"

namespace tessara {

class FolderNode;

/// The path box `ImageComboPath` at the tree: shows the folder, drops down the last ones, takes a typed path.
class PathBox : public QWidget {
    Q_OBJECT
  public:
    PathBox(Browser& browser, QWidget* parent);

    QComboBox* ImageComboPath() const { return ImageComboPath_; }
    /// In bytes, also where they are no text.
    std::string Text() const;
    void SetText(const std::string& path);

    /// Walks down the tree to the path in the box. What fails is told, unless `quiet`.
    void ImageCobomKeyup(bool quiet);
    /// Enters a path in the list; a virtual one is turned into the real one in place.
    void AddimgCombopath(std::string& path);
    void SetMeCaption();
    /// Fills the box from the older list of the settings file.
    void SetComboPath();
    /// True reads the recent paths, False writes them.
    void SaveGetComBox(bool read);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void SetColors();
    bool KeyReleased(int key);
    /// Adds an item and leaves the text as it is.
    void AddItem(const std::string& path, const QIcon& icon);
    void RemoveOldestItem();
    std::string ItemPath(int item) const;

    std::string TypedPath() const;
    /// Whether the tree and the list are there in the end.
    bool GoTo(const std::string& path, bool quiet);
    bool TryToGoTo(const std::string& path, bool quiet);
    bool WantsRetry(const std::string& path);

    Browser& browser_;
    QComboBox* ImageComboPath_ = nullptr;
    FileEnumerator FileListCheck_;  ///< tests that a path exists
    std::string text_;              ///< the bytes of the text that was set last
    bool typing_ = false;           ///< the box has the focus
    bool enterPressed_ = false;
};

}  // namespace tessara
