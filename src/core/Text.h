#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace tessara {

/// Capitals of the letters A to Z; all other bytes stay, whatever the locale says.
constexpr char UpperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string UpperCase(std::string_view text) {
    std::string upper(text);
    for (char& c : upper) c = UpperCase(c);
    return upper;
}

constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return UpperCase(x) == UpperCase(y); });
}

}  // namespace tessara
