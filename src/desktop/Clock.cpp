#include "desktop/Clock.h"

#include <algorithm>
#include <utility>

namespace tessara {

class ScriptedClock::ScriptedTimer final : public Timer {
  public:
    ScriptedTimer(ScriptedClock& clock, std::function<void()> tick) : clock_(clock), tick_(std::move(tick)) {
        clock_.timers_.push_back(this);
    }
    ~ScriptedTimer() override { std::erase(clock_.timers_, this); }

    bool IsDueBy(std::int64_t moment) const { return Running() && due_ <= moment; }
    std::int64_t Due() const { return due_; }
    void Tick() {
        due_ += Interval();
        // The handler may destroy this timer.
        const auto tick = tick_;
        tick();
    }

  private:
    void Restart() override { due_ = clock_.now_ + Interval(); }

    ScriptedClock& clock_;
    std::function<void()> tick_;
    std::int64_t due_ = 0;
};

ScriptedClock::ScriptedClock() = default;
ScriptedClock::~ScriptedClock() = default;

std::unique_ptr<Timer> ScriptedClock::MakeTimer(std::function<void()> tick) {
    return std::make_unique<ScriptedTimer>(*this, std::move(tick));
}

void ScriptedClock::Advance(int milliseconds) {
    const std::int64_t end = now_ + milliseconds;
    while (true) {
        const auto next = std::ranges::min_element(timers_, {}, [end](const ScriptedTimer* timer) {
            return timer->IsDueBy(end) ? timer->Due() : end + 1;
        });
        if (next == timers_.end() || !(*next)->IsDueBy(end)) break;
        now_ = (*next)->Due();
        (*next)->Tick();
    }
    now_ = end;
}

}  // namespace tessara
