#include "edit/UndoStore.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "tests/Support.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

class RecordingHost final : public UndoHost {
  public:
    int busy = 0;
    std::map<int, bool> tools{{8, false}, {9, false}};

    void BusyCursor(bool on) override { busy += on ? 1 : -1; }
    void SetImageTool(int index, bool enabled) override { tools[index] = enabled; }
    void PutviewExport(int) override {}
};

/// A store in a folder of its own. Pictures are single pixels, named by their sketches.
class UndoStoreTest : public testing::Test {
  protected:
    test::TemporaryFolder folder_;
    Session session_;
    Rastx pane_;
    RecordingHost host_;
    UndoStore store_{session_, pane_, host_};

    UndoStoreTest() {
        session_.AppPath = folder_.Path();
        store_.UndoRefresh("KILL");  // as the start does, which makes the folder
        session_.Starting = false;
        session_.UndoPending = true;
        Show('K');
    }
    void Show(char picture) { pane_.SetImage(test::Draw(std::string(1, picture))); }

    /// 'S' saves alone, 'U' is the Undo of the toolbar, 'R' its Redo; any other character is an effect that
    /// makes the picture of that name.
    void Do(char action) {
        switch (action) {
            case 'S':
                store_.UndoCommand("save");
                break;
            case 'U':
                store_.UndoCommand("SAVE");
                store_.UndoCommand("UNDO");
                break;
            case 'R':
                store_.UndoCommand("REDO");
                break;
            default:
                store_.UndoCommand("SAVE");
                Show(action);
                session_.UndoPending = true;
        }
    }
    /// "position/top pending picture files undo redo": "2/3 - 1 K12 ur" has three snapshots of the pictures 0
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
               (host_.tools.at(8) ? "u" : "-") + (host_.tools.at(9) ? "r" : "-");
    }
};

TEST_F(UndoStoreTest, KeepsTheHistory) {
    struct Step {
        char action;
        std::string state;
    };
    struct History {
        std::string name;
        std::vector<Step> steps;
    };
    const History histories[] = {
        {"to and fro",
         {{'1', "1/1 p 1 K u-"},
          {'2', "2/2 p 2 K1 u-"},
          {'U', "2/3 - 1 K12 ur"},
          {'U', "1/3 - K K12 -r"},
          {'R', "2/3 - 1 K12 ur"},
          {'R', "3/3 - 2 K12 u-"},
          {'R', "3/3 - 2 K12 u-"}}},
        {"a new effect gives up the branch, not its files",
         {{'1', "1/1 p 1 K u-"},
          {'2', "2/2 p 2 K1 u-"},
          {'3', "3/3 p 3 K12 u-"},
          {'U', "3/4 - 2 K123 ur"},
          {'U', "2/4 - 1 K123 ur"},
          {'5', "2/4 p 5 K123 ur"},  // its snapshot was on disk already
          {'S', "3/3 - 5 K153 ur"},
          {'U', "2/3 - 1 K153 ur"},
          {'R', "3/3 - 5 K153 u-"}}},
        {"at position 1 a snapshot is taken twice",
         {{'1', "1/1 p 1 K u-"},
          {'U', "1/2 - K K1 -r"},
          {'U', "1/2 - K KK -r"},
          {'S', "2/2 - K KK ur"},
          {'S', "2/2 - K KK ur"}}},
        {"nothing to undo", {{'R', "0/0 p K  --"}, {'U', "1/1 - K K u-"}, {'R', "1/1 - K K u-"}}},
    };
    for (const History& history : histories) {
        SCOPED_TRACE(history.name);
        store_.UndoRefresh("KILL");
        session_.UndoPending = true;
        Show('K');
        int number = 0;
        for (const Step& step : history.steps) {
            Do(step.action);
            EXPECT_EQ(State(), step.state) << "step " << ++number;
            EXPECT_EQ(session_.UndoEnabled, host_.tools.at(8));
            EXPECT_EQ(host_.busy, 0);
        }
    }
}

TEST_F(UndoStoreTest, AnEmptyStoreLeavesEvenTheButtonsAlone) {
    host_.tools = {{8, true}, {9, true}};
    store_.UndoCommand("UNDO");
    store_.UndoCommand("REDO");
    EXPECT_EQ(State(), "0/0 p K  ur");
}

TEST_F(UndoStoreTest, KillEmptiesTheFolderAndKeepsIt) {
    Do('1');
    Do('2');
    test::WriteWhole(folder_.File("Undo/left over.txt"), {});
    fs::create_directory(folder_.File("Undo/folder"));
    store_.UndoRefresh("KILL");
    EXPECT_EQ(State(), "0/0 p 2  --");
    EXPECT_FALSE(fs::exists(folder_.File("Undo/left over.txt")));
    EXPECT_TRUE(fs::exists(folder_.File("Undo/folder")));
}

TEST_F(UndoStoreTest, ADiskThatTakesNothingMovesTheCountersAndKeepsWhatIsThere) {
    Do('1');
    Do('2');
    Do('3');
    Do('U');
    Do('U');
    ASSERT_EQ(State(), "2/4 - 1 K123 ur");
    // A file in place of a folder refuses every write, to whomever.
    fs::rename(folder_.File("Undo"), folder_.File("kept"));
    test::WriteWhole(folder_.File("Undo"), {});
    Do('5');
    Do('6');
    EXPECT_EQ(State(), "3/3 p 6  ur");
    Do('U');
    EXPECT_EQ(State(), "3/4 - 6  ur") << "without a file the pane keeps its picture";

    fs::remove(folder_.File("Undo"));
    fs::rename(folder_.File("kept"), folder_.File("Undo"));
    Do('U');
    EXPECT_EQ(State(), "2/4 - 1 K123 ur");
}

TEST_F(UndoStoreTest, AStaleSnapshotIsNotTakenForOneThatCouldNotBeWritten) {
    for (const char picture : {'1', '2', '3'}) Do(picture);
    Do('U');
    Do('U');
    pane_.ClearImage();  // what cannot be written
    session_.UndoPending = true;
    Do('S');
    EXPECT_EQ(session_.UndoPosition, 3);
    EXPECT_FALSE(fs::exists(store_.SnapshotPath(3)));
    EXPECT_TRUE(fs::exists(store_.SnapshotPath(2)));
}

TEST_F(UndoStoreTest, TheLastNumberIsUsedAgain) {
    session_.UndoPosition = session_.UndoTop = 32766;
    Do('1');
    EXPECT_EQ(session_.UndoPosition, 32767);
    Do('2');
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
    Do('1');
    Do('U');
    EXPECT_EQ(test::LargestDifference(pane_.Image(), picture), 0);
    EXPECT_EQ(pane_.Image().Meta().exif, metadata.exif);
    Do('R');
    EXPECT_EQ(pane_.Image().Meta().exif, nullptr);
}

}  // namespace
}  // namespace tessara
