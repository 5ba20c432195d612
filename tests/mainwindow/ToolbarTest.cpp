#include "mainwindow/Toolbar.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>

namespace tessara {
namespace {

using State = PictureState;

class ToolbarTest : public testing::Test {
  protected:
    Session session_;
    Toolbar toolbar_{session_, nullptr};
    ToolStrip& strip_ = *toolbar_.PictureToolBack();

    ToolbarTest() {
        toolbar_.Place(600);
        toolbar_.show();
    }
    void MoveOver(QWidget* widget, QPoint position) {
        QMouseEvent event(QEvent::MouseMove, position, widget->mapToGlobal(position), Qt::NoButton, {}, {});
        QApplication::sendEvent(widget, &event);
    }
    void MoveOver(int Index) { MoveOver(toolbar_.Imagetool(Index), {8, 8}); }
    State Picture(int Index) const { return toolbar_.Imagetool(Index)->Picture(); }
};

TEST_F(ToolbarTest, ButtonsStandWhereTheTableSays) {
    ASSERT_EQ(strip_.ToolCount(), 13);
    EXPECT_EQ(toolbar_.Imagetool(0)->geometry(), QRect(16, 3, 16, 16));
    EXPECT_EQ(toolbar_.Imagetool(1)->geometry(), QRect(38, 3, 16, 16));
    EXPECT_EQ(toolbar_.Imagetool(12)->geometry(), QRect(322, 3, 16, 16));
    EXPECT_EQ(toolbar_.Imagetool(5)->toolTip(), QStringLiteral("Delete"));
}

TEST_F(ToolbarTest, PicturesFollowThePointer) {
    MoveOver(3);
    EXPECT_EQ(strip_.PictureNumber(3), 3 + 16);
    MoveOver(4);
    EXPECT_EQ(strip_.PictureNumber(3), 3 + 1);
    EXPECT_EQ(strip_.PictureNumber(4), 4 + 16);
    MoveOver(&strip_, {400, 10});
    EXPECT_EQ(strip_.PictureNumber(4), 4 + 1);
    EXPECT_EQ(strip_.HoverIndex(), -1);
}

TEST_F(ToolbarTest, ADisabledButtonKeepsItsPictureUnderThePointer) {
    toolbar_.SetImageTool(5, false);
    MoveOver(4);
    MoveOver(5);
    EXPECT_EQ(strip_.PictureNumber(5), 5 + 31);
    EXPECT_EQ(Picture(4), State::Normal);
    EXPECT_EQ(strip_.HoverIndex(), 5);
    MoveOver(4);
    EXPECT_EQ(Picture(5), State::Disabled);
}

TEST_F(ToolbarTest, AButtonThatIsSwitchedOffUnderThePointerStaysOff) {
    MoveOver(8);
    toolbar_.SetImageTool(8, false);
    toolbar_.ToolbarMouseLeft();
    EXPECT_EQ(Picture(8), State::Disabled);
    toolbar_.SetImageTool(8, true);
    EXPECT_EQ(Picture(8), State::Normal);
}

TEST_F(ToolbarTest, ACaptureKeepsItsBlinkingButton) {
    MoveOver(11);
    session_.CaptureMode = true;
    toolbar_.ToolbarMouseLeft();
    EXPECT_EQ(Picture(11), State::Hover);
    toolbar_.Imagetool(11)->SetPicture(State::Normal);
    MoveOver(10);
    MoveOver(11);
    EXPECT_EQ(Picture(11), State::Normal);
    EXPECT_EQ(Picture(10), State::Normal);
    session_.CaptureMode = false;
    MoveOver(10);
    EXPECT_EQ(Picture(10), State::Hover);
}

TEST_F(ToolbarTest, ThePointerBesideTheButtonsBringsWhatRunsToTheFront) {
    const QSignalSpy progress(&toolbar_, &Toolbar::ProgressToFront);
    const QSignalSpy slides(&toolbar_, &Toolbar::SlidesToFront);
    MoveOver(&strip_, {400, 10});
    EXPECT_EQ(progress.count() + slides.count(), 0);
    session_.Converting = true;
    MoveOver(&strip_, {400, 10});
    session_.SlideRunning = true;
    session_.Converting = false;
    toolbar_.ToolbarMouseLeft();
    EXPECT_EQ(progress.count(), 1);
    EXPECT_EQ(slides.count(), 1);
}

TEST_F(ToolbarTest, MouseAndKeyboardReachTheEnabledButtons) {
    QSignalSpy clicks(&toolbar_, &Toolbar::Imagetool_Click);
    toolbar_.SetImageTool(0, false);
    QTest::mouseClick(toolbar_.Imagetool(0), Qt::LeftButton);
    QTest::mouseClick(toolbar_.Imagetool(9), Qt::LeftButton);
    toolbar_.activateWindow();
    toolbar_.Imagetool(9)->setFocus();
    QTest::keyClick(toolbar_.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(toolbar_.focusWidget(), Qt::Key_Space);
    ASSERT_EQ(clicks.count(), 2);
    EXPECT_EQ(clicks.at(0).at(0).toInt(), 9);
    EXPECT_EQ(clicks.at(1).at(0).toInt(), 10);
}

}  // namespace
}  // namespace tessara
