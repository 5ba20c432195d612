#include "edit/EffectSession.h"

#include <gtest/gtest.h>

#include "edit/EffectCatalogue.h"
#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

/// The sliders of an effect as the dialog opens.
EffectChoice Usual(int code) {
    const int value = FindEffectParameters(code)->Slider().Value;
    return {{value, value, value}};
}

class EffectSessionTest : public testing::Test {
  protected:
    const Picture opening_ = test::PhotoLikeWithAlpha(24, 17);
    test::RecordedEditor recorded_{opening_};
    Session& session_ = recorded_.session;
    EffectSession effect_{recorded_.editor};
    int width_ = 0, height_ = 0;

    void Open(int code) {
        session_.EffectCode = code;
        effect_.PrepareScratchPictures(width_, height_);
    }
    const Picture& Shown() const { return recorded_.exportPane.Image(); }
    bool ShowsOpening() const { return test::LargestDifference(Shown(), opening_) == 0; }
};

TEST_F(EffectSessionTest, ApplyingAgainStartsFromTheOpeningPicture) {
    int swept = 0;
    for (const EffectParameters& effect : EffectParametersTable()) {
        SCOPED_TRACE(effect.code);
        recorded_.exportPane.SetImage(opening_);
        recorded_.undo.UndoRefresh("KILL");
        session_.UndoPending = true;
        Open(effect.code);
        effect_.Apply(Usual(effect.code), false);
        const Picture once = Shown();
        effect_.Apply(Usual(effect.code), false);
        EXPECT_EQ(test::LargestDifference(Shown(), once), 0);
        EXPECT_EQ(session_.UndoTop, 2) << "each Apply adds a snapshot";
        EXPECT_TRUE(session_.ExportChanged && session_.UndoPending);
        EXPECT_FALSE(recorded_.host.busy);
        EXPECT_EQ(recorded_.host.progressMax, 0);
        ++swept;
    }
    EXPECT_GT(swept, 40);
}

TEST_F(EffectSessionTest, ASliderAtNothingShowsTheOpeningPictureAndStillTakesASnapshot) {
    for (const int code : {9, 206, 222, 19, 25, 29, 114, 1, 200, 204}) {
        Open(code);
        recorded_.undo.UndoRefresh("KILL");
        session_.UndoPending = true;
        effect_.Apply({}, false);
        EXPECT_TRUE(ShowsOpening()) << code;
        EXPECT_EQ(session_.UndoTop, 1);
    }
}

TEST_F(EffectSessionTest, OwnEffectsSeeThePictureOnWhiteAndReportTheirRows) {
    Open(24);
    effect_.Apply(Usual(24), false);
    EXPECT_FALSE(Shown().HasAlpha());
    EXPECT_EQ(test::LargestDifference(Shown(), test::Must(recorded_.clipboard.Take())), 0);
    EXPECT_EQ(recorded_.host.progress.size(), 17U);

    recorded_.host.progress.clear();
    Open(114);
    effect_.Apply(Usual(114), false);
    EXPECT_EQ(recorded_.host.progress.back(), 2 * 17 - 1) << "Wave goes over the rows twice";
}

TEST_F(EffectSessionTest, UndoStepsBackAndTheNextApplyStillStartsFromTheOpeningPicture) {
    Open(27);
    effect_.Apply(Usual(27), false);
    const Picture applied = Shown();
    effect_.Undo();
    EXPECT_TRUE(ShowsOpening());
    effect_.Apply(Usual(27), false);
    EXPECT_EQ(test::LargestDifference(Shown(), applied), 0);
}

TEST_F(EffectSessionTest, TheFirstDragSavesTheUntouchedPictureAndLaterOnesSaveNothing) {
    Open(10);
    for (const int value : {1, 2, 3}) {
        effect_.PrepareDrag(effect_.UndoEnabled());
        effect_.Apply({{0, value, 0}}, true);
    }
    EXPECT_EQ(session_.UndoTop, 1);
    effect_.Undo();
    EXPECT_TRUE(ShowsOpening());
}

TEST_F(EffectSessionTest, AnOpenViewerFollowsEveryRun) {
    for (const int code : {24, 9}) {
        Open(code);
        recorded_.host.calls.clear();
        effect_.Apply(Usual(code), false);
        EXPECT_EQ(recorded_.host.calls.back(), "PutviewExport 1");
    }
}

TEST_F(EffectSessionTest, NothingHappensToAnEmptyPane) {
    recorded_.exportPane.ClearImage();
    for (const int code : {9, 24, 107}) {
        Open(code);
        effect_.Apply(Usual(code), false);
        EXPECT_TRUE(Shown().Empty());
    }
}

TEST(EffectDialogTitle, FollowsTheRouteTaken) {
    Session session;
    session.EffectGroup = "Effects";
    session.EffectCaption = "Wave";
    EXPECT_EQ(EffectDialogTitle(session), "Effects - Wave");
    session.EffectGroup = "Stylize";
    session.EffectCaption = "Aqua ";
    EXPECT_EQ(EffectDialogTitle(session), "Filters - Stylize - Aqua ");
}

}  // namespace
}  // namespace tessara
