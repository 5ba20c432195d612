#include "core/Numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace tessara {

double LeadingNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    // Only digits: from_chars would take a second sign and words such as "inf".
    if (text.empty() || std::string_view("0123456789.").find(text.front()) == std::string_view::npos)
        return 0;
    double value = 0;
    const auto result =
        std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (result.ec == std::errc::result_out_of_range) value = std::numeric_limits<double>::max();
    return negative ? -value : value;
}

int RoundToEven(double value) {
    constexpr double lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::nearbyint(std::clamp(value, lowest, highest)));
}

}  // namespace tessara
