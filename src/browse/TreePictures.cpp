#include "browse/TreePictures.h"

#include <QIconEngine>

#include "artwork/Artwork.h"

namespace tessara {
namespace {

struct PictureRow {
    TreePicture picture;
    const char* drawing;
};
constexpr PictureRow kPictures[] = {
    {TreePicture::Desktop, "desktop"},
    {TreePicture::Computer, "computer"},
    {TreePicture::Floppy, "drive-floppy"},
    {TreePicture::FixedDisk, "drive-fixed"},
    {TreePicture::OpticalDisc, "drive-cdrom"},
    {TreePicture::Documents, "documents"},
    {TreePicture::ClosedFolder, "folder"},
    {TreePicture::OpenFolder, "folder-open"},
    {TreePicture::RemovableDisk, "drive-removable"},
    {TreePicture::NetworkDrive, "drive-network"},
    {TreePicture::UnknownDrive, "drive-unknown"},
};

/// One icon while its node is selected, another otherwise.
class FolderIcon final : public QIconEngine {
  public:
    FolderIcon(QIcon closed, QIcon open) : closed_(std::move(closed)), open_(std::move(open)) {}
    QIconEngine* clone() const override { return new FolderIcon(closed_, open_); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        IconFor(mode).paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return IconFor(mode).pixmap(size, 1, mode, state);
    }

  private:
    const QIcon& IconFor(QIcon::Mode mode) const { return mode == QIcon::Selected ? open_ : closed_; }

    QIcon closed_;
    QIcon open_;
};

}  // namespace

TreePictures::TreePictures() {
    const auto at = [this](TreePicture picture) -> QIcon& {
        return icons_[static_cast<std::size_t>(picture)];
    };
    for (const PictureRow& row : kPictures) at(row.picture) = Artwork(row.drawing);
    QIcon& closed = at(TreePicture::ClosedFolder);
    closed = QIcon(new FolderIcon(closed, at(TreePicture::OpenFolder)));
}

}  // namespace tessara
