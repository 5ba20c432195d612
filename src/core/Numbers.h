#pragma once

#include <string_view>

namespace tessara {

/// The decimal number with which a text begins, behind blanks: "-5.5 px" is -5.5; 0 where there is none. The
/// decimal sign is a full stop in every language.
double LeadingNumber(std::string_view text);

/// The nearest whole number, ties to the even one; beyond the range of int its end.
int RoundToEven(double value);

}  // namespace tessara
