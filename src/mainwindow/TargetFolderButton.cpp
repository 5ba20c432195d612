#include "mainwindow/TargetFolderButton.h"

#include "artwork/Artwork.h"
#include "core/Paths.h"
#include "desktop/PathText.h"

namespace tessara {

TargetFolderButton::TargetFolderButton(LinkOpener& links, QWidget* parent) : QToolButton(parent) {
    setObjectName(QStringLiteral("TargetFolderButton"));
    setText(QStringLiteral("Ope&n Target Folder"));
    setIcon(Artwork("folder-open"));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setAutoRaise(true);
    hide();
    connect(this, &QToolButton::clicked, this, [this, &links] { links.OpenFolder(folder_); });
}

void TargetFolderButton::Offer(const std::string& writtenFile) {
    std::string name;
    SplitPath(writtenFile, folder_, name);
    setToolTip(ShownText(folder_));
    setAccessibleDescription(toolTip());
    show();
}

}  // namespace tessara
