#pragma once

#include <string>
#include <string_view>

namespace tessara {

/// A UTF-8 text with the capitals of the Latin, Greek and Cyrillic scripts in lower case, whatever the locale
/// says. All other characters, and bytes that are no UTF-8, stay.
std::string LowerCaseText(std::string_view text);

}  // namespace tessara
