#include "view/FormviewExport.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>

#include "desktop/SpokenRole.h"
#include "view/ViewerPlace.h"

namespace tessara {

FormviewExport::FormviewExport(Editor& editor)
    : editor_(editor), rastx1_(new RastxPane({.carrier = &editor.clipboard}, this)) {
    SetSpokenRole(this, QAccessible::Window);
    setObjectName(QStringLiteral("FormviewExport"));
    setWindowTitle(QStringLiteral("Export Image"));
    rastx1_->setObjectName(QStringLiteral("rastx1(0)"));
    rastx1_->setAccessibleName(QStringLiteral("Export image"));
    rastx1_->SetViewMode(2);
    connect(rastx1_, &RastxPane::ImageDblClick, this, [this] { ToggleMaximized(*this); });
    Form_Load();
}

void FormviewExport::Form_Load() {
    editor_.host.BusyCursor(true);
    PlaceViewer(*this);
    show();
    SetupRastx();
    editor_.session.ViewExportOpen = true;
    editor_.host.BusyCursor(false);
    rastx1_->setFocus();
}

void FormviewExport::SetupRastx() {
    rastx1_->setToolTip({});
    rastx1_->setGeometry(2, 6, std::max(0, width() - 12), std::max(0, height() - 35));
    Ignore(editor_.exportPane.CopyClip());
    Ignore(rastx1_->rastx().PasteClip());
}

void FormviewExport::resizeEvent(QResizeEvent*) {
    SetupRastx();
}

void FormviewExport::closeEvent(QCloseEvent*) {
    editor_.session.ViewExportOpen = false;
    Q_EMIT Unloaded();
}

void FormviewExport::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) close();
}

void FormviewExport::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F6 && !event->isAutoRepeat()) Q_EMIT ImportViewerWanted();
}

void FormviewExport::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!childAt(event->position().toPoint())) close();
}

}  // namespace tessara
