#include "edit/dialogs/DialogResize.h"

#include <gtest/gtest.h>

#include <QTest>

#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

class DialogResizeTest : public testing::Test {
  protected:
    test::RecordedEditor recorded_{test::PhotoLike(100, 50)};
    QWidget exportPane_;
    std::unique_ptr<DialogResize> dialog_;

    /// The pane's height decides the limit: 500 where it is 0.
    void Open(int paneHeight = 0) {
        exportPane_.resize(10, paneHeight);
        dialog_ = std::make_unique<DialogResize>(DialogResize::Surroundings{recorded_.editor, &exportPane_},
                                                 nullptr);
        dialog_->Shape();
        dialog_->show();
    }
    template <typename Control>
    Control& Find(const char* name) const {
        return *dialog_->findChild<Control*>(QLatin1String(name));
    }
    void Click(const char* name) { Find<QAbstractButton>(name).click(); }
    /// Both sliders, boxes and units as they are shown.
    std::string State() const {
        std::string state;
        for (const char* i : {"(0)", "(1)"}) {
            const auto name = [&](const char* array) { return QByteArray(array) + i; };
            const auto& slider = Find<ValueSlider>(name("HScroll1"));
            state += std::to_string(slider.value()) + "/" + std::to_string(slider.maximum()) + " " +
                     Find<QLineEdit>(name("Text1")).text().toStdString() + " " +
                     Find<QLabel>(name("Label2")).text().toStdString() + " ";
        }
        return state;
    }
};

TEST_F(DialogResizeTest, OpensWithTheSizeOfThePicture) {
    Open();
    EXPECT_EQ(State(), "100/500 100 Pixels 50/500 50 Pixels ");
    EXPECT_TRUE(Find<QCheckBox>("Check1").isChecked());
    Open(7);  // 105 twips
    EXPECT_EQ(State(), "100/250 100 Pixels 50/250 50 Pixels ");
}

TEST_F(DialogResizeTest, ControlsFollowEachOtherAndTheButtonsAct) {
    Open();
    Find<ValueSlider>("HScroll1(0)").setValue(50);
    EXPECT_EQ(State(), "50/500 50 Pixels 25/500 25 Pixels ");
    Find<QLineEdit>("Text1(1)").selectAll();
    QTest::keyClicks(&Find<QLineEdit>("Text1(1)"), "20");
    EXPECT_EQ(State(), "40/500 40 Pixels 20/500 20 Pixels ");
    Find<QLineEdit>("Text1(0)").selectAll();
    QTest::keyClicks(&Find<QLineEdit>("Text1(0)"), "37");
    EXPECT_EQ(State(), "36/500 37 Pixels 18/500 18 Pixels ") << "what is being typed stays as it is";
    QTest::keyClick(&Find<QLineEdit>("Text1(0)"), Qt::Key_Return);
    EXPECT_EQ(State(), "36/500 36 Pixels 18/500 18 Pixels ");
    EXPECT_EQ(recorded_.exportPane.ImageWidth(), 36) << "Return applies";
    Find<ValueSlider>("HScroll1(0)").setValue(40);
    Click("Option1(1)");
    EXPECT_EQ(State(), "40/500 40 Percent 40/500 40 Percent ");
    Click("Option1(0)");
    Click("OKButton(0)");
    EXPECT_EQ(recorded_.exportPane.ImageWidth(), 40);
    Click("OKButton(1)");
    EXPECT_EQ(recorded_.exportPane.ImageWidth(), 36);
    Click("Check1");
    Find<ValueSlider>("HScroll1(0)").setValue(51);
    EXPECT_EQ(State(), "51/500 51 Pixels 20/500 20 Pixels ");
    Click("OKButton(2)");
    EXPECT_FALSE(dialog_->isVisible());
}

}  // namespace
}  // namespace tessara
