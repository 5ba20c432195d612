#include "edit/LoadRoute.h"

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

/// True where the icon went by way of a bitmap.
bool LoadIconByBitmap(std::string& path, std::span<Rastx* const> panes, const LoadRoute& route) {
    const std::string bitmap = route.session.PrivateFile("Bmptemptemp.bmp");
    Remove(bitmap);
    bool converted = false;
    std::string source = path;
    const Result<void> prepared = PrepareIconBitmap(
        source, bitmap, converted, {route.session.PrivateFile(kScratchIcon), route.backColor});
    if (!converted) return false;
    Rastx Pic_Image;
    const bool loaded = prepared && Pic_Image.LoadImage(bitmap);
    Remove(bitmap);
    // What the fixed layout cannot take, such as a picture of 256 pixels, is shown as any other file.
    if (!loaded) return false;
    path = bitmap;
    route.clipboard.Put(Pic_Image.Image());
    for (Rastx* pane : panes) Ignore(pane->PasteClip());
    return true;
}

}  // namespace

void LoadIntoPanes(std::string& path, std::span<Rastx* const> panes, const LoadRoute& route) {
    if (IsIcon(path) && LoadIconByBitmap(path, panes, route)) return;
    if (!panes.front()->LoadImage(path)) return;
    for (Rastx* pane : panes.subspan(1)) pane->SetImage(panes.front()->Image());
}

}  // namespace tessara
