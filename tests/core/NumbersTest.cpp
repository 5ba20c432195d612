#include "core/Numbers.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessara {
namespace {

TEST(Numbers, TheLeadingNumberIsReadAndTheRestPassedOver) {
    struct Case {
        std::string_view text;
        double number;
    };
    const Case cases[] = {{"", 0},        {"  ", 0},   {"abc", 0}, {"12", 12}, {" 7px", 7}, {"+40", 40},
                          {"-5.5", -5.5}, {".5", 0.5}, {"-", 0},   {"--5", 0}, {"+-5", 0},  {"3,5", 3},
                          {"inf", 0},     {"nan", 0},  {"-.", 0},  {"1e3", 1}, {"0x10", 0}, {"12 34", 12}};
    for (const Case& row : cases) EXPECT_EQ(LeadingNumber(row.text), row.number) << row.text;
    EXPECT_EQ(LeadingNumber("-" + std::string(400, '9')), -std::numeric_limits<double>::max());
}

TEST(Numbers, TiesRoundToTheEvenNumber) {
    const std::pair<double, int> cases[] = {
        {0.5, 0}, {1.5, 2}, {2.51, 3}, {-1.5, -2}, {1e99, std::numeric_limits<int>::max()}};
    for (const auto& [value, rounded] : cases) EXPECT_EQ(RoundToEven(value), rounded) << value;
}

}  // namespace
}  // namespace tessara
