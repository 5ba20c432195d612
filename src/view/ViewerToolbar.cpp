#include "view/ViewerToolbar.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

#include "desktop/PathText.h"
#include "view/ViewerStage.h"
#include "view/ViewerTexts.h"

namespace tessara {
namespace {

constexpr ImageListScheme kPictures = {1, 10, 19};

/// The buttons as they stand from left to right, in groups. Indexes are given by their order of creation.
struct Tool {
    ViewerTool index;
    const char* drawing;
    const char* tooltip;
    int left;  ///< pixels
};
constexpr Tool kTools[] = {
    {kPrevious, "previous", "Previous", 16},
    {kNext, "next", "Next", 36},
    {kSlideShow, "slide-show", "Slide show", 62},
    {kSlideOptions, "slide-options", "Slide options", 82},
    {kZoomOut, "zoom-out", "Zoom out", 108},
    {kZoomIn, "zoom-in", "Zoom in", 128},
    {kNormalShow, "normal-show", "Normal show", 154},
    {kFullScreen, "full-screen", "Full screen", 174},
    {kDelete, "delete", "Delete", 200},
};

// Of the frame in the window and of the strip in the frame, in pixels.
constexpr QPoint kFramePlace(-10, -8);
constexpr QPoint kStripPlace(-3, 8);
constexpr int kFrameHeight = 33;
constexpr int kStripHeight = 22;
constexpr int kOverhang = 100;

constexpr int kLeastWidth = 575;  ///< of the window, below which the labels move no further
constexpr int kWidest = 350;  ///< from the first label's begin to the window's edge, where numbers are small
constexpr int kGap = 8;
constexpr int kMarkerSize = 16;

/// A drawing beside a label.
class Marker final : public QWidget {
  public:
    Marker(std::string_view drawing, const QString& name, QWidget* parent)
        : QWidget(parent), drawing_(drawing) {
        setObjectName(name);
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        const QPixmap drawing = ArtworkPixmap(drawing_, {kMarkerSize, kMarkerSize}, PictureState::Normal,
                                              devicePixelRatioF(), palette());
        QPainter(this).drawPixmap(0, (height() - kMarkerSize) / 2, drawing);
    }

  private:
    std::string_view drawing_;
};

}  // namespace

ViewerToolbar::ViewerToolbar(QWidget* parent)
    : QWidget(parent),
      PictureToolBack_(new ToolStrip(kPictures, this)),
      LabelPict_(AddLabel(QStringLiteral("LabelPict"))),
      LabelZoom_(AddLabel(QStringLiteral("LabelZoom"))),
      LabelXY_(AddLabel(QStringLiteral("LabelXY"))),
      LabelWH_(AddLabel(QStringLiteral("LabelWH"))),
      Image2_(new Marker("marker-size", QStringLiteral("Image2"), PictureToolBack_)),
      Image3_(new Marker("marker-position", QStringLiteral("Image3"), PictureToolBack_)) {
    setObjectName(QStringLiteral("FrameToolBar1"));
    PictureToolBack_->setObjectName(QStringLiteral("PictureToolBack"));
    AddTools();
    connect(PictureToolBack_, &ToolStrip::BackMouseMove, PictureToolBack_, &ToolStrip::EndHover);
}

void ViewerToolbar::AddTools() {
    for (int index = kPrevious; index <= kFullScreen; ++index) {
        const Tool& tool = *std::ranges::find(kTools, index, &Tool::index);
        PictureToolBack_->AddTool(tool.drawing, QString::fromLatin1(tool.tooltip), tool.left);
    }
    // The keyboard goes from left to right.
    for (std::size_t i = 1; i < std::size(kTools); ++i)
        setTabOrder(PictureToolBack_->Imagetool(kTools[i - 1].index),
                    PictureToolBack_->Imagetool(kTools[i].index));
}

QLabel* ViewerToolbar::AddLabel(const QString& name) {
    auto* label = new QLabel(PictureToolBack_);
    label->setObjectName(name);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    return label;
}

void ViewerToolbar::Place(int screenWidth) {
    const int width = screenWidth + kOverhang;
    setGeometry(QRect(kFramePlace, QSize(width, kFrameHeight)));
    PictureToolBack_->setGeometry(QRect(kStripPlace, QSize(width, kStripHeight)));
}

void ViewerToolbar::SetCaption(int innerWidth, const QSize& picture) {
    const auto room = [this](const std::string& text) {
        return fontMetrics().horizontalAdvance(ShownText(text)) + kGap;
    };
    const std::string width = std::to_string(picture.width()), height = std::to_string(picture.height());
    // From right to left: how far before the window's edge each begins, and at least what it needs itself.
    struct Place {
        QWidget* control;
        int offset;
        int room;
    };
    const int hidden = kFramePlace.x() + kStripPlace.x();
    Place places[] = {
        {LabelWH_, 45, room(width + " x " + height)},
        {Image2_, 70, kMarkerSize + kGap},
        {LabelXY_, 130, room(width + "," + height)},
        {Image3_, 154, kMarkerSize + kGap},
        {LabelZoom_, 235, room(ZoomText(100))},
        {LabelPict_, kWidest, room(PictureSizeText(picture.width(), picture.height()))},
    };
    int before = hidden;
    for (Place& place : places) {
        place.offset = std::max(place.offset, before + place.room);
        before = place.offset;
    }
    const int X = std::max(innerWidth, kLeastWidth + before - kWidest);
    before = hidden;
    for (const Place& place : places) {
        place.control->setGeometry(X - place.offset, 0, place.offset - before, kStripHeight);
        before = place.offset;
    }
}

}  // namespace tessara
