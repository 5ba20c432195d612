#include "edit/WorkingImage.h"

#include <filesystem>

#include "core/Text.h"
#include "edit/IconBitmap.h"

namespace tessara {
namespace {

bool IsIcon(const std::string& path) {
    return path.size() >= 4 && EqualIgnoringCase(std::string_view(path).substr(path.size() - 4), ".ico");
}

void Remove(const std::string& path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

}  // namespace

WorkingImage::WorkingImage(Session& session, Rastx& importPane, Rastx& exportPane, PictureCarrier& clipboard,
                           WorkingImageHost& host)
    : session_(session),
      importPane_(importPane),
      exportPane_(exportPane),
      clipboard_(clipboard),
      host_(host) {}

void WorkingImage::LoadPict(std::string& path) {
    session_.ImagePath = path;
    host_.SetImportToolTip("Drag out a rectangle to select");
    importPane_.ClearImage();
    exportPane_.ClearImage();
    if (!IsIcon(path) || !LoadIconByBitmap(path)) LoadBoth(path);
    host_.SetLabelPict("Size : " + std::to_string(importPane_.ImageWidth()) + " x " +
                       std::to_string(importPane_.ImageHeight()));
    host_.ClearPositionLabels();
    Setvalid(true);
    PutviewExport(2);
    session_.ImageValid = true;
    host_.UndoRefresh("KILL");
    session_.UndoPending = true;
}

void WorkingImage::LoadBoth(const std::string& path) {
    // One decode serves both panes: they share the pixels until one of them is changed.
    if (importPane_.LoadImage(path)) exportPane_.SetImage(importPane_.Image());
}

/// True where the icon went by way of a bitmap: over the clipboard, whose earlier content is lost.
bool WorkingImage::LoadIconByBitmap(std::string& path) {
    const std::string bitmap = session_.PrivateFile("Bmptemptemp.bmp");
    Remove(bitmap);
    bool converted = false;
    std::string source = path;
    const Result<void> prepared =
        PrepareIconBitmap(source, bitmap, converted, {session_.PrivateFile("Xptemp.ico"), host_.BackColor()});
    if (!converted) return false;
    // What the fixed layout cannot take, such as a picture of 256 pixels, is shown as any other file.
    Rastx Pic_Image;
    if (!prepared || !Pic_Image.LoadImage(bitmap)) return false;
    path = bitmap;
    clipboard_.Put(Pic_Image.Image());
    Ignore(importPane_.PasteClip());
    Ignore(exportPane_.PasteClip());
    Remove(bitmap);
    return true;
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
    Ignore(importPane_.CopyClip());
    Ignore(exportPane_.PasteClip());
    PutviewExport(1);
}

}  // namespace tessara
