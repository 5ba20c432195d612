#include "edit/dialogs/DialogTrcol.h"

#include <gtest/gtest.h>

#include <QTest>

#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

class DialogTrcolTest : public testing::Test {
  protected:
    test::RecordedEditor recorded_{test::PhotoLike(100, 100)};
    Session& session_ = recorded_.session;
    DialogTrcol dialog_{recorded_.editor, nullptr};
    RastxPane& pane_ = *dialog_.findChild<RastxPane*>("rastx1");
    QLineEdit& swatch_ = *dialog_.findChild<QLineEdit*>("Text1");

    DialogTrcolTest() { dialog_.show(); }
};

TEST_F(DialogTrcolTest, OpeningAloneChoosesNone) {
    EXPECT_EQ(session_.TransparentColor, -1);
    EXPECT_EQ(swatch_.text(), " Not Yet Selected");
    EXPECT_EQ(test::LargestDifference(pane_.rastx().Image(), recorded_.exportPane.Image()), 0);
    dialog_.findChild<QPushButton*>("OKButton")->click();
    EXPECT_FALSE(dialog_.isVisible());
    EXPECT_EQ(session_.TransparentColor, -1);
    EXPECT_EQ(RotationBackground(session_), RGB(255, 255, 255));
}

TEST_F(DialogTrcolTest, TheLastClickCounts) {
    for (const auto& [x, y] : {std::pair{10, 10}, {10, 90}, {90, 10}}) {
        QTest::mouseClick(pane_.viewport(), Qt::LeftButton, {}, QPoint(x, y));
        const Pixel pixel = recorded_.exportPane.Image().At(x, y);
        EXPECT_EQ(session_.TransparentColor, ColorFromPixel(pixel));
        EXPECT_EQ(swatch_.palette().color(QPalette::Base), QColor(pixel.r, pixel.g, pixel.b));
        EXPECT_EQ(swatch_.text(), "");
    }
}

TEST_F(DialogTrcolTest, ItsHelpTellsOfTheTransparentColor) {
    dialog_.findChild<QToolButton*>("ImageHelp")->click();
    EXPECT_EQ(recorded_.host.calls, std::vector<std::string>{"RunHtmlHelp 2-1.htm#abouttr"});
}

TEST_F(DialogTrcolTest, TheNoteShowsAllItsLines) {
    const QLabel& note = *dialog_.findChild<QLabel*>("Label2");
    EXPECT_GE(note.height(), note.heightForWidth(note.width()));
}

TEST(TransparentColorPicker, OutsideThePictureThereIsNone) {
    Session session;
    TransparentColorPicker picker(session, test::Draw("R."));
    picker.Pick(1, 0);
    EXPECT_EQ(session.TransparentColor, RGB(255, 255, 255)) << "a transparent pixel is seen on white";
    for (const auto& [x, y] : {std::pair{2, 0}, {0, 1}, {-1, 0}, {0, -1}}) {
        picker.Pick(x, y);
        EXPECT_EQ(session.TransparentColor, -1);
    }
}

}  // namespace
}  // namespace tessara
