#include <cctype>
#include <iostream>

#include "core/rastx/Codec.h"

/// Prints a line per codec of the table: its name, and the extensions of its files, in small letters.
int main() {
    const auto print = [](std::string_view text) {
        for (const char c : text) std::cout << static_cast<char>(std::tolower(c));
    };
    for (const tessara::Codec& codec : tessara::Codecs()) {
        print(codec.name);
        for (const tessara::ImportFormat& format : tessara::ImportFormatTable()) {
            if (format.codec != &codec) continue;
            std::cout << ' ';
            print(format.label);
        }
        std::cout << '\n';
    }
}
