#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "core/BatchJob.h"

/// The batch job as a program: converts every file of a folder to JPG and PNG and prints the seconds that it
/// took.
///
///     tessara_bench_batch SOURCES TARGETS [THREADS]
namespace tessara {
namespace {

class Folder final : public BatchList {
  public:
    explicit Folder(const std::string& path) {
        for (const auto& entry : std::filesystem::directory_iterator(path))
            keys_.push_back(entry.path().string());
        std::ranges::sort(keys_);
    }
    int RowCount() const override { return static_cast<int>(keys_.size()); }
    std::string KeyOf(int row) const override { return keys_[static_cast<std::size_t>(row)]; }
    bool IsChecked(int) const override { return false; }
    void SetChecked(int, bool) override {}
    int SelectedRow() const override { return -1; }
    void EnsureVisible(int) override {}

  private:
    std::vector<std::string> keys_;
};

class NoView final : public BatchView {
    void BusyCursor(bool) override {}
    void SetMax(int, int, int) override {}
    void ShowCount(int, int, const std::string&) override {}
    void Refresh() override {}
    void ShowDone() override {}
};

class NoQuestions final : public BatchQuestions {
    bool AskReplace(const std::string&) override { return false; }
    std::string GetFileName(const std::string&, const std::string&) override { return {}; }
};

void Convert(const char* sources, const char* targets, int threads) {
    constexpr int kAllGraphics = 2;
    FormatTables formats;
    formats.SetFormats();
    for (FormatRow& row : formats.ImportFormats) row.Enabled = true;
    std::string targetName;
    ColorNumber color = -1;
    BatchOptions options{.ConvertScope = kAllGraphics,
                         .TargetFolder = targets,
                         .OverwriteMode = 1,
                         .formats = formats,
                         .TargetName = targetName,
                         .TransparentColor = color,
                         .threads = threads};
    for (std::size_t i = 0; i < options.ExportOn.size(); ++i)
        options.ExportOn[i] =
            ExportFormatTable()[i].suffix == ".jpg" || ExportFormatTable()[i].suffix == ".png";
    Rastx pane;
    Folder list(sources);
    NoView view;
    NoQuestions questions;
    BatchJob(options, pane, list, view, questions).LoadDialogprogress();
}

}  // namespace
}  // namespace tessara

int main(int count, char** arguments) {
    if (count < 3) return EXIT_FAILURE;
    const int threads = count > 3 ? std::atoi(arguments[3]) : tessara::HardwareThreads();
    const auto start = std::chrono::steady_clock::now();
    tessara::Convert(arguments[1], arguments[2], threads);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    std::printf("%.2f\n", seconds.count());
}
