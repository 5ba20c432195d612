#include "desktop/Clock.h"

#include <gtest/gtest.h>

#include <vector>

namespace tessara {
namespace {

TEST(ScriptedClock, TimersTickInTheOrderOfTheirMoments) {
    ScriptedClock clock;
    std::vector<std::pair<char, std::int64_t>> ticks;
    const auto slow = clock.MakeTimer([&] { ticks.emplace_back('s', clock.Now()); });
    std::unique_ptr<Timer> fast = clock.MakeTimer([&] { ticks.emplace_back('f', clock.Now()); });
    slow->SetEnabled(true);
    clock.Advance(1000);
    EXPECT_TRUE(ticks.empty()) << "there is no interval yet";
    slow->SetInterval(50);
    fast->SetInterval(20);
    fast->SetEnabled(true);
    clock.Advance(60);
    fast->SetInterval(30);  // starts anew: the next tick is at 1090
    clock.Advance(40);
    const std::vector<std::pair<char, std::int64_t>> expected = {{'f', 1020}, {'f', 1040}, {'s', 1050},
                                                                 {'f', 1060}, {'f', 1090}, {'s', 1100}};
    EXPECT_EQ(ticks, expected);
}

TEST(ScriptedClock, AHandlerMayStopOrDestroyItsTimer) {
    ScriptedClock clock;
    int ticks = 0;
    std::unique_ptr<Timer> destroyed = clock.MakeTimer([&] {
        ++ticks;
        destroyed.reset();
    });
    std::unique_ptr<Timer> stopped = clock.MakeTimer([&] {
        ++ticks;
        stopped->SetEnabled(false);
    });
    for (Timer* timer : {destroyed.get(), stopped.get()}) {
        timer->SetInterval(10);
        timer->SetEnabled(true);
    }
    clock.Advance(100);
    EXPECT_EQ(ticks, 2);
}

}  // namespace
}  // namespace tessara
