#include <gtest/gtest.h>

#include "tests/mainwindow/RandomEdits.h"

namespace tessara {
namespace {

// Others are drawn, and more of them, with --gtest_shuffle --gtest_repeat=34.
TEST(RandomEdits, LeaveTheHistoryAsTheRulesSay) {
    const auto seed = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed());
    test::RandomEdits edits(seed);
    for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) edits.Step();
    if (testing::Test::HasFailure()) std::puts(("seed " + std::to_string(seed) + ": " + edits.Log()).c_str());
}

}  // namespace
}  // namespace tessara
