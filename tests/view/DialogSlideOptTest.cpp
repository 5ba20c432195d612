#include "view/DialogSlideOpt.h"

#include <gtest/gtest.h>

#include <QTest>

#include "settings/SettingsFile.h"
#include "tests/Support.h"

namespace tessara {
namespace {

class DialogSlideOptTest : public testing::Test {
  protected:
    DialogSlideOptTest() { session_.AppPath = folder_.Path(); }

    template <typename Control>
    static Control* Find(const QDialog& dialog, const char* name) {
        auto* const control = dialog.findChild<Control*>(QString::fromLatin1(name));
        if (!control) throw std::runtime_error(name);
        return control;
    }
    static std::string TextOf(const QDialog& dialog) {
        return Find<QLineEdit>(dialog, "Text1")->text().toStdString() + " " +
               Find<QLabel>(dialog, "Label2")->text().toStdString();
    }

    test::TemporaryFolder folder_;
    Session session_;
    ScriptedPrompts prompts_;
};

TEST_F(DialogSlideOptTest, ADelayIsTypedWithinLimits) {
    struct Row {
        const char* typed;
        const char* shown;
        int delay;
        int beeps;
    };
    const Row kRows[] = {
        {"1400", "1400 (1 Second)", 1400, 0},
        {"1500", "1500 (2 Seconds)", 1500, 0},
        {"999", "999 (1 Second)", 999, 0},
        {"400", "400 (0 Seconds)", 400, 0},
        {"30001", "30000 (30 Seconds)", 30000, 1},
        {"0", "0 (0 Seconds)", 0, 1},
        {"07", "7 (0 Seconds)", 7, 1},
        {"5a0", "50 (0 Seconds)", 50, 1},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.typed);
        session_.SlideOptions = {};
        prompts_.beeps = 0;
        DialogSlideOpt dialog(session_, prompts_, nullptr);
        EXPECT_EQ(TextOf(dialog), "2000 (2 Seconds)");
        auto* const box = Find<QLineEdit>(dialog, "Text1");
        box->selectAll();
        QTest::keyClicks(box, QString::fromLatin1(row.typed));
        EXPECT_EQ(TextOf(dialog), row.shown);
        EXPECT_EQ(session_.SlideOptions.SlideDelay, row.delay);
        EXPECT_EQ(Find<QSlider>(dialog, "HScroll1")->value(), row.delay);
        EXPECT_EQ(prompts_.beeps, row.beeps);
    }
}

TEST_F(DialogSlideOptTest, TheSliderSetsTheDelay) {
    DialogSlideOpt dialog(session_, prompts_, nullptr);
    auto* const slider = Find<QSlider>(dialog, "HScroll1");
    QTest::keyClick(slider, Qt::Key_Right);
    EXPECT_EQ(TextOf(dialog), "3000 (3 Seconds)");
    slider->triggerAction(QSlider::SliderPageStepAdd);
    EXPECT_EQ(session_.SlideOptions.SlideDelay, 5000);
    dialog.show();
    const QSize size = dialog.size();
    slider->setValue(30000);
    EXPECT_EQ(TextOf(dialog), "30000 (30 Seconds)");
    QCoreApplication::processEvents();
    EXPECT_EQ(dialog.size(), size);
    slider->setValue(0);
    EXPECT_EQ(TextOf(dialog), "0 (0 Seconds)");
    EXPECT_EQ(prompts_.beeps, 0);
}

TEST_F(DialogSlideOptTest, BoxesAndOptionsAreTakenAtOnce) {
    session_.SlideOptions = {.SlideAuto = 0, .SlideFullScreen = 1, .SlideDelay = 700, .SlideOrder = 1};
    DialogSlideOpt dialog(session_, prompts_, nullptr);
    for (const char* name : {"HScroll1", "Text1", "Label1", "Label2"})
        EXPECT_FALSE(Find<QWidget>(dialog, name)->isEnabled()) << name;
    EXPECT_TRUE(Find<QRadioButton>(dialog, "Option1(1)")->isChecked());
    for (const char* name : {"Check1(0)", "Check1(1)", "Check1(2)", "Check1(3)", "Option1(2)"})
        Find<QAbstractButton>(dialog, name)->click();
    const SlideOptions expected = {
        .SlideAuto = 1, .SlideResize = 1, .SlideCircular = 0, .SlideDelay = 700, .SlideOrder = 2};
    EXPECT_EQ(session_.SlideOptions, expected);
    EXPECT_TRUE(Find<QWidget>(dialog, "Text1")->isEnabled());
}

TEST_F(DialogSlideOptTest, OptionsOutliveTheProgramOnlyWhenSaved) {
    const SettingsFile file(session_.PrivateFile("ts40.cfg"));
    DialogSlideOpt dialog(session_, prompts_, nullptr);
    dialog.show();
    Find<QSlider>(dialog, "HScroll1")->setValue(12345);
    Find<QPushButton>(dialog, "OKButton(0)")->click();
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_FALSE(file.HasContents());
    dialog.show();
    Find<QPushButton>(dialog, "OKButton(1)")->click();
    EXPECT_TRUE(dialog.isVisible());
    SlideOptions saved;
    test::Must(file.Read(saved));
    EXPECT_EQ(saved, session_.SlideOptions);
}

}  // namespace
}  // namespace tessara
