#include "core/LowerCase.h"

#include <algorithm>

#include "core/Text.h"

namespace tessara {
namespace {

/// Capitals at every `step` code points, each `distance` before its small letter.
struct Capitals {
    int first;
    int last;
    int step;
    int distance;
};
constexpr Capitals kCapitals[] = {
    {0x00c0, 0x00d6, 1, 32}, {0x00d8, 0x00de, 1, 32}, {0x0100, 0x012e, 2, 1},    {0x0132, 0x0136, 2, 1},
    {0x0139, 0x0147, 2, 1},  {0x014a, 0x0176, 2, 1},  {0x0178, 0x0178, 1, -121}, {0x0179, 0x017d, 2, 1},
    {0x0386, 0x0386, 1, 38}, {0x0388, 0x038a, 1, 37}, {0x038c, 0x038c, 1, 64},   {0x038e, 0x038f, 1, 63},
    {0x0391, 0x03a1, 1, 32}, {0x03a3, 0x03ab, 1, 32}, {0x0400, 0x040f, 1, 80},   {0x0410, 0x042f, 1, 32},
    {0x0460, 0x0480, 2, 1},  {0x048a, 0x04be, 2, 1},  {0x04d0, 0x052e, 2, 1},
};

int LowerCase(int character) {
    for (const Capitals& range : kCapitals)
        if (character >= range.first && character <= range.last &&
            (character - range.first) % range.step == 0)
            return character + range.distance;
    return character;
}

}  // namespace

std::string LowerCaseText(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) c = LowerCase(c);
    // All of these letters are of two bytes, small and capital.
    for (std::size_t i = 0; i + 1 < lower.size(); ++i) {
        const auto lead = static_cast<unsigned char>(lower[i]);
        const auto next = static_cast<unsigned char>(lower[i + 1]);
        if ((lead & 0xe0) != 0xc0 || (next & 0xc0) != 0x80) continue;
        const int small = LowerCase((lead & 0x1f) << 6 | (next & 0x3f));
        lower[i] = static_cast<char>(0xc0 | small >> 6);
        lower[i + 1] = static_cast<char>(0x80 | (small & 0x3f));
        ++i;
    }
    return lower;
}

}  // namespace tessara
