#pragma once

#include <functional>
#include <string>

#include "core/rastx/Rastx.h"
#include "settings/Session.h"

namespace tessara {

/// What LabelPict tells of a pane's picture.
std::string SizeLabel(const Rastx& pane);

/// What loading pictures needs of the window around it.
class WorkingImageHost {
  public:
    virtual ~WorkingImageHost() = default;
    /// Enables or disables everything that needs a picture.
    virtual void SetImageCommandsEnabled(bool enabled) = 0;
    virtual void SetImportToolTip(const std::string& text) = 0;
    virtual void SetLabelPict(const std::string& text) = 0;
    /// Empties LabelXY and LabelWH.
    virtual void ClearPositionLabels() = 0;
    virtual void UndoRefresh(const std::string& command) = 0;
    /// Open viewers take the panes' pictures: 0 import viewer, 1 export viewer, 2 both.
    virtual void RefreshViewers(int which) = 0;
    /// The main window's back colour: what the transparent parts of small icons show.
    virtual ColorNumber BackColor() const = 0;
};

/// How a file reaches both panes, and how the export pane returns to it. No toolkit.
class WorkingImage {
  public:
    WorkingImage(Session& session, Rastx& importPane, Rastx& exportPane, PictureCarrier& clipboard,
                 WorkingImageHost& host);

    /// Loads a file into both panes; `path` comes back changed for an icon that went by way of a bitmap.
    void LoadPict(std::string& path);
    void Setvalid(bool flag);
    void PutviewExport(int which);
    /// Discards every edit.
    void Reload();

  private:
    Session& session_;
    Rastx& importPane_;
    Rastx& exportPane_;
    PictureCarrier& clipboard_;
    WorkingImageHost& host_;
};

}  // namespace tessara
