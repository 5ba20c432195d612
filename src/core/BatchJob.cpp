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
constexpr std::size_t kGif = 1;

std::string Counted(int count, const std::string& what) {
    return std::to_string(count) + (count == 1 ? " file " : " files ") + what + "!";
}

std::string WithSeparator(std::string folder) {
    if (!folder.ends_with('/')) folder += '/';
    return folder;
}

bool IsIcon(const ExportFormat& format) {
    return format.suffix == ".ico";
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
    const int work = scope == kAllGraphics ? ImportableRows() : sources;
    const int formats = static_cast<int>(std::ranges::count(options_.ExportOn, true));
    view_.SetMax(kSources, sources, work);
    view_.SetMax(kFiles, sources * formats, work * formats);
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

bool BatchJob::IsChosen(int row) const {
    return options_.ConvertScope == kAllGraphics || list_.IsChecked(row);
}

int BatchJob::ImportableRows() const {
    int rows = 0;
    for (int row = 0; row < list_.RowCount(); ++row) {
        bool enabled = false;
        static_cast<void>(TargetOf({}, list_.KeyOf(row), enabled));
        rows += enabled;
    }
    return rows;
}

void BatchJob::ConvertRows(const std::string& targetFolder) {
    options_.TargetName.clear();
    const auto next = [&, row = 0]() mutable -> std::optional<BatchAhead::Source> {
        while (row < list_.RowCount() && !IsChosen(row)) ++row;
        if (row == list_.RowCount()) return std::nullopt;
        return SourceAhead(targetFolder, list_.KeyOf(row++));
    };
    ahead_.emplace(next, options_.threads);
    for (int row = 0; row < list_.RowCount(); ++row) {
        if (!IsChosen(row)) continue;
        const std::string key = list_.KeyOf(row);
        list_.EnsureVisible(row);
        Ignore(ahead_->LoadImage(exportPane_, key));
        bool done = false;
        RstSave(targetFolder, LowerCaseText(key), done, false, ConvertedCount_);
        if (done) {
            if (options_.ConvertScope == kAllGraphics) list_.SetChecked(row, true);
            ++ConvertedCount_;
        }
        if (Cancelled_) break;
    }
    ahead_.reset();
}

/// The export pane is saved as it stands, with all that was done to it.
void BatchJob::ConvertCurrent(const std::string& targetFolder) {
    const int row = list_.SelectedRow();
    const std::string key = row < 0 ? options_.ImagePath : list_.KeyOf(row);
    bool done = false;
    RstSave(targetFolder, LowerCaseText(key), done, true, ConvertedCount_);
    ConvertedCount_ = 1;
    if (row >= 0) list_.EnsureVisible(row);
}

std::string BatchJob::TargetOf(const std::string& targetFolder, const std::string& sourcePath,
                               bool& enabled) const {
    std::string folder;
    std::string baseName;
    std::string extension;
    GetFileWeb(sourcePath, folder, baseName, extension);
    options_.formats.FindImpValid(extension, enabled);
    return targetFolder + (options_.TargetName.empty() ? baseName : options_.TargetName);
}

BatchAhead::Source BatchJob::SourceAhead(const std::string& targetFolder, const std::string& key) const {
    BatchAhead::Source source{key, {}};
    bool enabled = false;
    const std::string target = TargetOf(targetFolder, LowerCaseText(key), enabled);
    for (std::size_t i = 0; enabled && i < options_.ExportOn.size(); ++i) {
        const ExportFormat& format = ExportFormatTable()[i];
        // An icon is made of a picture that there is only then.
        if (!options_.ExportOn[i] || IsIcon(format)) continue;
        const bool skipped = options_.OverwriteMode == kSkip && IsFile(target + std::string(format.suffix));
        if (!skipped) source.encodings.push_back(EncodingOf(format));
    }
    return source;
}

void BatchJob::RstSave(const std::string& targetFolder, const std::string& sourcePath, bool& done, bool force,
                       int converted) {
    done = false;
    bool enabled = false;
    const std::string name = TargetOf(targetFolder, sourcePath, enabled);
    if (!force && !enabled) return;
    if (Cancelled_) return;

    for (std::size_t i = 0; i < options_.ExportOn.size(); ++i) {
        if (!options_.ExportOn[i]) continue;
        const ExportFormat& format = ExportFormatTable()[i];
        // A PNG follows the JPG before it also when the user wants no more.
        if (Cancelled_ && format.suffix != ".png") return;
        std::string target = name + std::string(format.suffix);
        bool allowed = false;
        OverWr(target, allowed);
        if (!allowed) continue;
        Save(format, target);
        done = true;
        DispFileN(converted, true);
    }
}

/// Without a transparent colour even an icon is written as a GIF, under its own name.
BatchAhead::Encoding BatchJob::EncodingOf(const ExportFormat& format) const {
    const ExportFormat& gif = ExportFormatTable()[kGif];
    const ColorNumber color = options_.TransparentColor;
    const bool transparent = (IsIcon(format) || &format == &gif) && color >= 0;
    return {IsIcon(format) && !transparent ? &gif : &format,
            {.transparent = transparent,
             .color = transparent ? (color == 0 ? RGB(255, 255, 255) : color) : 0,
             .quality = options_.JpgQuality,
             .grey = options_.JpgGrayScale,
             .progressive = options_.JpgProgressive}};
}

void BatchJob::Save(const ExportFormat& format, const std::string& target) {
    const BatchAhead::Encoding encoding = EncodingOf(format);
    if (encoding.options.transparent) options_.TransparentColor = encoding.options.color;
    if (IsIcon(format)) Ignore(exportPane_.Resample(kIconSide, kIconSide, false));
    const Result<void> saved = ahead_ ? ahead_->SaveAs(exportPane_, encoding, target)
                                      : exportPane_.SaveAs(*encoding.format, target, encoding.options);
    if (saved) lastWritten_ = target;
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
