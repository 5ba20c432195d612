#include "core/BatchJob.h"

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <functional>
#include <set>
#include <vector>

#include "tests/Support.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

class ScriptedList final : public BatchList {
  public:
    struct Row {
        std::string key;
        bool checked = false;
        bool operator==(const Row&) const = default;
    };
    std::vector<Row> rows;
    int selected = -1;
    std::vector<int> shown;  ///< rows that were brought into view

    int RowCount() const override { return static_cast<int>(rows.size()); }
    std::string KeyOf(int row) const override { return rows.at(static_cast<std::size_t>(row)).key; }
    bool IsChecked(int row) const override { return rows.at(static_cast<std::size_t>(row)).checked; }
    void SetChecked(int row, bool checked) override {
        rows.at(static_cast<std::size_t>(row)).checked = checked;
    }
    int SelectedRow() const override { return selected; }
    void EnsureVisible(int row) override { shown.push_back(row); }
};

class RecordingView final : public BatchView {
  public:
    int max[2] = {-1, -1};
    int values[2] = {-1, -1};
    std::string texts[2];
    Names seen;  ///< both texts at each refresh
    bool busy = false;
    bool done = false;
    std::function<void()> onRefresh;

    void BusyCursor(bool on) override { busy = on; }
    void SetMax(int index, int value) override { max[index] = value; }
    void ShowCount(int index, int value, const std::string& text) override {
        values[index] = value;
        texts[index] = text;
    }
    void Refresh() override {
        seen.push_back(texts[0] + " " + texts[1]);
        if (onRefresh) onRefresh();
    }
    void ShowDone() override { done = true; }
};

class ScriptedQuestions final : public BatchQuestions {
  public:
    std::deque<bool> answers;
    std::deque<std::string> names;
    Names asked;

    bool AskReplace(const std::string& text) override {
        asked.push_back(text);
        const bool answer = answers.at(0);
        answers.pop_front();
        return answer;
    }
    std::string GetFileName(const std::string& folder, const std::string& name) override {
        asked.push_back(folder + " | " + name);
        const std::string answer = names.at(0);
        names.pop_front();
        return answer;
    }
};

/// A folder of small sources, an empty one of targets, and a job between them.
class BatchJobTest : public testing::TestWithParam<int> {
  protected:
    BatchJobTest() {
        fs::create_directory(folder_.File("out"));
        formats_.SetFormats();
        for (FormatRow& row : formats_.ImportFormats) row.Enabled = true;
        options_.TargetFolder = folder_.File("out");
        pane_.SetImage(test::Draw("KW WK"));
    }

    void Export(std::initializer_list<const char*> suffixes) {
        options_.ExportOn = {};
        for (const char* suffix : suffixes)
            for (std::size_t i = 0; i < options_.ExportOn.size(); ++i)
                if (ExportFormatTable()[i].suffix == suffix) options_.ExportOn[i] = true;
    }
    /// A listed source: a bitmap, whatever its name.
    void Source(const std::string& name, const std::string& rows, bool checked = false) {
        list_.rows.push_back({folder_.File(name), checked});
        test::WriteWhole(folder_.File(name), test::Encode(*ExportFormatTable()[0].codec, test::Draw(rows)));
        options_.SelectedCount += checked;
    }
    void Run() {
        BatchJob job(options_, pane_, list_, view_, questions_);
        view_.onRefresh = [&] {
            if (view_.values[1] >= cancelAfter_) job.Cancel();
        };
        job.LoadDialogprogress();
    }

    std::string Target(const std::string& name) const { return folder_.File("out/" + name); }
    std::set<std::string> Targets() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder_.File("out")))
            names.insert(entry.path().filename().string());
        return names;
    }
    Picture Load(const std::string& name) const {
        Rastx pane;
        test::Must(pane.LoadImage(Target(name)));
        return pane.Image();
    }
    std::string CodecOf(const std::string& name) const {
        return std::string(FindCodec(test::ReadWhole(Target(name)), "")->name);
    }

    test::TemporaryFolder folder_;
    FormatTables formats_;
    std::string targetName_;
    ColorNumber transparentColor_ = RGB(255, 255, 255);
    BatchOptions options_{.formats = formats_,
                          .TargetName = targetName_,
                          .TransparentColor = transparentColor_,
                          .threads = GetParam()};
    int cancelAfter_ = 1000;
    Rastx pane_;
    ScriptedList list_;
    RecordingView view_;
    ScriptedQuestions questions_;
};

using Set = std::set<std::string>;

TEST_P(BatchJobTest, AllGraphicsAreWrittenInOrderAndMarked) {
    Source("One.BMP", "RG");
    Source("two.gif", "GB");
    Source("three.bmp", "BR", true);
    formats_.ImportFormats[1].Enabled = false;
    options_.ConvertScope = 2;
    targetName_ = "of an earlier file";
    Export({".png", ".bmp"});
    Run();
    EXPECT_EQ(Targets(), (Set{"one.bmp", "one.png", "three.bmp", "three.png"}));
    EXPECT_EQ(test::Sketch(Load("one.png")), "RG");
    EXPECT_EQ(test::Sketch(Load("three.bmp")), "BR");
    EXPECT_EQ(list_.shown, (std::vector<int>{0, 1, 2}))
        << "a source that is switched off is shown all the same";
    EXPECT_EQ(list_.rows, (std::vector<ScriptedList::Row>{{folder_.File("One.BMP"), true},
                                                          {folder_.File("two.gif"), false},
                                                          {folder_.File("three.bmp"), true}}));
    EXPECT_EQ(view_.seen,
              (Names{"0 files converted! 0 files created!", "0 files converted! 1 file created!",
                     "0 files converted! 2 files created!", "1 file converted! 3 files created!",
                     "1 file converted! 4 files created!", "2 files converted! 4 files created!"}));
    EXPECT_EQ(view_.max[0], 1) << "the files that were marked before";
    EXPECT_EQ(view_.max[1], 2);
    EXPECT_TRUE(view_.done);
    EXPECT_FALSE(view_.busy);
    EXPECT_EQ(targetName_, "");
}

TEST_P(BatchJobTest, OnlyMarkedFilesOfAListAndTheirMarksStay) {
    Source("a.bmp", "R", true);
    Source("b.bmp", "G");
    Source("c.bmp", "B", true);
    options_.ConvertScope = 1;
    targetName_ = "of an earlier file";
    Export({".bmp", ".tif", ".tga"});
    Run();
    EXPECT_EQ(Targets(), (Set{"a.bmp", "a.tga", "a.tif", "c.bmp", "c.tga", "c.tif"}));
    EXPECT_EQ(list_.shown, (std::vector<int>{0, 2}));
    EXPECT_FALSE(list_.rows[1].checked);
    EXPECT_EQ(view_.max[0], 2);
    EXPECT_EQ(view_.max[1], 6);
    EXPECT_EQ(view_.seen.back(), "2 files converted! 6 files created!");
}

TEST_P(BatchJobTest, TheCurrentFileIsThePaneAsItStands) {
    Source("a.bmp", "R");
    Source("Photo.BMP", "R");
    list_.selected = 1;
    for (FormatRow& row : formats_.ImportFormats) row.Enabled = false;
    for (const int scope : {0, 1}) {
        options_.ConvertScope = scope;
        Export({".png"});
        Run();
        EXPECT_EQ(test::Sketch(Load("photo.png")), "KW WK");
        EXPECT_EQ(view_.seen.back(), "1 file converted! 1 file created!");
        EXPECT_EQ(view_.max[0], 1);
        EXPECT_EQ(list_.shown, std::vector<int>{1});
        EXPECT_FALSE(list_.rows[1].checked);
        list_.shown.clear();
        fs::remove(Target("photo.png"));
    }
}

TEST_P(BatchJobTest, TargetsAreNamedByTheSourceInLowerCaseOrByTheUser) {
    struct Case {
        const char* key;
        const char* typed;
        Set targets;
    };
    const Case cases[] = {
        {"/in/My Photo.JPEG", "", {"my photo.bmp", "my photo.wbmp"}},
        {"/IN/ÄPFEL.tif", "", {"äpfel.bmp", "äpfel.wbmp"}},
        {"/in/a.b.png", "", {"a.b.bmp", "a.b.wbmp"}},
        {"/in/a.jpg", "New Name", {"New Name.bmp", "New Name.wbmp"}},
        {nullptr, "Captured", {"Captured.bmp", "Captured.wbmp"}},
    };
    Export({".bmp", ".wbmp"});
    for (const Case& row : cases) {
        list_.selected = row.key ? 0 : -1;
        list_.rows = {{row.key ? row.key : "/in/unselected.bmp"}};
        targetName_ = row.typed;
        Run();
        EXPECT_EQ(Targets(), row.targets);
        EXPECT_EQ(targetName_, "");
        for (const std::string& target : Targets()) fs::remove(Target(target));
    }
}

TEST_P(BatchJobTest, AnExistingTargetIsReplacedSkippedOrAskedFor) {
    struct Case {
        const char* name;
        int mode;
        std::deque<bool> answers;
        std::deque<std::string> names;
        bool oldStays;
        Set created;
        int count;
    };
    const std::string elsewhere = Target("b.txt");
    const Case cases[] = {
        {"replace", 1, {}, {}, false, {}, 2},
        {"skip", 2, {}, {}, true, {}, 1},
        {"ask, yes", 0, {true}, {}, false, {}, 2},
        {"ask, no, another name", 0, {false}, {elsewhere}, true, {"b.txt"}, 2},
        {"ask, no, no name", 0, {false}, {""}, true, {}, 1},
    };
    Source("a.bmp", "RG");
    list_.selected = 0;
    Export({".bmp", ".png"});
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        fs::remove(Target("a.png"));
        fs::remove(elsewhere);
        test::WriteWhole(Target("a.bmp"), AsBytes("old"));
        options_.OverwriteMode = row.mode;
        questions_.answers = row.answers;
        questions_.names = row.names;
        questions_.asked.clear();
        Run();
        EXPECT_EQ(test::ReadWhole(Target("a.bmp")).size() == 3, row.oldStays);
        Set expected = row.created;
        expected.insert({"a.bmp", "a.png"});
        EXPECT_EQ(Targets(), expected);
        EXPECT_EQ(view_.values[1], row.count);
        Names asked;
        if (row.mode == 0)
            asked = {"File " + Target("a.bmp") + " already exists.\n\nDo you want to replace it?"};
        if (!row.names.empty()) asked.push_back(folder_.File("out/") + " | a.bmp");
        EXPECT_EQ(questions_.asked, asked);
    }
    EXPECT_EQ(CodecOf("a.png"), "PNG");
}

TEST_P(BatchJobTest, TheStepDecidesOnTheFormatWhateverNameIsGiven) {
    list_.rows = {{"/in/a.bmp"}};
    list_.selected = 0;
    test::WriteWhole(Target("a.gif"), AsBytes("old"));
    questions_ = {};
    questions_.answers = {false};
    questions_.names = {Target("chosen.jpg")};
    Export({".gif"});
    Run();
    EXPECT_EQ(CodecOf("chosen.jpg"), "GIF");
}

TEST_P(BatchJobTest, SkippingEverythingMarksAndCountsNothing) {
    Source("a.bmp", "R");
    Source("b.bmp", "G");
    for (const char* name : {"a.gif", "b.gif"}) test::WriteWhole(Target(name), AsBytes("old"));
    options_.ConvertScope = 2;
    options_.OverwriteMode = 2;
    Export({".gif"});
    Run();
    EXPECT_EQ(view_.seen, (Names(2, "0 files converted! 0 files created!")));
    EXPECT_FALSE(list_.rows[0].checked);
    EXPECT_EQ(test::Sketch(pane_.Image()), "G") << "every source was loaded";
}

TEST_P(BatchJobTest, CancelIsSeenBetweenFormatsButNotBeforeAPng) {
    struct Case {
        const char* name;
        int cancelAfter;
        std::initializer_list<const char*> formats;
        Set targets;
        int marked;
    };
    const Case cases[] = {
        {"before anything", 0, {".bmp", ".png"}, {}, 0},
        {"during the first", 1, {".bmp", ".gif", ".jpg"}, {"a.bmp"}, 1},
        {"during the JPG", 1, {".jpg", ".png", ".tif"}, {"a.jpg", "a.png"}, 1},
        {"a BMP, then a PNG", 1, {".bmp", ".png"}, {"a.bmp", "a.png"}, 1},
        {"during the last of a source", 2, {".bmp", ".gif"}, {"a.bmp", "a.gif"}, 1},
        {"in the second source", 3, {".bmp", ".gif"}, {"a.bmp", "a.gif", "b.bmp"}, 2},
    };
    options_.ConvertScope = 2;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        list_.rows.clear();
        Source("a.bmp", "R");
        Source("b.bmp", "G");
        Source("c.bmp", "B");
        Export(row.formats);
        cancelAfter_ = row.cancelAfter;
        Run();
        EXPECT_EQ(Targets(), row.targets);
        EXPECT_EQ(std::ranges::count(list_.rows, true, &ScriptedList::Row::checked), row.marked);
        EXPECT_EQ(view_.values[0], row.marked);
        EXPECT_TRUE(view_.done);
        for (const std::string& target : Targets()) fs::remove(Target(target));
    }
}

TEST_P(BatchJobTest, TheTransparentColourDecidesOnGifAndIcon) {
    struct Case {
        ColorNumber color;
        ColorNumber after;
        const char* icon;
        bool transparent;
    };
    const ColorNumber white = RGB(255, 255, 255);
    const ColorNumber red = RGB(255, 0, 0);
    const Case cases[] = {
        {-1, -1, "GIF", false},
        {0, white, "ICO", true},
        {white, white, "ICO", true},
        {red, red, "ICO", false},
    };
    list_.rows = {{"/in/a.bmp"}};
    list_.selected = 0;
    options_.OverwriteMode = 1;
    for (const Case& row : cases) {
        for (const char* suffix : {".gif", ".ico"}) {
            SCOPED_TRACE(suffix + std::to_string(row.color));
            pane_.SetImage(test::Draw("KW WK"));
            transparentColor_ = row.color;
            Export({suffix});
            Run();
            EXPECT_EQ(transparentColor_, row.after);
            const std::string target = std::string("a") + suffix;
            EXPECT_EQ(Load(target).HasAlpha(), row.transparent);
        }
        EXPECT_EQ(CodecOf("a.ico"), row.icon);
        EXPECT_EQ(Load("a.ico").Width(), 32);
        EXPECT_EQ(pane_.ImageHeight(), 32) << "the pane keeps the icon's size";
    }
    EXPECT_EQ(Load("a.gif").Width(), 2);
}

TEST_P(BatchJobTest, TheIconIsMadeLastSoThatNoOtherFormatIsSmall) {
    Source("a.bmp", "RGB BGR RRR");
    options_.ConvertScope = 2;
    options_.ExportOn.fill(true);
    Run();
    EXPECT_EQ(Targets().size(), 10u);
    for (const std::string& target : Targets()) EXPECT_EQ(Load(target).Width(), target == "a.ico" ? 32 : 3);
}

TEST_P(BatchJobTest, JpegTakesItsSettings) {
    pane_.SetImage(test::PhotoLike(64, 64));
    list_.rows = {{"/in/a.bmp"}};
    list_.selected = 0;
    options_.OverwriteMode = 1;
    Export({".jpg"});
    std::set<std::size_t> sizes;
    const auto run = [&] {
        Run();
        sizes.insert(fs::file_size(Target("a.jpg")));
    };
    run();
    options_.JpgQuality = 95;
    run();
    options_.JpgProgressive = true;
    run();
    options_.JpgGrayScale = true;
    run();
    EXPECT_EQ(sizes.size(), 4u);
    const Pixel pixel = Load("a.jpg").At(5, 40);
    EXPECT_TRUE(pixel.r == pixel.g && pixel.g == pixel.b);
}

TEST_P(BatchJobTest, AFailureNeitherStopsTheJobNorHarmsAFile) {
    Source("a.bmp", "RG");
    test::WriteWhole(folder_.File("broken.bmp"), AsBytes("BM, and then nothing of use"));
    list_.rows.push_back({folder_.File("broken.bmp")});
    options_.ConvertScope = 2;
    Export({".bmp"});
    Run();
    EXPECT_EQ(test::Sketch(Load("broken.bmp")), "RG") << "what the pane held";

    pane_.ClearImage();
    list_.rows = {{folder_.File("missing.bmp")}, {folder_.File("a.bmp")}};
    test::WriteWhole(Target("missing.bmp"), AsBytes("old"));
    options_.OverwriteMode = 1;
    Run();
    EXPECT_EQ(test::ReadWhole(Target("missing.bmp")).size(), 3u);
    EXPECT_EQ(view_.seen.back(), "2 files converted! 2 files created!");

    options_.TargetFolder = folder_.File("gone");
    Run();
    EXPECT_FALSE(fs::exists(folder_.File("gone")));
    EXPECT_EQ(view_.seen.back(), "2 files converted! 2 files created!");
}

TEST_P(BatchJobTest, ASourceThatTheJobItselfWritesIsReadAfterwards) {
    Source("out/A.BMP", "R");
    Source("out/a.bmp", "G");
    Source("out/b.png", "B");
    list_.rows.push_back({folder_.File("out/a.png")});
    options_.ConvertScope = 2;
    options_.OverwriteMode = 1;
    Export({".bmp", ".png"});
    Run();
    EXPECT_EQ(test::Sketch(Load("a.bmp")), "R");
    EXPECT_EQ(test::Sketch(Load("b.bmp")), "B");
    EXPECT_EQ(view_.seen.back(), "4 files converted! 8 files created!");
}

TEST_P(BatchJobTest, WithoutAFormatThereIsNothingToMake) {
    Source("a.bmp", "RG", true);
    options_.ConvertScope = 1;
    Export({});
    Run();
    EXPECT_EQ(view_.max[0], 1);
    EXPECT_EQ(view_.max[1], 0);
    EXPECT_EQ(view_.seen.back(), "0 files converted! 0 files created!");
}

INSTANTIATE_TEST_SUITE_P(Threads, BatchJobTest, testing::Values(1, 4));

}  // namespace
}  // namespace tessara
