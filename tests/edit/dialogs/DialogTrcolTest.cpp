#include "edit/dialogs/DialogTrcol.h"

#include <gtest/gtest.h>

#include <QTest>

#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

/// A picture large enough to be clicked at: blocks of 50 by 50.
Picture Blocks() {
    const Picture colors = test::Draw("RK GB");
    Picture picture = test::Must(Picture::Create(100, 100, kWhite, Alpha::None));
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 100; ++x)
            picture.MutableRow(y)[static_cast<std::size_t>(x)] = colors.At(x / 50, y / 50);
    return picture;
}

class DialogTrcolTest : public testing::Test {
  protected:
    test::RecordedEditor recorded_{Blocks()};
    Session& session_ = recorded_.session;
    DialogTrcol dialog_{recorded_.editor, nullptr};
    RastxPane& pane_ = *dialog_.findChild<RastxPane*>("rastx1");
    QLineEdit& swatch_ = *dialog_.findChild<QLineEdit*>("Text1");

    DialogTrcolTest() { dialog_.show(); }
    void ClickAt(int x, int y) { QTest::mouseClick(pane_.viewport(), Qt::LeftButton, {}, QPoint(x, y)); }
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
    struct Case {
        int x, y;
        ColorNumber color;
    };
    for (const Case& row : {Case{10, 10, RGB(255, 0, 0)}, {10, 90, RGB(0, 255, 0)}, {90, 10, 0}}) {
        ClickAt(row.x, row.y);
        EXPECT_EQ(session_.TransparentColor, row.color);
        EXPECT_EQ(RotationBackground(session_), row.color);
        const QColor shown = swatch_.palette().color(QPalette::Base);
        EXPECT_EQ(RGB(shown.red(), shown.green(), shown.blue()), row.color);
        EXPECT_EQ(swatch_.text(), "");
    }
}

TEST_F(DialogTrcolTest, HelpOpensAtTheColour) {
    dialog_.findChild<QToolButton*>("ImageHelp")->click();
    EXPECT_EQ(recorded_.host.calls.back(), "RunHtmlHelp 2-1.htm#abouttr");
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
