#include "desktop/RastxPane.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include "tests/Support.h"

namespace tessara {
namespace {

using Names = std::vector<std::string>;

class RastxPaneTest : public testing::Test {
  protected:
    RastxPaneTest() {
        const auto record = [this](void (RastxPane::*signal)(), std::string name) {
            QObject::connect(&pane_, signal, &pane_, [this, name = std::move(name)] {
                events_.push_back(name + " " + std::to_string(pane_.rastx().MouseX()) + "," +
                                  std::to_string(pane_.rastx().MouseY()));
            });
        };
        record(&RastxPane::ImageMouseDown, "down");
        record(&RastxPane::ImageMouseMove, "move");
        record(&RastxPane::ImageMouseUp, "up");
        record(&RastxPane::ImageRightClick, "right");
        record(&RastxPane::ImageDblClick, "double");
        pane_.resize(200, 100);
        pane_.show();
    }

    void SetPicture(int width, int height, Pixel fill = kWhite) {
        pane_.rastx().SetImage(test::Must(Picture::Create(width, height, fill, Alpha::None)));
    }
    void Press(int x, int y) { QTest::mousePress(pane_.viewport(), Qt::LeftButton, {}, {x, y}); }
    void MoveTo(int x, int y, Qt::MouseButtons held = Qt::LeftButton) {
        QMouseEvent event(QEvent::MouseMove, QPointF(x, y), pane_.viewport()->mapToGlobal(QPointF(x, y)),
                          Qt::NoButton, held, {});
        QCoreApplication::sendEvent(pane_.viewport(), &event);
    }
    void Release(int x, int y) { QTest::mouseRelease(pane_.viewport(), Qt::LeftButton, {}, {x, y}); }
    QRgb ScreenPixel(int x, int y) { return pane_.grab().toImage().pixel(x, y); }
    QRect Selection() {
        const Rastx& rastx = pane_.rastx();
        return {QPoint(rastx.SelLeft(), rastx.SelTop()), QPoint(rastx.SelRight(), rastx.SelBottom())};
    }

    RastxPane pane_{{}, nullptr};
    Names events_;
};

TEST_F(RastxPaneTest, EventsTellPicturePixels) {
    SetPicture(100, 50);  // lies at 50, 25
    Press(20, 50);
    Release(20, 50);
    EXPECT_EQ(events_, Names{}) << "beside the picture";
    MoveTo(20, 60, Qt::NoButton);
    Press(60, 30);
    MoveTo(199, 99);
    Release(199, 99);
    QTest::mouseDClick(pane_.viewport(), Qt::LeftButton, {}, {60, 30});
    EXPECT_EQ(events_, (Names{"move 0,35", "down 10,5", "move 99,49", "up 99,49", "double 10,5"}));
}

TEST_F(RastxPaneTest, KeysDoWhatTheMouseDoes) {
    QTest::keyClick(&pane_, Qt::Key_Right);
    EXPECT_EQ(events_, Names{}) << "without a picture";
    SetPicture(100, 50);
    QTest::keyClick(&pane_, Qt::Key_Space);
    EXPECT_EQ(events_, Names{}) << "nothing is marked yet";
    QTest::keyClick(&pane_, Qt::Key_Right);
    QTest::keyClick(&pane_, Qt::Key_Down, Qt::ControlModifier);
    QTest::keyClick(&pane_, Qt::Key_Space);
    EXPECT_EQ(events_, (Names{"move 51,25", "move 51,41", "down 51,41", "up 51,41"}));
    events_.clear();
    QTest::keyPress(&pane_, Qt::Key_Shift);
    for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Left}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::ShiftModifier);
        QCoreApplication::sendEvent(&pane_, &press);
    }
    EXPECT_EQ(events_, (Names{"down 51,41", "move 51,40", "move 50,40"}));
    QTest::keyRelease(&pane_, Qt::Key_Shift);
    EXPECT_EQ(events_.back(), "up 50,40");
}

TEST_F(RastxPaneTest, PositionsInBothModesArePicturePixels) {
    SetPicture(2000, 1000);
    MoveTo(199, 99, Qt::NoButton);
    pane_.SetViewMode(2);
    pane_.horizontalScrollBar()->setValue(300);
    pane_.verticalScrollBar()->setValue(400);
    MoveTo(10, 20, Qt::NoButton);
    EXPECT_EQ(events_, (Names{"move 1999,999", "move 310,420"}));
}

TEST_F(RastxPaneTest, ARubberBandEndsWithTheButton) {
    QObject::connect(&pane_, &RastxPane::ImageMouseDown, &pane_, [this] { pane_.rastx().BeginSelect(); });
    SetPicture(100, 50);
    Press(60, 30);
    MoveTo(70, 40);
    EXPECT_EQ(Selection(), QRect(QPoint(10, 5), QPoint(20, 15)));
    Release(72, 42);
    MoveTo(90, 60, Qt::NoButton);
    EXPECT_EQ(Selection(), QRect(QPoint(10, 5), QPoint(22, 17)));
    Press(60, 30);
    events_.clear();
    MoveTo(90, 60, Qt::NoButton);
    EXPECT_EQ(events_, (Names{"up 10,5", "move 40,35"})) << "a release that went elsewhere is made up for";
    EXPECT_EQ(Selection(), QRect(10, 5, 1, 1));
}

TEST_F(RastxPaneTest, TheBandIsSeenOnBlackAndOnWhite) {
    for (const Pixel fill : {kBlack, kWhite}) {
        SetPicture(100, 50, fill);
        pane_.rastx().MoveMouse(10, 10);
        pane_.rastx().BeginSelect();
        pane_.rastx().MoveMouse(30, 20);
        const QImage shown = pane_.grab().toImage();
        int differing = 0;
        for (int x = 60; x <= 80; ++x) differing += qGreen(shown.pixel(x, 35)) != fill.g;
        EXPECT_GE(differing, 8) << int{fill.g};
        EXPECT_EQ(qGreen(shown.pixel(59, 35)), fill.g);
        EXPECT_EQ(qGreen(shown.pixel(61, 36)), fill.g);
        pane_.rastx().ClearSelect();
        EXPECT_EQ(qGreen(ScreenPixel(62, 35)), fill.g);
    }
}

TEST_F(RastxPaneTest, RepaintShowsAChangeAtOnceAndEventsShowManyAsOne) {
    struct PaintCount : QObject {
        int paints = 0;
        bool eventFilter(QObject*, QEvent* event) override {
            paints += event->type() == QEvent::Paint;
            return false;
        }
    } count;
    SetPicture(100, 50);
    QCoreApplication::processEvents();
    pane_.viewport()->installEventFilter(&count);
    QSignalSpy changes(&pane_, &RastxPane::ImageChanged);
    Ignore(pane_.rastx().FxNegative());
    Ignore(pane_.rastx().FxNegative());
    pane_.rastx().BeginSelect();
    EXPECT_EQ(count.paints, 0);
    pane_.repaint();
    EXPECT_EQ(count.paints, 1);
    Ignore(pane_.rastx().FxNegative());
    pane_.rastx().ClearSelect();
    Ignore(pane_.rastx().FxNegative());
    QCoreApplication::processEvents();
    EXPECT_EQ(count.paints, 2);
    EXPECT_EQ(changes.count(), 4) << "a change of the rectangle is none of the picture";
}

TEST_F(RastxPaneTest, EveryRoadThatChangesThePictureIsShown) {
    MemoryCarrier carrier;
    RastxPane pane({.carrier = &carrier, .captureScreen = [] { return test::Draw("R"); }}, nullptr);
    pane.resize(100, 100);
    const auto middle = [&] { return pane.grab().toImage().pixelColor(50, 50).name().toStdString(); };
    carrier.Put(test::Must(Picture::Create(3000, 3000, kWhite, Alpha::None)));
    Ignore(pane.rastx().PasteClip());
    EXPECT_EQ(middle(), "#ffffff");
    Ignore(pane.rastx().FxNegative());
    EXPECT_EQ(middle(), "#000000");
    Ignore(pane.rastx().CaptureScreen());
    Ignore(pane.rastx().Resample(300, 300, true));
    EXPECT_EQ(middle(), "#ff0000");
    pane.rastx().ClearImage();
    EXPECT_EQ(middle(), pane.palette().color(QPalette::Mid).name().toStdString());
}

TEST_F(RastxPaneTest, ScrollBarsComeWithPicturesLargerThanTheView) {
    pane_.SetViewMode(2);
    struct Row {
        const char* name;
        int width, height;
        bool horizontal, vertical;
    };
    const Row kRows[] = {
        {"fits", 200, 100, false, false},       {"too wide", 201, 50, true, false},
        {"too high", 50, 101, false, true},     {"one bar makes the other needed", 201, 100, true, true},
        {"fits again", 200, 100, false, false},
    };
    for (const Row& row : kRows) {
        SetPicture(row.width, row.height);
        QCoreApplication::processEvents();
        const QSize view = pane_.viewport()->size();
        EXPECT_EQ(pane_.horizontalScrollBar()->isVisible(), row.horizontal) << row.name;
        EXPECT_EQ(pane_.verticalScrollBar()->isVisible(), row.vertical) << row.name;
        if (row.horizontal) {
            EXPECT_EQ(pane_.horizontalScrollBar()->maximum(), row.width - view.width()) << row.name;
        }
        if (row.vertical) {
            EXPECT_EQ(pane_.verticalScrollBar()->maximum(), row.height - view.height()) << row.name;
        }
    }
}

TEST_F(RastxPaneTest, TheMiddleButtonAndTheKeysScroll) {
    pane_.SetViewMode(2);
    SetPicture(2000, 1000);
    const QScrollBar& bar = *pane_.horizontalScrollBar();
    EXPECT_EQ(bar.value(), bar.maximum() / 2) << "starts in the middle";
    const int start = bar.value();
    QTest::mousePress(pane_.viewport(), Qt::MiddleButton, {}, {50, 50});
    MoveTo(30, 50, Qt::MiddleButton);
    QTest::mouseRelease(pane_.viewport(), Qt::MiddleButton, {}, {30, 50});
    EXPECT_EQ(bar.value(), start + 20);
    QTest::keyClick(&pane_, Qt::Key_Right);
    EXPECT_EQ(bar.value(), start + 20 + bar.singleStep());
    Press(100, 40);
    MoveTo(-30, 40);
    EXPECT_EQ(bar.value(), start - 10 + bar.singleStep()) << "a drag beyond the edge";
}

TEST_F(RastxPaneTest, AZoomKeepsTheMiddleOfTheView) {
    pane_.SetViewMode(2);
    SetPicture(2000, 1000);
    QScrollBar& bar = *pane_.horizontalScrollBar();
    bar.setValue(1500 - bar.pageStep() / 2);
    Ignore(pane_.rastx().Resample(100, 50, true));
    Ignore(pane_.rastx().Resample(4000, 2000, true));
    EXPECT_NEAR(bar.value() + bar.pageStep() / 2, 3000, 2);
}

TEST_F(RastxPaneTest, AZoomedPictureShowsWhatItHolds) {
    pane_.SetViewMode(2);
    for (const Picture& picture : {test::PhotoLike(300, 200), test::PhotoLikeWithAlpha(300, 200)}) {
        pane_.rastx().SetImage(picture);
        Ignore(pane_.rastx().Resample(900, 600, true));
        pane_.horizontalScrollBar()->setValue(333);
        const QImage partly = pane_.grab().toImage();
        EXPECT_TRUE(pane_.rastx().ImagePutOff());
        pane_.rastx().SetImage(pane_.rastx().Image());
        EXPECT_EQ(partly, pane_.grab().toImage());
    }
}

TEST_F(RastxPaneTest, TransparentPartsShowTheBoard) {
    pane_.rastx().SetImage(test::Must(Picture::Create(100, 50, Pixel{0, 0, 255, 0}, Alpha::Straight)));
    const QImage shown = pane_.grab().toImage();
    EXPECT_NE(shown.pixel(52, 27), shown.pixel(60, 27));
    EXPECT_EQ(shown.pixel(52, 27), shown.pixel(60, 35));
    EXPECT_LT(qAbs(qGray(shown.pixel(52, 27)) - qGray(shown.pixel(60, 27))), 40) << "quiet";
}

}  // namespace
}  // namespace tessara
