#pragma once

#include <string>

#include "desktop/Clock.h"
#include "desktop/RandomSource.h"
#include "edit/dialogs/SelectionClipboard.h"

namespace tessara {

/// What the viewers need of the main window. MainForm has it for real, tests have a recording one.
class ViewHost {
  public:
    virtual ~ViewHost() = default;

    // ListViewFile: items count from 1, in the order shown; those asked for exist.
    virtual int ItemCount() const = 0;
    /// 0 where no item is selected.
    virtual int SelectedItem() const = 0;
    virtual std::string ItemKey(int item) const = 0;
    virtual void MakeItemVisible(int item) = 0;
    virtual void RemoveItem(int item) = 0;

    /// What the transparent parts of small icons show.
    virtual ColorNumber BackColor() const = 0;
    virtual void FocusMainWindow() = 0;
};

/// What the viewers share.
struct ViewSurroundings {
    Editor& editor;
    Rastx& importPane;
    SelectionClipboard& selection;
    SelectionLabels& labels;  ///< of the main window
    Prompts& prompts;
    Clock& clock;
    RandomSource& random;
    ViewHost& host;
};

}  // namespace tessara
