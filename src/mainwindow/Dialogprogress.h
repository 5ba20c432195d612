#pragma once

#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <array>
#include <functional>

#include "core/BatchJob.h"
#include "desktop/Prompts.h"
#include "settings/Session.h"

namespace tessara {

/// A bar that shows how much of the real work is done, where its own range may count less.
class CountBar final : public QProgressBar {
  public:
    using QProgressBar::QProgressBar;

    void SetMax(int max, int work);
    void ShowCount(int count);

  protected:
    void initStyleOption(QStyleOptionProgressBar* option) const override;

  private:
    int work_ = 0;
    int count_ = 0;
};

/// The modal dialog of a conversion job. It stays open with its counts when the job is done.
class Dialogprogress final : public QDialog, private BatchView, private BatchQuestions {
    Q_OBJECT
  public:
    struct Surroundings {
        Session& session;
        Rastx& exportPane;
        BatchList& list;
        Prompts& prompts;
        /// The dialog stands no higher than the top of this one; null where there is none.
        const QWidget* FrameRst = nullptr;
        std::function<void(bool on)> BusyCursor = [](bool) {};
        std::function<void()> SelectIcoSourceIco = [] {};
    };
    Dialogprogress(const Surroundings& surroundings, QWidget* parent);

    /// Shows the dialog, does the whole job, and waits until the user has seen the counts.
    void LoadDialogprogress();
    /// The first part of LoadDialogprogress: comes back when the job is done.
    void RunJob();
    /// Of the job that was run; empty where it wrote nothing.
    const std::string& LastWritten() const { return lastWritten_; }
    /// Unloads the dialog; while the job runs that only asks it to end.
    void done(int result) override;

  private:
    void MakeControls();
    void LayOut();
    void MoveToItsPlace();
    BatchOptions Options() const;
    void CancelButton_Click();

    void BusyCursor(bool on) override { surroundings_.BusyCursor(on); }
    void SetMax(int index, int max, int work) override;
    void ShowCount(int index, int value, const std::string& text) override;
    void Refresh() override;
    void ShowDone() override;
    bool AskReplace(const std::string& text) override;
    std::string GetFileName(const std::string& folder, const std::string& name) override;

    Surroundings surroundings_;
    std::array<CountBar*, 2> ProgressBar_;
    std::array<QLabel*, 2> Label1_;
    QPushButton* CancelButton_;
    BatchJob* job_ = nullptr;  ///< while it runs
    std::string lastWritten_;
};

/// The top of the progress dialog, below the upper edge of the panes' frame as far as the screen allows: all
/// in the screen's coordinates.
int ProgressTop(const QRect& screen, int height, int frameTop);

}  // namespace tessara
