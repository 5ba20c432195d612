#include "edit/dialogs/EffectCommands.h"

#include <gtest/gtest.h>

#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

class EffectCommandsTest : public testing::Test {
  protected:
    test::RecordedEditor recorded_{test::Draw("RG BW")};
    Session& session_ = recorded_.session;
    ScriptedPrompts prompts_;
    ScriptedRandom random_;
    std::vector<int> dialogs_;  ///< the codes for which the effect dialog was opened
    int resizeDialogs_ = 0;
    EffectCommands commands_{{recorded_.editor, prompts_, random_,
                              [this] { dialogs_.push_back(session_.EffectCode); },
                              [this] { ++resizeDialogs_; }}};

    std::string Shown() const { return test::Sketch(recorded_.exportPane.Image()); }
    bool HasCall(const std::string& call) const {
        const auto& calls = recorded_.host.calls;
        return std::ranges::find(calls, call) != calls.end();
    }
};

TEST_F(EffectCommandsTest, EveryEntryDoesWhatItsKindSays) {
    for (const EffectEntry& entry : EffectEntries()) {
        SCOPED_TRACE(testing::Message() << entry.array << entry.index);
        recorded_.exportPane.SetImage(test::PhotoLike(12, 9));
        recorded_.undo.UndoRefresh("KILL");
        session_.UndoPending = true;
        session_.ExportChanged = false;
        recorded_.host.calls.clear();
        dialogs_.clear();
        commands_.Click(entry.array, entry.index);
        EXPECT_TRUE(HasCall("StopCapture"));
        const bool changes = entry.kind == EffectKind::Direct || entry.kind == EffectKind::AskColor;
        EXPECT_EQ(session_.ExportChanged, changes);
        EXPECT_EQ(session_.UndoTop, changes ? 1 : 0);
        EXPECT_EQ(HasCall("PutviewExport 1"), changes);
        EXPECT_EQ(dialogs_, entry.kind == EffectKind::Dialog ? std::vector{entry.code} : std::vector<int>());
        EXPECT_EQ(session_.EffectCode, entry.code);
        EXPECT_EQ(session_.EffectMenuIndex, entry.index);
        EXPECT_EQ("m" + session_.EffectGroup, entry.array);
        EXPECT_EQ(session_.EffectCaption, EffectCaptionOf(entry.caption));
        EXPECT_FALSE(recorded_.host.busy);
    }
    EXPECT_EQ(resizeDialogs_, 1);
}

TEST_F(EffectCommandsTest, DirectEntriesChangeThePicture) {
    struct Case {
        void (EffectCommands::*click)(int);
        int index;
        std::string result;
    };
    const Case cases[] = {
        {&EffectCommands::mEffects_Click, 0, "BR WG"}, {&EffectCommands::mEffects_Click, 1, "GW RB"},
        {&EffectCommands::mEffects_Click, 4, "GR WB"}, {&EffectCommands::mColor_Click, 6, "BG RW"},
        {&EffectCommands::mStylize_Click, 6, "CM YK"}, {&EffectCommands::mStylize_Click, 5, "RG BW"}};
    for (const Case& row : cases) {
        recorded_.exportPane.SetImage(test::Draw("RG BW"));
        (commands_.*row.click)(row.index);
        EXPECT_EQ(Shown(), row.result) << row.index;
    }
}

TEST_F(EffectCommandsTest, MaskEllipseUsesTheColourThatTheDialogReports) {
    recorded_.exportPane.SetImage(test::PhotoLike(9, 9));
    prompts_.colors = {RGB(0, 255, 0)};
    commands_.mOutline_Click(8);
    EXPECT_EQ(recorded_.exportPane.Image().At(0, 0), PixelFromColor(RGB(0, 255, 0)));
    session_.TransparentColor = RGB(255, 0, 255);
    commands_.mOutline_Click(8);
    EXPECT_EQ(recorded_.exportPane.Image().At(0, 0), PixelFromColor(RGB(255, 0, 255)))
        << "of a dialog that was cancelled: the colour that it started with";
}

TEST_F(EffectCommandsTest, EachEntryChosenStartsRandomEffectsAnew) {
    random_.numbers = {7, 8};
    commands_.mEffects_Click(11);
    EXPECT_EQ(session_.EffectSeed, 7U);
    commands_.mEffects_Click(11);
    EXPECT_EQ(session_.EffectSeed, 8U);
}

}  // namespace
}  // namespace tessara
