#include "mainwindow/Dialogprogress.h"

#include <QCoreApplication>
#include <QScreen>
#include <QStyleOptionProgressBar>
#include <QVBoxLayout>
#include <algorithm>

#include "core/SaveName.h"
#include "desktop/HeldKeyFilter.h"
#include "desktop/Named.h"
#include "desktop/PathText.h"
#include "settings/ConvertOptions.h"

namespace tessara {

void CountBar::SetMax(int max, int work) {
    work_ = work;
    count_ = 0;
    setRange(0, max);
}

/// A range that is full stays so, while the picture still goes on.
void CountBar::ShowCount(int count) {
    count_ = count;
    setValue(std::min(count, maximum()));
    update();
}

/// Empty where there is nothing to do; the toolkit's own bar would move as if it were busy.
void CountBar::initStyleOption(QStyleOptionProgressBar* option) const {
    QProgressBar::initStyleOption(option);
    option->maximum = std::max(work_, 1);
    option->progress = std::min(count_, option->maximum);
}

int ProgressTop(const QRect& screen, int height, int frameTop) {
    constexpr int kGapBelow = 60;
    const int lowest = std::max(screen.top(), screen.bottom() + 1 - height);
    return std::min(std::max(screen.bottom() + 1 - height - kGapBelow, frameTop), lowest);
}

Dialogprogress::Dialogprogress(const Surroundings& surroundings, QWidget* parent)
    : QDialog(parent), surroundings_(surroundings) {
    setObjectName(QStringLiteral("Dialogprogress"));
    setWindowTitle(QStringLiteral("Convert"));
    setWindowModality(Qt::ApplicationModal);
    MakeControls();
    LayOut();
    connect(CancelButton_, &QPushButton::clicked, this, &Dialogprogress::CancelButton_Click);
}

void Dialogprogress::MakeControls() {
    constexpr const char* kNames[] = {"Files converted", "Files created"};
    for (std::size_t i = 0; i < ProgressBar_.size(); ++i) {
        ProgressBar_[i] = Named(new CountBar(this), "ProgressBar", i);
        ProgressBar_[i]->setAccessibleName(QString::fromLatin1(kNames[i]));
        ProgressBar_[i]->setTextVisible(false);
        Label1_[i] = Named(new QLabel(this), "Label1", i);
    }
    CancelButton_ = new QPushButton(QStringLiteral("Cancel"), this);
    CancelButton_->setObjectName(QStringLiteral("CancelButton"));
    CancelButton_->setDefault(true);
    CancelButton_->installEventFilter(new HeldKeyFilter(this));
}

void Dialogprogress::LayOut() {
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 16, 18, 16);
    layout->setSpacing(6);
    for (std::size_t i = 0; i < ProgressBar_.size(); ++i) {
        layout->addWidget(Label1_[i]);
        layout->addWidget(ProgressBar_[i]);
        layout->addSpacing(8);
    }
    layout->addWidget(CancelButton_, 0, Qt::AlignRight);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    ProgressBar_[0]->setMinimumWidth(fontMetrics().averageCharWidth() * 60);
}

void Dialogprogress::MoveToItsPlace() {
    const QWidget* const frame = surroundings_.FrameRst;
    const QRect area = screen()->geometry();
    adjustSize();
    move(area.center().x() - width() / 2,
         ProgressTop(area, height(), frame ? frame->mapToGlobal(QPoint()).y() : area.top()));
}

BatchOptions Dialogprogress::Options() const {
    Session& session = surroundings_.session;
    const ConvertOptions& options = session.ConvertOptions;
    return {.ConvertScope = options.ConvertScope,
            .ExportOn = options.ExportOn,
            .TargetFolder = FolderOf(options.TargetFolder),
            .OverwriteMode = options.OverwriteMode,
            .SelectedCount = session.SelectedCount,
            .ImagePath = session.ImagePath,
            .JpgQuality = session.JpgQuality,
            .JpgGrayScale = session.JpgGrayScale,
            .JpgProgressive = session.JpgProgressive,
            .formats = session.formats,
            .TargetName = session.TargetName,
            .TransparentColor = session.TransparentColor};
}

void Dialogprogress::LoadDialogprogress() {
    RunJob();
    exec();
}

void Dialogprogress::RunJob() {
    Session& session = surroundings_.session;
    MoveToItsPlace();
    show();
    session.Converting = true;
    BatchJob job(Options(), surroundings_.exportPane, surroundings_.list, *this, *this);
    job_ = &job;
    job.LoadDialogprogress();
    job_ = nullptr;
    lastWritten_ = job.LastWritten();
    session.ExportChanged = false;
    if (session.ConvertOptions.ConvertScope != 0) surroundings_.SelectIcoSourceIco();
}

void Dialogprogress::CancelButton_Click() {
    done(Accepted);
}

void Dialogprogress::done(int result) {
    if (job_) {
        job_->Cancel();
        return;
    }
    surroundings_.session.Converting = false;
    QDialog::done(result);
}

void Dialogprogress::SetMax(int index, int max, int work) {
    ProgressBar_[static_cast<std::size_t>(index)]->SetMax(max, work);
}

void Dialogprogress::ShowCount(int index, int value, const std::string& text) {
    ProgressBar_[static_cast<std::size_t>(index)]->ShowCount(value);
    Label1_[static_cast<std::size_t>(index)]->setText(ShownText(text));
}

void Dialogprogress::Refresh() {
    QCoreApplication::processEvents();
    raise();
}

void Dialogprogress::ShowDone() {
    CancelButton_->setText(QStringLiteral("Done"));
}

bool Dialogprogress::AskReplace(const std::string& text) {
    return surroundings_.prompts.Ask({text, PromptButtons::YesNo, PromptIcon::Warning}) == Answer::Yes;
}

std::string Dialogprogress::GetFileName(const std::string& folder, const std::string& name) {
    const SaveNameStart start = StartOfSaveName(folder, name);
    SaveRequest request{folder, start.path, {}, start.filterIndex};
    for (const SaveNameFilter& filter : SaveNameFilters())
        request.filters.push_back({std::string(filter.name), std::string(filter.pattern)});
    return surroundings_.prompts.PickSaveFile(request);
}

}  // namespace tessara
