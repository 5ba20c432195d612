#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tessara {

/// Ticks on the interface thread at every interval while it is enabled; with an interval of 0 it never does.
class Timer {
  public:
    virtual ~Timer() = default;
    int Interval() const { return interval_; }
    bool Enabled() const { return enabled_; }
    /// In milliseconds. The running interval starts anew.
    void SetInterval(int milliseconds) {
        interval_ = milliseconds;
        Restart();
    }
    /// Enabling one that is enabled changes nothing.
    void SetEnabled(bool enabled) {
        if (enabled == enabled_) return;
        enabled_ = enabled;
        Restart();
    }

  protected:
    bool Running() const { return enabled_ && interval_ > 0; }
    /// Starts the interval anew, or stops where the timer is not running.
    virtual void Restart() = 0;

  private:
    int interval_ = 0;
    bool enabled_ = false;
};

class Clock {
  public:
    virtual ~Clock() = default;
    /// Milliseconds since an arbitrary moment; never goes back.
    virtual std::int64_t Now() const = 0;
    /// A timer, off and without an interval. The clock must outlive it.
    virtual std::unique_ptr<Timer> MakeTimer(std::function<void()> tick) = 0;
};

class SystemClock final : public Clock {
  public:
    std::int64_t Now() const override;
    std::unique_ptr<Timer> MakeTimer(std::function<void()> tick) override;
};

/// Time that moves when told. Ticks come in the order of their moments.
class ScriptedClock final : public Clock {
  public:
    ScriptedClock();
    ~ScriptedClock() override;
    std::int64_t Now() const override { return now_; }
    std::unique_ptr<Timer> MakeTimer(std::function<void()> tick) override;
    void Advance(int milliseconds);

  private:
    class ScriptedTimer;

    std::int64_t now_ = 0;
    std::vector<ScriptedTimer*> timers_;
};

}  // namespace tessara
