#include "edit/WorkingImage.h"

#include <array>

#include "edit/LoadRoute.h"
#include "edit/SelectionGesture.h"

namespace tessara {

std::string SizeLabel(const Rastx& pane) {
    return "Size : " + std::to_string(pane.ImageWidth()) + " x " + std::to_string(pane.ImageHeight());
}

WorkingImage::WorkingImage(Session& session, Rastx& importPane, Rastx& exportPane, PictureCarrier& clipboard,
                           WorkingImageHost& host)
    : session_(session),
      importPane_(importPane),
      exportPane_(exportPane),
      clipboard_(clipboard),
      host_(host) {}

void WorkingImage::LoadPict(std::string& path) {
    session_.ImagePath = path;
    host_.SetImportToolTip(kSelectToolTip);
    importPane_.ClearImage();
    exportPane_.ClearImage();
    LoadIntoPanes(path, std::array{&importPane_, &exportPane_}, {session_, clipboard_, host_.BackColor()});
    host_.SetLabelPict(SizeLabel(importPane_));
    host_.ClearPositionLabels();
    Setvalid(true);
    PutviewExport(2);
    session_.ImageValid = true;
    host_.UndoRefresh("KILL");
    session_.UndoPending = true;
}

void WorkingImage::Setvalid(bool flag) {
    session_.ImageValid = flag;
    host_.SetImageCommandsEnabled(flag);
}

void WorkingImage::PutviewExport(int which) {
    host_.RefreshViewers(which);
}

void WorkingImage::Reload() {
    if (!session_.ImagePath.empty()) {
        std::string path = session_.ImagePath;
        LoadPict(path);
        session_.ExportChanged = false;
        return;
    }
    importPane_.ClearSelect();
    host_.ClearPositionLabels();
    Ignore(importPane_.CopyClip());
    Ignore(exportPane_.PasteClip());
    PutviewExport(1);
}

}  // namespace tessara
