#include "edit/dialogs/FormIcoRealSize.h"

#include <gtest/gtest.h>

#include <QTest>

#include "desktop/PictureImage.h"
#include "tests/Support.h"

namespace tessara {
namespace {

TEST(CaptureLayout, FollowsTheSizeOfTheCapture) {
    struct Case {
        QSize picture;
        QSize window;
        QPoint Picture1;
    };
    const Case cases[] = {
        {{64, 64}, {1260, 1560}, {105, 150}},   {{32, 16}, {1350, 840}, {390, 150}},
        {{59, 64}, {1350, 1560}, {187, 150}},   {{60, 64}, {1200, 1560}, {105, 150}},
        {{300, 100}, {4800, 2100}, {105, 150}},
    };
    for (const Case& row : cases) {
        const CaptureLayout layout(row.picture);
        SCOPED_TRACE(row.picture.width());
        EXPECT_EQ(layout.window, row.window);
        EXPECT_EQ(layout.Picture1, QRect(row.Picture1, row.picture * 15));
    }
}

class FormIcoRealSizeTest : public testing::Test {
  protected:
    FormIcoRealSize form_;
    int grasps_ = 0;

    FormIcoRealSizeTest() {
        form_.Grasp = [this] { ++grasps_; };
        form_.SetKeyPreview(true);
    }
};

TEST_F(FormIcoRealSizeTest, ShowsThePicturePixelForPixelInItsMiddle) {
    const Picture picture = test::PhotoLike(64, 48);
    form_.SetupCaptureWindow({64, 48});
    form_.ShowPicture(picture);
    form_.ShowTopmost();
    EXPECT_EQ(form_.windowTitle(), QStringLiteral("64 x 48"));
    EXPECT_EQ(form_.size(), QSize(64 + 14, 48 + 20));
    EXPECT_TRUE(form_.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_FALSE(form_.findChild<QWidget*>(QStringLiteral("Image1"))->isVisible());
    const QImage shown = form_.grab(QRect(7, 10, 64, 48)).toImage();
    EXPECT_EQ(test::LargestDifference(test::Must(PictureOf(shown)), picture), 0);
}

TEST_F(FormIcoRealSizeTest, OnlyANewPressOfControlCallsGrasp) {
    form_.ShowTopmost();
    QTest::keyClick(&form_, Qt::Key_Control);
    EXPECT_EQ(grasps_, 1);
    QTest::keyClick(&form_, Qt::Key_Shift);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Control, Qt::ControlModifier, {}, true);
    QApplication::sendEvent(&form_, &repeated);
    form_.SetKeyPreview(false);
    QTest::keyClick(&form_, Qt::Key_Control);
    EXPECT_EQ(grasps_, 1);
}

TEST_F(FormIcoRealSizeTest, TellsItsClosingByTheUserOnly) {
    int closings = 0;
    form_.Closed = [&] { ++closings; };
    form_.ShowTopmost();
    form_.Unload();
    EXPECT_EQ(closings, 0);
    form_.ShowTopmost();
    form_.close();
    EXPECT_EQ(closings, 1);
}

}  // namespace
}  // namespace tessara
