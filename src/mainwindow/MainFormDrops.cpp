#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QUrl>
#include <filesystem>

#include "core/Paths.h"
#include "desktop/PictureMime.h"
#include "mainwindow/MainForm.h"

// What is dropped on the window from other programs.

namespace tessara {
namespace {

/// The first file or folder of this computer that is dragged; empty where there is none.
std::string DraggedPath(const QMimeData& data) {
    for (const QUrl& url : data.urls())
        if (url.isLocalFile()) return QFile::encodeName(url.toLocalFile()).toStdString();
    return {};
}

}  // namespace

void MainForm::dragEnterEvent(QDragEnterEvent* event) {
    const QMimeData& dragged = *event->mimeData();
    if (!DraggedPath(dragged).empty() || OffersPicture(dragged)) event->acceptProposedAction();
}

void MainForm::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    capture_->EndCapture();
    if (const std::string path = DraggedPath(*event->mimeData()); !path.empty()) return GoToFile(path);
    const Result<Picture> picture = TakePicture(*event->mimeData());
    if (!picture) return;
    services_.clipboard.Put(picture.Value());
    MenuClick("mEdit", 1);
}

void MainForm::GoToFile(const std::string& path) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) return EnterFolder(path);
    std::string folder, name;
    SplitPath(path, folder, name);
    EnterFolder(folder);
    for (int row = 0; row < list_->RowCount(); ++row) {
        if (list_->KeyOf(row) != path) continue;
        list_->SelectRow(row);
        return list_->ListViewFile_Click();
    }
}

}  // namespace tessara
