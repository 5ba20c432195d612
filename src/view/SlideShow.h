#pragma once

#include <memory>

#include "desktop/Clock.h"
#include "desktop/RandomSource.h"
#include "settings/Session.h"
#include "view/ListWalk.h"

namespace tessara {

/// Steps through the file list by itself, as SlideOptions say. No toolkit.
class SlideShow {
  public:
    SlideShow(Session& session, ListWalk& walk, ViewerStage& stage, Clock& clock, RandomSource& random);

    /// Starts the show, or stops the one that runs.
    void StartSlide();
    /// One step.
    void SlideShowNow();
    /// What closing the viewer does: no button is touched.
    void Unload();

  private:
    void Start();
    void Stop();
    void SetTools(bool enabled);
    void PickNext();
    /// Prepares the step behind the last one of a circular show, or ends a show that is not circular.
    void TestEnd();

    Session& session_;
    ListWalk& walk_;
    ViewerStage& stage_;
    RandomSource& random_;
    std::unique_ptr<Timer> TimerSlide_;
};

}  // namespace tessara
