#include "browse/TreePictures.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <algorithm>

namespace tessara {
namespace {

/// Draws line pictures on a grid of 16 by 16: lines lie on the middles of pixels.
class Artist {
  public:
    Artist(QPainter& painter, const QColor& line, const QColor& accent)
        : painter_(painter), pen_(line, 1.25, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin), accent_(accent) {}

    void Outline(std::initializer_list<QPointF> corners) { Polygon(corners, Qt::NoBrush); }
    void Body(std::initializer_list<QPointF> corners) { Polygon(corners, Tint()); }
    void OpenLine(std::initializer_list<QPointF> points) {
        painter_.setPen(pen_);
        painter_.drawPolyline(points.begin(), static_cast<int>(points.size()));
    }
    void Box(const QRectF& box, bool filled) {
        painter_.setPen(pen_);
        painter_.setBrush(filled ? QBrush(Tint()) : QBrush(Qt::NoBrush));
        painter_.drawRoundedRect(box, 1, 1);
    }
    void Ring(QPointF middle, double radius, bool filled) {
        painter_.setPen(pen_);
        painter_.setBrush(filled ? QBrush(Tint()) : QBrush(Qt::NoBrush));
        painter_.drawEllipse(middle, radius, radius);
    }
    void Spot(const QRectF& box) { painter_.fillRect(box, accent_); }

  private:
    QColor Tint() const {
        QColor tint = accent_;
        tint.setAlphaF(0.3f);
        return tint;
    }
    void Polygon(std::initializer_list<QPointF> corners, const QBrush& brush) {
        painter_.setPen(pen_);
        painter_.setBrush(brush);
        painter_.drawPolygon(corners.begin(), static_cast<int>(corners.size()));
    }

    QPainter& painter_;
    QPen pen_;
    QColor accent_;
};

void DrawDesktop(Artist& artist) {
    artist.Box({1.5, 2.5, 13, 11}, false);
    artist.Body({{1.5, 10.5}, {14.5, 10.5}, {14.5, 13.5}, {1.5, 13.5}});
    for (const double left : {4.0, 7.0, 10.0}) artist.Spot({left, 5, 2, 2});
}
void DrawComputer(Artist& artist) {
    artist.Box({1.5, 2.5, 13, 8}, true);
    artist.OpenLine({{8, 10.5}, {8, 13.5}});
    artist.OpenLine({{4.5, 13.5}, {11.5, 13.5}});
}
void DrawFloppy(Artist& artist) {
    artist.Outline({{1.5, 1.5}, {11.5, 1.5}, {14.5, 4.5}, {14.5, 14.5}, {1.5, 14.5}});
    artist.Body({{4.5, 14.5}, {4.5, 9.5}, {11.5, 9.5}, {11.5, 14.5}});
    artist.OpenLine({{4.5, 1.5}, {4.5, 5.5}, {10.5, 5.5}, {10.5, 1.5}});
}
void DrawFixedDisk(Artist& artist) {
    artist.OpenLine({{1.5, 8.5}, {3.5, 2.5}, {12.5, 2.5}, {14.5, 8.5}});
    artist.Box({1.5, 8.5, 13, 5}, true);
    artist.OpenLine({{4, 11}, {7, 11}});
    artist.Spot({11, 10, 2, 2});
}
void DrawOpticalDisc(Artist& artist) {
    artist.Ring({8, 8}, 6.5, true);
    artist.Ring({8, 8}, 1.75, false);
}
void DrawDocuments(Artist& artist) {
    artist.OpenLine({{3, 12.5}, {1.5, 12.5}, {1.5, 1.5}, {9, 1.5}});
    artist.Body({{4.5, 3.5}, {10.5, 3.5}, {14.5, 7.5}, {14.5, 14.5}, {4.5, 14.5}});
    artist.OpenLine({{10.5, 3.5}, {10.5, 7.5}, {14.5, 7.5}});
    artist.Spot({7, 10.5, 5, 1});
}
void DrawClosedFolder(Artist& artist) {
    artist.Body({{1.5, 13.5}, {1.5, 2.5}, {5.75, 2.5}, {7.25, 4.5}, {14.5, 4.5}, {14.5, 13.5}});
}
void DrawOpenFolder(Artist& artist) {
    artist.OpenLine({{1.5, 13.5}, {1.5, 2.5}, {5.75, 2.5}, {7.25, 4.5}, {12.5, 4.5}, {12.5, 7.5}});
    artist.Body({{1.5, 13.5}, {4, 7.5}, {14.75, 7.5}, {12.5, 13.5}});
}
void DrawRemovableDisk(Artist& artist) {
    artist.Box({1.5, 4.5, 9, 7}, true);
    artist.OpenLine({{10.5, 5.5}, {14.5, 5.5}, {14.5, 10.5}, {10.5, 10.5}});
    artist.Spot({4, 7.5, 3, 1});
}
void DrawNetworkDrive(Artist& artist) {
    artist.Box({2.5, 1.5, 11, 6}, true);
    artist.Spot({10, 4, 2, 2});
    artist.OpenLine({{8, 7.5}, {8, 11.5}});
    artist.OpenLine({{1.5, 13}, {5.5, 13}});
    artist.OpenLine({{10.5, 13}, {14.5, 13}});
    artist.Box({5.5, 11.5, 5, 3}, false);
}
void DrawUnknownDrive(Artist& artist) {
    artist.Box({1.5, 9.5, 13, 5}, true);
    artist.OpenLine({{4, 12}, {7, 12}});
    artist.OpenLine({{6, 3}, {7, 1.5}, {9, 1.5}, {10, 3}, {8, 5}, {8, 5.5}});
    artist.Spot({7.25, 7, 1.5, 1.5});
}

struct PictureRow {
    TreePicture picture;
    const char* themeName;
    void (*draw)(Artist&);
};
constexpr PictureRow kPictures[] = {
    {TreePicture::Desktop, "user-desktop", DrawDesktop},
    {TreePicture::Computer, "computer", DrawComputer},
    {TreePicture::Floppy, "media-floppy", DrawFloppy},
    {TreePicture::FixedDisk, "drive-harddisk", DrawFixedDisk},
    {TreePicture::OpticalDisc, "drive-optical", DrawOpticalDisc},
    {TreePicture::Documents, "folder-documents", DrawDocuments},
    {TreePicture::ClosedFolder, "folder", DrawClosedFolder},
    {TreePicture::OpenFolder, "folder-open", DrawOpenFolder},
    {TreePicture::RemovableDisk, "drive-removable-media", DrawRemovableDisk},
    {TreePicture::NetworkDrive, "folder-remote", DrawNetworkDrive},
    {TreePicture::UnknownDrive, "drive-harddisk", DrawUnknownDrive},
};

/// An engine that only has to paint.
class PaintedIcon : public QIconEngine {
  public:
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }
};

/// Draws one of our own pictures; that of a selected node in the colour of its text.
class DrawnIcon final : public PaintedIcon {
  public:
    explicit DrawnIcon(void (*draw)(Artist&)) : draw_(draw) {}
    QIconEngine* clone() const override { return new DrawnIcon(draw_); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        constexpr QColor kLine(0x56, 0x61, 0x6b);  // seen on light and on dark ground
        constexpr QColor kAccent(0x0f, 0x8f, 0x88);
        constexpr int kGrid = 16;
        const bool selected = mode == QIcon::Selected;
        const QColor line = selected ? QGuiApplication::palette().color(QPalette::HighlightedText) : kLine;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / double{kGrid}, rect.height() / double{kGrid});
        Artist artist(*painter, line, selected ? line : kAccent);
        draw_(artist);
        painter->restore();
    }

  private:
    void (*draw_)(Artist&);
};

/// One icon while its node is selected, another otherwise.
class FolderIcon final : public PaintedIcon {
  public:
    FolderIcon(QIcon closed, QIcon open) : closed_(std::move(closed)), open_(std::move(open)) {}
    QIconEngine* clone() const override { return new FolderIcon(closed_, open_); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        (mode == QIcon::Selected ? open_ : closed_).paint(painter, rect, Qt::AlignCenter, mode, state);
    }

  private:
    QIcon closed_;
    QIcon open_;
};

}  // namespace

TreePictures::TreePictures() {
    const bool themed = std::ranges::all_of(kPictures, [](const PictureRow& row) {
        return QIcon::hasThemeIcon(QString::fromLatin1(row.themeName));
    });
    const auto at = [this](TreePicture picture) -> QIcon& {
        return icons_[static_cast<std::size_t>(picture)];
    };
    for (const PictureRow& row : kPictures)
        at(row.picture) =
            themed ? QIcon::fromTheme(QString::fromLatin1(row.themeName)) : QIcon(new DrawnIcon(row.draw));
    QIcon& closed = at(TreePicture::ClosedFolder);
    closed = QIcon(new FolderIcon(closed, at(TreePicture::OpenFolder)));
}

}  // namespace tessara
