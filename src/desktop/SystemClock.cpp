#include <QTimer>
#include <chrono>
#include <utility>

#include "desktop/Clock.h"

namespace tessara {
namespace {

class ToolkitTimer final : public Timer {
  public:
    explicit ToolkitTimer(std::function<void()> tick) {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.callOnTimeout(&timer_, std::move(tick));
    }

  private:
    void Restart() override {
        if (Running())
            timer_.start(Interval());
        else
            timer_.stop();
    }

    QTimer timer_;
};

}  // namespace

std::int64_t SystemClock::Now() const {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

std::unique_ptr<Timer> SystemClock::MakeTimer(std::function<void()> tick) {
    return std::make_unique<ToolkitTimer>(std::move(tick));
}

}  // namespace tessara
