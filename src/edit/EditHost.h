#pragma once

#include <string>

#include "edit/UndoStore.h"

namespace tessara {

/// What editing needs of the window around it. MainForm has it for real, tests have a recording one.
class EditHost : public UndoHost {
  public:
    /// ProgressBarS(1), from 0 to `Max`, with the hourglass; `On` False hides it and takes both away.
    virtual void ShowProgress(int Max, bool On) = 0;
    virtual void SetProgress(int value) = 0;

    virtual void StopCapture() = 0;
    virtual void Imagetool_Click(int index) = 0;
    virtual void SetMenuEnabled(const std::string& menu, int index, bool enabled) = 0;
    virtual void RunHtmlHelp(const std::string& topic) = 0;
};

}  // namespace tessara
