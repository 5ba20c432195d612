#pragma once

#include <csignal>

namespace tessara {

/// While one lives, the signals that ask a program to end wait: for this thread and for those that it starts.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t asking;
        sigemptyset(&asking);
        for (const int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&asking, signal);
        pthread_sigmask(SIG_BLOCK, &asking, &before_);
    }
    ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

  private:
    sigset_t before_;
};

}  // namespace tessara
