#pragma once

#include <string>

namespace tessara {

/// What editing needs of the window around it.
class EditHost {
  public:
    virtual ~EditHost() = default;
    virtual void BusyCursor(bool on) = 0;
    /// ProgressBarS(1): a `Max` of 0 leaves it as it is.
    virtual void ShowProgress(int Max, bool On) = 0;
    virtual void SetProgress(int value) = 0;
    virtual void SetImageTool(int index, bool enabled) = 0;
    virtual void SetMenuEnabled(const std::string& menu, int index, bool enabled) = 0;
    /// Open viewers take the panes' pictures: 0 import viewer, 1 export viewer, 2 both.
    virtual void PutviewExport(int which) = 0;
    virtual void RunHtmlHelp(const std::string& topic) = 0;
};

}  // namespace tessara
