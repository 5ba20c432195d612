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
using Set = std::set<std::string>;

struct Row {
    std::string key;
    bool checked = false;
};

/// A folder of small sources, an empty one of targets, and a job between them.
class BatchJobTest : public testing::TestWithParam<int>,
                     protected BatchList,
                     protected BatchView,
                     protected BatchQuestions {
  protected:
    BatchJobTest() {
        fs::create_directory(folder_.File("out"));
        formats_.SetFormats();
        for (FormatRow& row : formats_.ImportFormats) row.Enabled = true;
        options_.TargetFolder = folder_.File("out");
        pane_.SetImage(test::Draw("KW WK"));
    }

    int RowCount() const override { return static_cast<int>(rows_.size()); }
    std::string KeyOf(int row) const override { return rows_.at(static_cast<std::size_t>(row)).key; }
    bool IsChecked(int row) const override { return rows_.at(static_cast<std::size_t>(row)).checked; }
    void SetChecked(int row, bool checked) override {
        rows_.at(static_cast<std::size_t>(row)).checked = checked;
    }
    int SelectedRow() const override { return selected_; }
    void EnsureVisible(int row) override { shown_.push_back(row); }

    void BusyCursor(bool on) override { busy_ = on; }
    void SetMax(int index, int max, int work) override {
        max_[index] = max;
        work_[index] = work;
    }
    void ShowCount(int index, int value, const std::string& text) override {
        values_[index] = value;
        texts_[index] = text;
    }
    void Refresh() override {
        counts_.push_back(texts_[0] + " " + texts_[1]);
        if (values_[1] >= cancelAfter_) job_->Cancel();
    }
    void ShowDone() override { done_ = true; }

    bool AskReplace(const std::string& text) override {
        asked_.push_back(text);
        return replaces_;
    }
    std::string GetFileName(const std::string& folder, const std::string& name) override {
        asked_.push_back(folder + " | " + name);
        return otherName_;
    }

    void Export(std::initializer_list<const char*> suffixes) {
        for (std::size_t i = 0; i < options_.ExportOn.size(); ++i)
            options_.ExportOn[i] = std::ranges::count(suffixes, ExportFormatTable()[i].suffix) > 0;
    }
    /// A listed source: a bitmap, whatever its name.
    void Source(const std::string& name, const std::string& pixels, bool checked = false) {
        rows_.push_back({folder_.File(name), checked});
        test::WriteWhole(folder_.File(name), test::Encode(*ExportFormatTable()[0].codec, test::Draw(pixels)));
        options_.SelectedCount += checked;
    }
    /// A source that is shown in the pane.
    void Current(const std::string& key) {
        rows_ = {{"/in/other.bmp"}, {key}};
        selected_ = 1;
    }
    void WriteOld(const std::string& name) const { test::WriteWhole(Target(name), AsBytes("old")); }
    bool IsOld(const std::string& name) const { return test::ReadWhole(Target(name)).size() == 3; }
    void Run() {
        BatchJob job(options_, pane_, *this, *this, *this);
        job_ = &job;
        job.LoadDialogprogress();
        EXPECT_TRUE(done_);
        EXPECT_FALSE(busy_);
        EXPECT_EQ(targetName_, "");
    }
    std::string Target(const std::string& name) const { return folder_.File("out/" + name); }
    /// The names of all targets, which are removed.
    Set TakeTargets() const {
        Set names;
        for (const auto& entry : fs::directory_iterator(folder_.File("out")))
            names.insert(entry.path().filename().string());
        for (const std::string& name : names) fs::remove(Target(name));
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
    Rastx pane_;
    BatchJob* job_ = nullptr;

    std::vector<Row> rows_;
    int selected_ = -1;
    std::vector<int> shown_;  ///< rows that were brought into view
    bool busy_ = false, done_ = false;
    int max_[2] = {-1, -1};
    int work_[2] = {-1, -1};
    int values_[2] = {-1, -1};
    std::string texts_[2];
    Names counts_;  ///< both texts at each refresh
    int cancelAfter_ = 1000;
    bool replaces_ = false;
    std::string otherName_;
    Names asked_;
};

TEST_P(BatchJobTest, AllGraphicsAreWrittenInOrderAndMarked) {
    Source("One.BMP", "RG");
    Source("two.gif", "GB");
    Source("three.bmp", "BR", true);
    formats_.ImportFormats[1].Enabled = false;
    options_.ConvertScope = 2;
    targetName_ = "of an earlier file";
    Export({".png", ".bmp"});
    Run();
    EXPECT_EQ(test::Sketch(Load("one.png")), "RG");
    EXPECT_EQ(test::Sketch(Load("three.bmp")), "BR");
    EXPECT_EQ(TakeTargets(), (Set{"one.bmp", "one.png", "three.bmp", "three.png"}));
    EXPECT_EQ(shown_, (std::vector<int>{0, 1, 2})) << "a source that is switched off is shown all the same";
    EXPECT_TRUE(rows_[0].checked && !rows_[1].checked && rows_[2].checked);
    EXPECT_EQ(counts_, (Names{"0 files converted! 0 files created!", "0 files converted! 1 file created!",
                              "0 files converted! 2 files created!", "1 file converted! 3 files created!",
                              "1 file converted! 4 files created!", "2 files converted! 4 files created!"}));
    EXPECT_EQ(max_[0], 1) << "the files that were marked before";
    EXPECT_EQ(max_[1], 2);
    EXPECT_EQ(work_[0], 2);
    EXPECT_EQ(work_[1], 4);
}

TEST_P(BatchJobTest, OnlyMarkedFilesOfAListAndTheirMarksStay) {
    Source("a.bmp", "R", true);
    Source("b.bmp", "G");
    Source("c.bmp", "B", true);
    options_.ConvertScope = 1;
    targetName_ = "of an earlier file";
    Export({".bmp", ".tif", ".tga"});
    Run();
    EXPECT_EQ(TakeTargets(), (Set{"a.bmp", "a.tga", "a.tif", "c.bmp", "c.tga", "c.tif"}));
    EXPECT_EQ(shown_, (std::vector<int>{0, 2}));
    EXPECT_FALSE(rows_[1].checked);
    EXPECT_EQ(max_[0], 2);
    EXPECT_EQ(max_[1], 6);
    EXPECT_EQ(work_[1], 6);
    EXPECT_EQ(counts_.back(), "2 files converted! 6 files created!");
}

TEST_P(BatchJobTest, TheCurrentFileIsThePaneAsItStandsUnderItsNameOrTheUsers) {
    struct Case {
        int scope;
        const char* key;  ///< null where no row is selected
        const char* typed;
        const char* target;
    };
    const Case cases[] = {
        {0, "/in/My Photo.JPEG", "", "my photo.png"},
        {1, "/IN/ÄPFEL.tif", "", "äpfel.png"},
        {0, "/in/a.b.png", "", "a.b.png"},
        {0, "/in/a.jpg", "New Name", "New Name.png"},
        {1, nullptr, "Captured", "Captured.png"},
        {0, nullptr, "", "removed.png"},
    };
    options_.ImagePath = "/in/Removed.bmp";
    for (FormatRow& row : formats_.ImportFormats) row.Enabled = false;
    Export({".png"});
    for (const Case& row : cases) {
        Current(row.key ? row.key : "");
        if (!row.key) selected_ = -1;
        shown_.clear();
        options_.ConvertScope = row.scope;
        targetName_ = row.typed;
        Run();
        EXPECT_EQ(test::Sketch(Load(row.target)), "KW WK");
        EXPECT_EQ(TakeTargets(), Set{row.target});
        EXPECT_EQ(counts_.back(), "1 file converted! 1 file created!");
        EXPECT_EQ(max_[0], 1);
        EXPECT_EQ(shown_, row.key ? std::vector<int>{1} : std::vector<int>{});
    }
}

TEST_P(BatchJobTest, AnExistingTargetIsReplacedSkippedOrAskedFor) {
    const std::string question = "File " + Target("a.bmp") + " already exists.\n\nDo you want to replace it?";
    const std::string name = folder_.File("out/") + " | a.bmp";
    struct Case {
        const char* what;
        int mode;
        bool replaces;
        std::string otherName;
        bool oldStays;
        int count;
        Names asked;
    };
    const Case cases[] = {
        {"replace", 1, false, "", false, 2, {}},
        {"skip", 2, false, "", true, 1, {}},
        {"ask, yes", 0, true, "", false, 2, {question}},
        {"ask, no, another name", 0, false, Target("b.txt"), true, 2, {question, name}},
        {"ask, no, no name", 0, false, "", true, 1, {question, name}},
    };
    Current("/in/a.bmp");
    Export({".bmp", ".png"});
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        WriteOld("a.bmp");
        options_.OverwriteMode = row.mode;
        replaces_ = row.replaces;
        otherName_ = row.otherName;
        asked_.clear();
        Run();
        EXPECT_EQ(IsOld("a.bmp"), row.oldStays);
        EXPECT_EQ(values_[1], row.count);
        EXPECT_EQ(asked_, row.asked);
        if (!row.otherName.empty()) {
            EXPECT_EQ(CodecOf("b.txt"), "BMP") << "the step decides, not the name";
        }
        EXPECT_TRUE(TakeTargets().contains("a.png"));
    }
}

TEST_P(BatchJobTest, NothingIsMarkedOrCountedWhereNothingIsWritten) {
    Source("a.bmp", "R");
    Source("b.bmp", "G", true);
    for (const char* name : {"a.gif", "b.gif"}) WriteOld(name);
    options_.ConvertScope = 2;
    options_.OverwriteMode = 2;
    for (const bool skips : {true, false}) {
        counts_.clear();
        skips ? Export({".gif"}) : Export({});
        Run();
        EXPECT_EQ(counts_, Names(2, "0 files converted! 0 files created!"));
        EXPECT_EQ(max_[1], skips ? 1 : 0);
        EXPECT_FALSE(rows_[0].checked);
        EXPECT_EQ(test::Sketch(pane_.Image()), "G") << "every source was loaded";
    }
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
        rows_.clear();
        for (const char* name : {"a.bmp", "b.bmp", "c.bmp"}) Source(name, "R");
        Export(row.formats);
        cancelAfter_ = row.cancelAfter;
        Run();
        EXPECT_EQ(TakeTargets(), row.targets);
        EXPECT_EQ(std::ranges::count(rows_, true, &Row::checked), row.marked);
        EXPECT_EQ(values_[0], row.marked);
    }
}

TEST_P(BatchJobTest, TheTransparentColourDecidesOnGifAndIcon) {
    const ColorNumber white = RGB(255, 255, 255);
    const ColorNumber red = RGB(255, 0, 0);
    struct Case {
        ColorNumber color;
        ColorNumber after;
        const char* icon;
        bool transparent;
    };
    Current("/in/a.bmp");
    for (const Case& row : {Case{-1, -1, "GIF", false}, Case{0, white, "ICO", true},
                            Case{white, white, "ICO", true}, Case{red, red, "ICO", false}}) {
        for (const char* suffix : {".gif", ".ico"}) {
            SCOPED_TRACE(suffix + std::to_string(row.color));
            pane_.SetImage(test::Draw("KW WK"));
            transparentColor_ = row.color;
            Export({suffix});
            Run();
            EXPECT_EQ(transparentColor_, row.after);
            EXPECT_EQ(Load(std::string("a") + suffix).HasAlpha(), row.transparent);
        }
        EXPECT_EQ(CodecOf("a.ico"), row.icon);
        EXPECT_EQ(Load("a.gif").Width(), 2);
        EXPECT_EQ(Load("a.ico").Width(), 32);
        EXPECT_EQ(pane_.ImageHeight(), 32) << "the pane keeps the icon's size";
        TakeTargets();
    }
}

TEST_P(BatchJobTest, TheIconIsMadeLastSoThatNoOtherFormatIsSmall) {
    Source("a.bmp", "RGB BGR RRR");
    options_.ConvertScope = 2;
    options_.ExportOn.fill(true);
    Run();
    for (const ExportFormat& format : ExportFormatTable()) {
        const std::string target = "a" + std::string(format.suffix);
        EXPECT_EQ(Load(target).Width(), target == "a.ico" ? 32 : 3) << target;
    }
}

TEST_P(BatchJobTest, JpegTakesItsSettings) {
    pane_.SetImage(test::PhotoLike(64, 64));
    Current("/in/a.bmp");
    Export({".jpg"});
    std::set<ByteVector> files;
    for (int settings = 0; settings < 4; ++settings) {
        options_.JpgQuality = settings > 0 ? 95 : 60;
        options_.JpgProgressive = settings > 1;
        options_.JpgGrayScale = settings > 2;
        Run();
        files.insert(test::ReadWhole(Target("a.jpg")));
        const Pixel pixel = Load("a.jpg").At(5, 40);
        EXPECT_EQ(pixel.r == pixel.g && pixel.g == pixel.b, options_.JpgGrayScale);
        TakeTargets();
    }
    EXPECT_EQ(files.size(), 4u);
}

TEST_P(BatchJobTest, AFailureNeitherStopsTheJobNorHarmsAFile) {
    Source("a.bmp", "RG");
    test::WriteWhole(folder_.File("broken.bmp"), AsBytes("BM, and then nothing of use"));
    rows_.push_back({folder_.File("broken.bmp")});
    options_.ConvertScope = 2;
    Export({".bmp"});
    Run();
    EXPECT_EQ(test::Sketch(Load("broken.bmp")), "RG") << "what the pane held";

    pane_.ClearImage();
    rows_[1].key = folder_.File("missing.bmp");
    std::swap(rows_[0], rows_[1]);
    WriteOld("missing.bmp");
    options_.OverwriteMode = 1;
    Run();
    EXPECT_TRUE(IsOld("missing.bmp"));
    EXPECT_EQ(counts_.back(), "2 files converted! 2 files created!");

    options_.TargetFolder = folder_.File("gone");
    Run();
    EXPECT_FALSE(fs::exists(folder_.File("gone")));
    EXPECT_EQ(counts_.back(), "2 files converted! 2 files created!");
}

TEST_P(BatchJobTest, WithoutThreadsTheJobIsDoneAllTheSame) {
    const test::NoMoreThreads none;
    Source("a.bmp", "RG");
    Source("b.bmp", "GB");
    options_.ConvertScope = 2;
    Export({".png"});
    Run();
    EXPECT_EQ(test::Sketch(Load("a.png")) + test::Sketch(Load("b.png")), "RGGB");
}

TEST_P(BatchJobTest, ASourceThatTheJobItselfWritesIsReadAfterwards) {
    // The first takes a while, in which the second could be read too early.
    constexpr int kSide = 500;
    rows_ = {{folder_.File("A.BMP")}, {Target("a.png")}};
    test::WriteWhole(rows_[0].key,
                     test::Encode(*ExportFormatTable()[0].codec, test::PhotoLike(kSide, kSide)));
    test::WriteWhole(rows_[1].key, test::Encode(*ExportFormatTable()[0].codec, test::Draw("G")));
    options_.ConvertScope = 2;
    options_.OverwriteMode = 1;
    Export({".gif", ".png"});
    Run();
    EXPECT_EQ(Load("a.gif").Width(), kSide);
    EXPECT_EQ(counts_.back(), "2 files converted! 4 files created!");
}

INSTANTIATE_TEST_SUITE_P(Threads, BatchJobTest, testing::Values(1, 4));

}  // namespace
}  // namespace tessara
