#pragma once

#include <array>
#include <optional>
#include <string>

#include "core/BatchAhead.h"
#include "core/FormatTables.h"
#include "core/rastx/Rastx.h"

namespace tessara {

/// What a job is told.
struct BatchOptions {
    int ConvertScope = 0;  ///< 0 current file, 1 selected files, 2 all graphics
    std::array<bool, kExportFormatCount> ExportOn{};
    std::string TargetFolder = {};
    int OverwriteMode = 0;  ///< 0 ask, 1 replace, 2 skip
    int SelectedCount = 0;  ///< checked rows of the list
    /// Gives a single source its name where no row is selected.
    std::string ImagePath = {};
    int JpgQuality = 60;
    bool JpgGrayScale = false;
    bool JpgProgressive = false;
    const FormatTables& formats;
    /// Replaces the base name of a single source's targets; a job leaves it empty.
    std::string& TargetName;
    /// Negative for none. The first use turns 0 into white for good.
    ColorNumber& TransparentColor;
    int threads = HardwareThreads();
};

/// The file list as a job walks it. Rows count from 0; a key is a file's full path.
class BatchList {
  public:
    virtual ~BatchList() = default;
    virtual int RowCount() const = 0;
    virtual std::string KeyOf(int row) const = 0;
    virtual bool IsChecked(int row) const = 0;
    virtual void SetChecked(int row, bool checked) = 0;
    /// -1 where no row is selected.
    virtual int SelectedRow() const = 0;
    /// Scrolls to a row and paints the list.
    virtual void EnsureVisible(int row) = 0;
};

/// What shows a job's progress. Index 0 counts sources, 1 files written.
class BatchView {
  public:
    virtual ~BatchView() = default;
    virtual void BusyCursor(bool on) = 0;
    /// `max` comes from what was marked before the job; `work` is what there may really be to do.
    virtual void SetMax(int index, int max, int work) = 0;
    virtual void ShowCount(int index, int value, const std::string& text) = 0;
    /// Paints, lets waiting clicks reach their buttons, and comes to the front.
    virtual void Refresh() = 0;
    /// From now on the button closes the view.
    virtual void ShowDone() = 0;
};

class BatchQuestions {
  public:
    virtual ~BatchQuestions() = default;
    /// A warning with Yes and No.
    virtual bool AskReplace(const std::string& text) = 0;
    /// Another name for a file; empty where the user gives none.
    virtual std::string GetFileName(const std::string& folder, const std::string& name) = 0;
};

/// Writes the current file, the checked files or all listed graphics into every format that is switched on.
/// Failures are passed over: a source that cannot be read leaves the pane as it was, and what the pane holds
/// is written; a save that fails counts as made and leaves the file that was there.
class BatchJob {
  public:
    BatchJob(const BatchOptions& options, Rastx& exportPane, BatchList& list, BatchView& view,
             BatchQuestions& questions);

    /// The whole job.
    void LoadDialogprogress();
    /// The job ends at its next test, which stands before each format but PNG.
    void Cancel() { Cancelled_ = true; }
    /// The file that was written last; empty where every save failed or was skipped.
    const std::string& LastWritten() const { return lastWritten_; }

  private:
    void ConvertRows(const std::string& targetFolder);
    void ConvertCurrent(const std::string& targetFolder);
    bool IsChosen(int row) const;
    /// Rows of formats that are switched on.
    int ImportableRows() const;
    /// What is to be done ahead of a row's turn, as far as it can be foreseen.
    BatchAhead::Source SourceAhead(const std::string& targetFolder, const std::string& key) const;

    /// Writes what the pane holds under the name of a source; `done` tells whether anything was written.
    void RstSave(const std::string& targetFolder, const std::string& sourcePath, bool& done, bool force,
                 int converted);
    /// Where a source goes, up to the suffix; `enabled` tells whether its format is switched on.
    std::string TargetOf(const std::string& targetFolder, const std::string& sourcePath, bool& enabled) const;
    BatchAhead::Encoding EncodingOf(const ExportFormat& format) const;
    void Save(const ExportFormat& format, const std::string& target);
    /// Whether a target may be written; the user may change it.
    void OverWr(std::string& target, bool& allowed);
    void DispFileN(int converted, bool fileWritten);

    BatchOptions options_;
    Rastx& exportPane_;
    BatchList& list_;
    BatchView& view_;
    BatchQuestions& questions_;
    std::optional<BatchAhead> ahead_;  ///< while rows are converted
    bool Cancelled_ = false;
    int CreatedCount_ = 0;
    int ConvertedCount_ = 0;
    std::string lastWritten_;
};

}  // namespace tessara
