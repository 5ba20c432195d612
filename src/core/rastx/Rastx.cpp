#include "core/rastx/Rastx.h"

#include <algorithm>
#include <utility>

#include "core/Files.h"
#include "core/Paths.h"

namespace tessara {
namespace {

const ExportFormat& FormatOf(std::string_view suffix) {
    const auto table = ExportFormatTable();
    const auto row = std::ranges::find(table, suffix, &ExportFormat::suffix);
    assert(row != table.end());
    return *row;
}

}  // namespace

void Rastx::SetImage(Picture picture) {
    picture_ = std::move(picture);
    PictureChanged();
}

void Rastx::ClearImage() {
    picture_ = {};
    ++revision_;
    ClearSelect();
}

Result<void> Rastx::LoadImage(const std::string& path) {
    TRY_ASSIGN(const FileBytes file, FileBytes::Read(path));
    TRY_ASSIGN(Picture picture, DecodeFile(file.View(), ExtensionOf(path)));
    SetImage(std::move(picture));
    return {};
}

Result<void> Rastx::PasteClip() {
    if (!surroundings_.carrier) return CannotRead("there is no clipboard");
    TRY_ASSIGN(Picture picture, surroundings_.carrier->Take());
    SetImage(std::move(picture));
    return {};
}

Result<void> Rastx::CopyClip() const {
    if (picture_.Empty()) return BadArgument("there is no picture");
    if (!surroundings_.carrier) return CannotWrite("there is no clipboard");
    surroundings_.carrier->Put(Image());
    return {};
}

Result<void> Rastx::CopySelection() const {
    if (!surroundings_.carrier) return CannotWrite("there is no clipboard");
    if (!hasSelection_) return BadArgument("nothing is selected");
    TRY_ASSIGN(const Picture part,
               ImagePart(SelLeft(), SelTop(), SelRight() - SelLeft() + 1, SelBottom() - SelTop() + 1));
    surroundings_.carrier->Put(part);
    return {};
}

Result<void> Rastx::CaptureScreen() {
    if (!surroundings_.captureScreen) return CannotRead("there is no screen");
    TRY_ASSIGN(Picture picture, surroundings_.captureScreen());
    SetImage(std::move(picture));
    return {};
}

Result<void> Rastx::SaveAs(const ExportFormat& format, const std::string& path,
                           const EncodeOptions& options) const {
    if (picture_.Empty()) return BadArgument("there is no picture");
    return ReplaceFile(path, [&](ByteSink& sink) { return format.codec->encode(Image(), options, sink); });
}

Result<void> Rastx::SaveBmp(const std::string& path) const {
    return SaveAs(FormatOf(".bmp"), path, {});
}
Result<void> Rastx::SaveGif(const std::string& path, bool transparent, ColorNumber color) const {
    return SaveAs(FormatOf(".gif"), path, {.transparent = transparent, .color = color});
}
Result<void> Rastx::SaveJpg(const std::string& path, int quality, bool grey, bool progressive) const {
    return SaveAs(FormatOf(".jpg"), path, {.quality = quality, .grey = grey, .progressive = progressive});
}
Result<void> Rastx::SavePng(const std::string& path) const {
    return SaveAs(FormatOf(".png"), path, {});
}
Result<void> Rastx::SaveWbmp(const std::string& path) const {
    return SaveAs(FormatOf(".wbmp"), path, {});
}
Result<void> Rastx::SaveEmf(const std::string& path) const {
    return SaveAs(FormatOf(".emf"), path, {});
}
Result<void> Rastx::SaveTga(const std::string& path) const {
    return SaveAs(FormatOf(".tga"), path, {});
}
Result<void> Rastx::SaveTif(const std::string& path) const {
    return SaveAs(FormatOf(".tif"), path, {});
}
Result<void> Rastx::SaveWmf(const std::string& path) const {
    return SaveAs(FormatOf(".wmf"), path, {});
}
Result<void> Rastx::SaveIco(const std::string& path, bool transparent, ColorNumber color) const {
    return SaveAs(FormatOf(".ico"), path, {.transparent = transparent, .color = color});
}

void Rastx::MoveMouse(int x, int y) {
    mouseX_ = x;
    mouseY_ = y;
    if (!selecting_ || picture_.Empty()) return;
    cornerX_ = std::clamp(x, 0, ImageWidth() - 1);
    cornerY_ = std::clamp(y, 0, ImageHeight() - 1);
    Changed();
}

void Rastx::BeginSelect() {
    if (picture_.Empty()) return;
    selecting_ = hasSelection_ = true;
    anchorX_ = std::clamp(mouseX_, 0, ImageWidth() - 1);
    anchorY_ = std::clamp(mouseY_, 0, ImageHeight() - 1);
    cornerX_ = anchorX_;
    cornerY_ = anchorY_;
    Changed();
}

void Rastx::ClearSelect() {
    selecting_ = hasSelection_ = false;
    anchorX_ = anchorY_ = cornerX_ = cornerY_ = 0;
    Changed();
}

}  // namespace tessara
