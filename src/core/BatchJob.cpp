#include "core/BatchJob.h"

#include <algorithm>

#include "core/Files.h"
#include "core/LowerCase.h"
#include "core/Paths.h"

namespace tessara {
namespace {

enum Scope { kCurrentFile, kSelectedFiles, kAllGraphics };
enum Overwrite { kAsk, kReplace, kSkip };
enum Counter { kSources, kFiles };

constexpr int kIconSide = 32;

std::string Counted(int count, const std::string& what) {
    return std::to_string(count) + (count == 1 ? " file " : " files ") + what + "!";
}

std::string WithSeparator(std::string folder) {
    if (!folder.ends_with('/')) folder += '/';
    return folder;
}

const ExportFormat& Gif() {
    const auto table = ExportFormatTable();
    return *std::ranges::find(table, ".gif", &ExportFormat::suffix);
}

}  // namespace

BatchJob::BatchJob(const BatchOptions& options, Rastx& exportPane, BatchList& list, BatchView& view,
                   BatchQuestions& questions)
    : options_(options), exportPane_(exportPane), list_(list), view_(view), questions_(questions) {}

void BatchJob::LoadDialogprogress() {
    view_.BusyCursor(true);
    const int scope = options_.ConvertScope;
    const bool nothingSelected = scope == kSelectedFiles && options_.SelectedCount == 0;
    const int sources = scope == kCurrentFile || nothingSelected ? 1 : options_.SelectedCount;
    view_.SetMax(kSources, sources);
    view_.SetMax(kFiles, sources * static_cast<int>(std::ranges::count(options_.ExportOn, true)));
    DispFileN(0, false);

    const std::string targetFolder = WithSeparator(options_.TargetFolder);
    if (scope == kAllGraphics || (scope == kSelectedFiles && !nothingSelected))
        ConvertRows(targetFolder);
    else
        ConvertCurrent(targetFolder);

    DispFileN(ConvertedCount_, false);
    view_.ShowDone();
    Cancelled_ = false;
    options_.TargetName.clear();
    view_.BusyCursor(false);
}

void BatchJob::ConvertRows(const std::string& targetFolder) {
    options_.TargetName.clear();
    for (int row = 0; row < list_.RowCount(); ++row) {
        const bool all = options_.ConvertScope == kAllGraphics;
        if (!all && !list_.IsChecked(row)) continue;
        const std::string key = list_.KeyOf(row);
        list_.EnsureVisible(row);
        Ignore(exportPane_.LoadImage(key));
        bool done = false;
        RstSave(targetFolder, LowerCaseText(key), done, false, ConvertedCount_);
        if (done) {
            if (all) list_.SetChecked(row, true);
            ++ConvertedCount_;
        }
        if (Cancelled_) return;
    }
}

/// The export pane is saved as it stands, with all that was done to it.
void BatchJob::ConvertCurrent(const std::string& targetFolder) {
    const int row = list_.SelectedRow();
    const std::string key = row < 0 ? std::string() : list_.KeyOf(row);
    bool done = false;
    RstSave(targetFolder, LowerCaseText(key), done, true, ConvertedCount_);
    ConvertedCount_ = 1;
    if (row >= 0) list_.EnsureVisible(row);
}

void BatchJob::RstSave(const std::string& targetFolder, const std::string& sourcePath, bool& done, bool force,
                       int converted) {
    done = false;
    std::string folder;
    std::string baseName;
    std::string extension;
    GetFileWeb(sourcePath, folder, baseName, extension);
    bool enabled = false;
    options_.formats.FindImpValid(extension, enabled);
    if (!force && !enabled) return;
    if (Cancelled_) return;

    const std::string name = options_.TargetName.empty() ? baseName : options_.TargetName;
    for (std::size_t i = 0; i < options_.ExportOn.size(); ++i) {
        if (!options_.ExportOn[i]) continue;
        const ExportFormat& format = ExportFormatTable()[i];
        // A PNG follows the JPG before it also when the user wants no more.
        if (Cancelled_ && format.suffix != ".png") return;
        std::string target = targetFolder + name + std::string(format.suffix);
        bool allowed = false;
        OverWr(target, allowed);
        if (!allowed) continue;
        Save(format, target);
        done = true;
        DispFileN(converted, true);
    }
}

void BatchJob::Save(const ExportFormat& format, const std::string& target) {
    const bool icon = format.suffix == ".ico";
    const bool canBeTransparent = icon || format.suffix == ".gif";
    ColorNumber& color = options_.TransparentColor;
    const bool transparent = canBeTransparent && color >= 0;
    if (transparent && color == 0) color = RGB(255, 255, 255);
    if (icon) Ignore(exportPane_.Resample(kIconSide, kIconSide, false));
    // Without a transparent colour even an icon is written as a GIF, under its own name.
    const ExportFormat& written = icon && !transparent ? Gif() : format;
    Ignore(exportPane_.SaveAs(written, target,
                              {.transparent = transparent,
                               .color = transparent ? color : 0,
                               .quality = options_.JpgQuality,
                               .grey = options_.JpgGrayScale,
                               .progressive = options_.JpgProgressive}));
}

void BatchJob::OverWr(std::string& target, bool& allowed) {
    allowed = !IsFile(target) || options_.OverwriteMode == kReplace;
    if (allowed || options_.OverwriteMode == kSkip) return;
    allowed = questions_.AskReplace("File " + target + " already exists.\n\nDo you want to replace it?");
    if (allowed) return;
    std::string folder;
    std::string name;
    SplitPath(target, folder, name);
    target = questions_.GetFileName(folder, name);
    allowed = !target.empty();
}

void BatchJob::DispFileN(int converted, bool fileWritten) {
    if (fileWritten) ++CreatedCount_;
    view_.ShowCount(kSources, converted, Counted(converted, "converted"));
    view_.ShowCount(kFiles, CreatedCount_, Counted(CreatedCount_, "created"));
    view_.Refresh();
}

}  // namespace tessara
