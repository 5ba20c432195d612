#include "view/Viewers.h"

namespace tessara {
namespace {

void BringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.raise();
    window.activateWindow();
}

/// Forgets a viewer at once when it has closed. It is deleted later, as it may be handling an event.
template <typename Viewer>
void Release(std::unique_ptr<Viewer>& viewer) {
    if (viewer) viewer.release()->deleteLater();
}

}  // namespace

Viewers::Viewers(const ViewSurroundings& surroundings) : surroundings_(surroundings) {}

void Viewers::ShowFormviewImport() {
    if (import_) return BringToFront(*import_);
    import_ = std::make_unique<FormviewImport>(surroundings_);
    connect(import_.get(), &FormviewImport::ExportViewerWanted, this, &Viewers::ShowFormviewExport);
    connect(import_.get(), &FormviewImport::Unloaded, this, [this] { Release(import_); });
}

void Viewers::ShowFormviewExport() {
    if (export_) return BringToFront(*export_);
    export_ = std::make_unique<FormviewExport>(surroundings_.editor);
    connect(export_.get(), &FormviewExport::ImportViewerWanted, this, &Viewers::ShowFormviewImport);
    connect(export_.get(), &FormviewExport::Unloaded, this, [this] { Release(export_); });
}

void Viewers::StartSlideShow() {
    ShowFormviewImport();
    if (!surroundings_.editor.session.SlideRunning) import_->StartSlide();
}

void Viewers::SlidesToFront() {
    if (!import_ || !surroundings_.editor.session.SlideRunning) return;
    import_->showNormal();
    BringToFront(*import_);
}

void Viewers::PutviewExport(int which) {
    if (import_ && which != 1) {
        import_->TakeImportPicture();
        surroundings_.host.FocusMainWindow();
    }
    if (export_ && which != 0) {
        Ignore(surroundings_.editor.exportPane.CopyClip());
        // A picture that is only replaced stays scrolled to the place that is being worked on.
        Rastx& pane = export_->rastx1(0).rastx();
        if (!pane.PasteClip()) pane.ClearImage();
        surroundings_.host.FocusMainWindow();
    }
}

}  // namespace tessara
