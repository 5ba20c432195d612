#include "edit/dialogs/Dialog2.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QTimer>

#include "edit/EffectCatalogue.h"
#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

class Dialog2Test : public testing::Test {
  protected:
    const Picture opening_ = test::PhotoLike(20, 14);
    test::RecordedEditor recorded_{opening_};
    Session& session_ = recorded_.session;
    ScriptedPrompts prompts_;
    std::unique_ptr<Dialog2> dialog_;
    ColorNumber pickedColor_ = -1;  ///< in the transparent colour's dialog

    void Restart(const Picture& picture) {
        recorded_.exportPane.SetImage(picture);
        recorded_.undo.UndoRefresh("KILL");
        session_.UndoPending = true;
    }
    void Open(std::string_view array, int index) {
        const EffectEntry& entry = *FindEffectEntry(array, index);
        session_.EffectCaption = EffectCaptionOf(entry.caption);
        const auto menu = std::ranges::find(EffectMenus(), array, &EffectMenu::array);
        session_.EffectGroup = menu->group;
        session_.EffectMenuIndex = index;
        Open(entry.code);
    }
    void Open(int code) {
        session_.EffectCode = code;
        dialog_ = std::make_unique<Dialog2>(
            Dialog2::Surroundings{.editor = recorded_.editor,
                                  .prompts = prompts_,
                                  .ShowDialogTrcol = [this] { session_.TransparentColor = pickedColor_; }},
            nullptr);
        dialog_->Shape();
        dialog_->show();
    }
    template <typename Control>
    Control& Find(const char* name) const {
        return *dialog_->findChild<Control*>(name);
    }
    ValueSlider& Slider(int i) const { return Find<ValueSlider>(qPrintable(QString("HScroll1(%1)").arg(i))); }
    QLineEdit& Box(int i) const { return Find<QLineEdit>(qPrintable(QString("Text1(%1)").arg(i))); }
    std::string ValueAbove() const {
        const QLabel& label = Find<QLabel>("Label1(3)");
        return label.isVisible() ? label.text().toStdString() : std::string();
    }
    void Click(const char* button) { Find<QAbstractButton>(button).click(); }
    const Picture& Shown() const { return recorded_.exportPane.Image(); }
    bool ShowsOpening() const { return test::LargestDifference(Shown(), opening_) == 0; }
};

TEST_F(Dialog2Test, OpensForEveryCodeAndApplyingAgainStartsFromTheOpeningPicture) {
    for (const EffectParameters& effect : EffectParametersTable()) {
        SCOPED_TRACE(effect.code);
        Restart(opening_);
        Open(effect.code);
        const EffectSlider expected = effect.Slider();
        int sliders = 0;
        for (int i = 0; i < 3; ++i) {
            if (!Slider(i).isVisible()) continue;
            const std::string_view caption = effect.captions[static_cast<std::size_t>(sliders++)];
            EXPECT_EQ(Find<QLabel>(qPrintable(QString("Label1(%1)").arg(i))).text().toStdString(), caption);
            EXPECT_EQ(Slider(i).minimum(), expected.Min);
            EXPECT_EQ(Slider(i).maximum(), expected.Max);
            EXPECT_EQ(Slider(i).value(), expected.Value);
            const std::string shown = Box(i).isVisible() ? Box(i).text().toStdString() : ValueAbove();
            EXPECT_TRUE(shown.find(std::to_string(expected.Value)) != std::string::npos) << shown;
        }
        EXPECT_EQ(sliders, effect.SliderCount());
        EXPECT_EQ(Find<QCheckBox>("Check1").isVisible(), effect.code == 117);
        EXPECT_FALSE(Find<QPushButton>("OKButton(2)").isEnabled());
        const QCheckBox& drag = Find<QCheckBox>("CheckDrag");
        EXPECT_EQ(drag.text().toStdString(), DragCaption(effect.code));
        EXPECT_FALSE(drag.isChecked());

        Click("OKButton(0)");
        const Picture once = Shown();
        Click("OKButton(0)");
        EXPECT_EQ(test::LargestDifference(Shown(), once), 0);
        EXPECT_EQ(session_.UndoTop, 2) << "each Apply adds a snapshot";
        EXPECT_TRUE(session_.ExportChanged && session_.UndoPending);
        EXPECT_EQ(recorded_.host.calls.back(), "PutviewExport 1") << "an open viewer follows";
        EXPECT_EQ(recorded_.host.busy || recorded_.host.progressMax > 0, false);
    }
}

TEST_F(Dialog2Test, ASliderAtNothingShowsTheOpeningPictureAndStillTakesASnapshot) {
    const Picture withAlpha = test::PhotoLikeWithAlpha(12, 9);
    for (const int code : {9, 206, 19, 25, 29, 114, 1, 204}) {
        Restart(withAlpha);
        Open(code);
        for (int i = 0; i < 3; ++i) Slider(i).setValue(0);
        Click("OKButton(0)");
        EXPECT_EQ(test::LargestDifference(Shown(), withAlpha), 0) << code;
        EXPECT_EQ(session_.UndoTop, 1);
    }
}

TEST_F(Dialog2Test, OwnEffectsSeeThePictureOnWhiteAndReportTheirRows) {
    Restart(test::PhotoLikeWithAlpha(12, 9));
    Open(114);
    Click("OKButton(0)");
    EXPECT_FALSE(Shown().HasAlpha());
    EXPECT_EQ(test::LargestDifference(Shown(), test::Must(recorded_.clipboard.Take())), 0);
    EXPECT_EQ(recorded_.host.progress.back(), 2 * 9 - 1) << "this one goes over the rows twice";
}

TEST_F(Dialog2Test, TitleAndHelpFollowTheEntry) {
    struct Case {
        std::string_view array;
        int index;
        std::string title, help;
    };
    for (const Case& row : {Case{"mEffects", 7, "Effects - Wave", "e3"},
                            {"mStylize", 16, "Filters - Stylize - Aqua ", "st3"},
                            {"mDistort", 12, "Filters - Distort - Wave", "di2"},
                            {"mOutline", 0, "Filters - Outline - Blur", "ou1"}}) {
        Open(row.array, row.index);
        EXPECT_EQ(dialog_->windowTitle().toStdString(), row.title);
        Click("ImageHelp");
        EXPECT_EQ(recorded_.host.calls.back(), "RunHtmlHelp 2-1.htm#" + row.help);
    }
}

TEST_F(Dialog2Test, TypedValuesAreCorrectedWithABeepAndRunNothing) {
    struct Case {
        int code, box;
        const char* typed;
        std::string text;
        int value, beeps;
    };
    const Case cases[] = {{1, 0, "300", "100", 100, 1}, {1, 1, "-300", "-100", -100, 1},
                          {1, 0, "-50", "-50", -50, 0}, {252, 1, "-5", "2", 2, 1},
                          {252, 0, "", "2", 2, 1},      {107, 1, "12.5", "12.5", 12, 0},
                          {107, 1, "x", "x", 0, 0},     {205, 1, "+9", "+9", 9, 0}};
    for (const Case& row : cases) {
        SCOPED_TRACE(row.typed);
        Open(row.code);
        prompts_.beeps = 0;
        Find<QCheckBox>("CheckDrag").setChecked(true);
        Box(row.box).setText(row.typed);
        EXPECT_EQ(Box(row.box).text().toStdString(), row.text);
        EXPECT_EQ(Slider(row.box).value(), row.value);
        EXPECT_EQ(prompts_.beeps, row.beeps);
        EXPECT_TRUE(ShowsOpening());
    }
    QTest::keyClick(&Box(1), Qt::Key_Return);
    EXPECT_FALSE(ShowsOpening()) << "Return applies";
}

TEST_F(Dialog2Test, ASliderIsShownAndHandsTheFocusToApply) {
    struct Case {
        int code, slider, value;
        std::string box, above;
    };
    for (const Case& row : {Case{1, 1, -7, "-7", ""}, {205, 1, 20, "+20", "20 %"}, {21, 1, 35, "", "35 %"}}) {
        SCOPED_TRACE(row.code);
        Open(row.code);
        Slider(row.slider).setFocus();
        Slider(row.slider).setValue(row.value);
        EXPECT_EQ(ValueAbove(), row.above);
        EXPECT_EQ(Box(row.slider).isVisible() ? Box(row.slider).text().toStdString() : "", row.box);
        EXPECT_FALSE(Slider(row.slider).hasFocus());
        EXPECT_TRUE(ShowsOpening()) << "without the live preview nothing runs";
    }
}

TEST_F(Dialog2Test, KeysGoOnMovingASliderThatHandedItsFocusOn) {
    struct Case {
        int code, slider;
        std::vector<Qt::Key> keys;
        int value;
    };
    for (const Case& row : {Case{24, 1, {Qt::Key_Right, Qt::Key_Right, Qt::Key_Home, Qt::Key_Up}, 5},
                            {1, 1, {Qt::Key_Right, Qt::Key_Up, Qt::Key_PageUp, Qt::Key_Down}, 51},
                            {1, 0, {Qt::Key_Up, Qt::Key_Left}, 1}}) {
        SCOPED_TRACE(testing::Message() << row.code << " " << row.slider);
        Open(row.code);
        Slider(row.slider).setFocus();
        for (const Qt::Key key : row.keys) QTest::keyClick(dialog_->focusWidget(), key);
        EXPECT_EQ(Slider(row.slider).value(), row.value);
    }
}

TEST_F(Dialog2Test, ApplyQuitAndUndo) {
    Open(204);
    Slider(0).setValue(100);
    Click("OKButton(0)");
    const Picture red = Shown();
    Click("OKButton(2)");
    EXPECT_TRUE(ShowsOpening());
    EXPECT_EQ(Slider(0).value(), 0);
    EXPECT_EQ(Box(0).text(), "0");
    EXPECT_FALSE(Find<QPushButton>("OKButton(2)").isEnabled());

    Slider(0).setValue(100);
    Click("OKButton(0)");
    Click("OKButton(1)");
    EXPECT_FALSE(dialog_->isVisible());
    EXPECT_EQ(test::LargestDifference(Shown(), red), 0) << "the result stays";
    EXPECT_EQ(session_.EffectCode, -1);
}

TEST_F(Dialog2Test, UndoPutsSomeSlidersBack) {
    struct Case {
        int code, value, after, beeps;
        std::string above;
    };
    for (const Case& row : {Case{107, 90, 0, 0, ""}, {205, 20, 1, 1, "1 %"}, {9, 4, 4, 0, "4"}}) {
        SCOPED_TRACE(row.code);
        Open(row.code);
        Slider(1).setValue(row.value);
        Click("OKButton(0)");
        prompts_.beeps = 0;
        Click("OKButton(2)");
        EXPECT_EQ(Slider(1).value(), row.after);
        EXPECT_EQ(ValueAbove(), row.above);
        EXPECT_EQ(prompts_.beeps, row.beeps);
    }
}

TEST_F(Dialog2Test, LivePreviewRunsWhileDraggedAndTakesOneSnapshot) {
    Open(24);
    Click("CheckDrag");
    EXPECT_EQ(session_.UndoTop, 1) << "the box takes the first snapshot";
    ValueSlider& slider = Slider(1);
    slider.setSliderDown(true);
    slider.setSliderPosition(30);
    const Picture first = Shown();
    slider.setSliderPosition(60);
    EXPECT_GT(test::LargestDifference(Shown(), first), 0);
    EXPECT_EQ(ValueAbove(), "60 %");
    slider.setSliderDown(false);
    EXPECT_EQ(session_.UndoTop, 1);
    Click("OKButton(2)");
    EXPECT_TRUE(ShowsOpening());

    slider.setSliderDown(true);
    slider.setSliderPosition(90);
    EXPECT_FALSE(ShowsOpening());
    slider.setSliderDown(false);
    EXPECT_EQ(session_.UndoTop, 2) << "where there is nothing to undo the drag takes one of its own";
    Click("OKButton(2)");
    EXPECT_TRUE(ShowsOpening());
}

TEST_F(Dialog2Test, TransparentIsCheckedOnlyWithAColour) {
    Open(19);
    QCheckBox& transparent = Find<QCheckBox>("Check1");
    transparent.setChecked(true);
    EXPECT_FALSE(transparent.isChecked());
    pickedColor_ = RGB(1, 2, 3);
    transparent.setChecked(true);
    EXPECT_TRUE(transparent.isChecked());
    EXPECT_EQ(session_.TransparentColor, RGB(1, 2, 3));
    transparent.setChecked(false);
    EXPECT_EQ(session_.TransparentColor, -1);

    session_.TransparentColor = RGB(1, 2, 3);
    Open(117);
    Click("Check1");
    Click("Check1");
    EXPECT_EQ(session_.TransparentColor, RGB(1, 2, 3)) << "that box says something else";
}

TEST_F(Dialog2Test, IsModalBesideThePaneUntilItIsClosed) {
    QWidget pane;
    pane.setGeometry(20, 300, 300, 300);
    pane.show();
    session_.EffectCode = 9;
    Dialog2 dialog({recorded_.editor, prompts_, &pane}, nullptr);
    bool seen = false;
    QTimer::singleShot(0, &dialog, [&] {
        seen = dialog.isModal() && dialog.isVisible();
        EXPECT_FALSE(dialog.frameGeometry().intersects(pane.geometry()));
        dialog.close();
    });
    dialog.LoadDialog2();
    EXPECT_TRUE(seen);
    EXPECT_EQ(session_.EffectCode, -1);
}

TEST(ValueSlider, TellsADragFromOtherChanges) {
    ValueSlider slider(nullptr);
    slider.SetRange(0, 10, 1, 5);
    std::string events;
    QObject::connect(&slider, &ValueSlider::Change, [&] { events += 'C'; });
    QObject::connect(&slider, &ValueSlider::Scroll, [&] { events += 'S'; });
    slider.setValue(3);
    slider.setValue(3);
    QTest::keyClick(&slider, Qt::Key_Right);
    EXPECT_EQ(events, "CC");
    for (const auto& [end, expected] : {std::pair{7, "SSC"}, {7, "SS"}}) {
        events.clear();
        slider.setSliderDown(true);
        slider.setSliderPosition(6);
        slider.setSliderPosition(end);
        slider.setSliderDown(false);
        EXPECT_EQ(events, expected) << "back where it was nothing has changed";
    }
}

}  // namespace
}  // namespace tessara
