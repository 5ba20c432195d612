#include "view/SlideShow.h"

namespace tessara {
namespace {

enum SlideOrder { kForward, kReverse, kRandom };

}  // namespace

SlideShow::SlideShow(Session& session, ListWalk& walk, ViewerStage& stage, Clock& clock, RandomSource& random)
    : session_(session),
      walk_(walk),
      stage_(stage),
      random_(random),
      TimerSlide_(clock.MakeTimer([this] { SlideShowNow(); })) {}

void SlideShow::StartSlide() {
    session_.SlideRunning ? Stop() : Start();
}

void SlideShow::Start() {
    SlideOptions& options = session_.SlideOptions;
    session_.SlideRunning = true;
    SetTools(false);
    stage_.SetSlideToolTip("Stop Slide Show");
    if (options.SlideFullScreen == 1) stage_.ShowFullScreen();
    if (options.SlideAuto != 1) return;
    options.RepairDelay();
    TimerSlide_->SetInterval(options.SlideDelay);
    TimerSlide_->SetEnabled(true);
}

void SlideShow::Stop() {
    Unload();
    SetTools(true);
    stage_.SetSlideToolTip("Slide Show");
    if (walk_.ListIndex == 0 || walk_.ListIndex == stage_.ItemCount() + 1) walk_.ListIndex = 1;
}

void SlideShow::Unload() {
    session_.SlideRunning = false;
    TimerSlide_->SetEnabled(false);
}

void SlideShow::SetTools(bool enabled) {
    for (const ViewerTool tool : {kPrevious, kNext, kSlideOptions, kZoomOut, kZoomIn, kDelete})
        stage_.SetImageTool(tool, enabled);
}

void SlideShow::SlideShowNow() {
    PickNext();
    stage_.Loadfile00();
    stage_.FitSlide();
    TestEnd();
}

void SlideShow::PickNext() {
    const int order = session_.SlideOptions.SlideOrder;
    if (order == kRandom) {
        walk_.ListIndex = random_.Below(stage_.ItemCount()) + 1;
        return;
    }
    walk_.LastNext(order == kForward ? 1 : 0);
    // LastNext has enabled them; during a show they stay off.
    stage_.SetImageTool(kPrevious, false);
    stage_.SetImageTool(kNext, false);
}

void SlideShow::TestEnd() {
    const SlideOptions& options = session_.SlideOptions;
    const int count = stage_.ItemCount();
    const bool onFirst = walk_.ListIndex == 1;
    const bool onLast = walk_.ListIndex == count;
    if (options.SlideCircular != 1) {
        // In any order, so that a random show ends too when it comes upon an end of the list.
        if (onFirst || onLast) StartSlide();
    } else if (options.SlideOrder == kReverse && onFirst) {
        walk_.ListIndex = count + 1;
    } else if (options.SlideOrder == kForward && onLast) {
        walk_.ListIndex = 0;
    }
}

}  // namespace tessara
