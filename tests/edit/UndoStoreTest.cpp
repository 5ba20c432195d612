#include "edit/UndoStore.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

/// Pictures are single pixels, named by their sketches; the first is K.
class UndoStoreTest : public testing::Test {
  protected:
    test::RecordedEditor recorded_{test::Draw("K")};
    Session& session_ = recorded_.session;
    Rastx& pane_ = recorded_.exportPane;
    UndoStore& store_ = recorded_.undo;
    std::map<int, bool>& tools_ = recorded_.host.imageTools;

    void Show(char picture) { pane_.SetImage(test::Draw(std::string(1, picture))); }
    void Restart() {
        store_.UndoRefresh("KILL");
        session_.UndoPending = true;
        Show('K');
    }
    /// 'S' saves alone, 'U' is the Undo of the toolbar, 'R' its Redo; any other character is an effect that
    /// makes the picture of that name.
    void Do(std::string_view actions) {
        for (const char action : actions) {
            if (action != 'R') store_.UndoCommand("save");
            if (action == 'U') store_.UndoCommand("UNDO");
            if (action == 'R') store_.UndoCommand("REDO");
            if (std::string_view("SUR").find(action) != std::string_view::npos) continue;
            Show(action);
            session_.UndoPending = true;
        }
    }
    /// "position/top pending picture files undo redo": "2/3 - 1 K12 ur" has three snapshots of the pictures K
    /// to 2 on disk, shows picture 1, owes no snapshot and has both buttons enabled.
    std::string State() const {
        std::string files;
        for (int i = 1; fs::exists(store_.SnapshotPath(i)); ++i) {
            Rastx file;
            Ignore(file.LoadImage(store_.SnapshotPath(i)));
            files += test::Sketch(file.Image());
        }
        return std::to_string(session_.UndoPosition) + "/" + std::to_string(session_.UndoTop) +
               (session_.UndoPending ? " p " : " - ") + test::Sketch(pane_.Image()) + " " + files + " " +
               (tools_.at(8) ? "u" : "-") + (tools_.at(9) ? "r" : "-");
    }
};

TEST_F(UndoStoreTest, KeepsTheHistory) {
    using Step = std::pair<char, std::string>;
    const std::vector<Step> histories[] = {
        // To and fro.
        {{'1', "1/1 p 1 K u-"},
         {'2', "2/2 p 2 K1 u-"},
         {'U', "2/3 - 1 K12 ur"},
         {'U', "1/3 - K K12 -r"},
         {'R', "2/3 - 1 K12 ur"},
         {'R', "3/3 - 2 K12 u-"},
         {'R', "3/3 - 2 K12 u-"}},
        // A new effect gives up the branch, not its files. Its own snapshot was on disk already.
        {{'1', "1/1 p 1 K u-"},
         {'2', "2/2 p 2 K1 u-"},
         {'3', "3/3 p 3 K12 u-"},
         {'U', "3/4 - 2 K123 ur"},
         {'U', "2/4 - 1 K123 ur"},
         {'5', "2/4 p 5 K123 ur"},
         {'S', "3/3 - 5 K153 ur"},
         {'U', "2/3 - 1 K153 ur"}},
        // At position 1 a snapshot is taken twice.
        {{'1', "1/1 p 1 K u-"},
         {'U', "1/2 - K K1 -r"},
         {'U', "1/2 - K KK -r"},
         {'S', "2/2 - K KK ur"},
         {'S', "2/2 - K KK ur"}},
        // There is nothing to undo.
        {{'R', "0/0 p K  --"}, {'U', "1/1 - K K u-"}, {'R', "1/1 - K K u-"}},
    };
    for (const std::vector<Step>& history : histories) {
        Restart();
        for (const auto& [action, state] : history) {
            Do({&action, 1});
            EXPECT_EQ(State(), state);
            EXPECT_EQ(session_.UndoEnabled, tools_.at(8));
            EXPECT_FALSE(recorded_.host.busy);
        }
    }
}

TEST_F(UndoStoreTest, KillEmptiesTheFolderAndKeepsIt) {
    Do("12");
    EXPECT_TRUE(fs::exists(recorded_.folder.File("Undo/1.bmp")));
    test::WriteWhole(recorded_.folder.File("Undo/left over.txt"), {});
    store_.UndoRefresh("KILL");
    EXPECT_EQ(State(), "0/0 p 2  --");
    EXPECT_TRUE(fs::is_empty(recorded_.folder.File("Undo")));
    tools_ = {{8, true}, {9, true}};
    store_.UndoCommand("UNDO");
    store_.UndoCommand("REDO");
    EXPECT_EQ(State(), "0/0 p 2  ur") << "an empty store leaves even the buttons alone";
}

TEST_F(UndoStoreTest, ADiskThatTakesNothingMovesTheCountersAndKeepsWhatIsThere) {
    Do("123UU");
    ASSERT_EQ(State(), "2/4 - 1 K123 ur");
    // A file in place of the folder refuses every write, to whomever.
    const std::string folder = recorded_.folder.File("Undo"), kept = recorded_.folder.File("kept");
    fs::rename(folder, kept);
    test::WriteWhole(folder, {});
    Do("56");
    EXPECT_EQ(State(), "3/3 p 6  ur");
    Do("U");
    EXPECT_EQ(State(), "3/4 - 6  ur") << "without a file the pane keeps its picture";

    fs::remove(folder);
    fs::rename(kept, folder);
    Do("U");
    EXPECT_EQ(State(), "2/4 - 1 K123 ur");
}

TEST_F(UndoStoreTest, AStaleSnapshotIsNotTakenForOneThatCouldNotBeWritten) {
    Do("123UU");
    pane_.ClearImage();  // what cannot be written
    session_.UndoPending = true;
    Do("S");
    EXPECT_FALSE(fs::exists(store_.SnapshotPath(3)));
    EXPECT_TRUE(fs::exists(store_.SnapshotPath(2)));
}

TEST_F(UndoStoreTest, TheLastNumberIsUsedAgain) {
    session_.UndoPosition = 32766;
    Do("12");
    EXPECT_EQ(session_.UndoPosition, 32767);
    EXPECT_EQ(session_.UndoTop, 32767);
    Rastx file;
    test::Must(file.LoadImage(store_.SnapshotPath(32767)));
    EXPECT_EQ(test::Sketch(file.Image()), "1");
}

TEST_F(UndoStoreTest, SizeAlphaAndMetadataComeBack) {
    Picture picture = test::PhotoLikeWithAlpha(13, 7);
    const Metadata metadata{{300, 300}, std::make_shared<const ByteVector>(ByteVector{1, 2, 3})};
    picture.SetMeta(metadata);
    pane_.SetImage(picture);
    Do("1U");
    EXPECT_EQ(test::LargestDifference(pane_.Image(), picture), 0);
    EXPECT_EQ(pane_.Image().Meta().exif, metadata.exif);
    Do("R");
    EXPECT_EQ(pane_.Image().Meta().exif, nullptr);
}

}  // namespace
}  // namespace tessara
