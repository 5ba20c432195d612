#pragma once

#include <string>

#include "settings/Defaults.h"

namespace tessara {

/// What the options dialog needs of the window around it.
class OptionsHost : public DefaultsHost {
  public:
    /// The key of the file list's selected row; where there is none, the path of the file in the panes.
    virtual std::string SelectedFile() const = 0;
    /// Marks the list mode in the menus.
    virtual void SetmnFile() = 0;
    virtual void RunHtmlHelp(const std::string& topic) = 0;
    /// The dialogs that stand for the last two tabs; both return when they are closed.
    virtual void ShowDialogTrcol() = 0;
    virtual void ShowDialogSlideOpt() = 0;
};

}  // namespace tessara
