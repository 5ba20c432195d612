#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/CmdConvert.h"
#include "core/Module.h"

namespace {

/// The arguments as the user typed them, as far as the shell still tells.
std::string CommandLine(int count, char** arguments) {
    std::string line;
    for (int i = 1; i < count; ++i) {
        if (i > 1) line += ' ';
        line += arguments[i];
    }
    return line;
}

}  // namespace

int main(int count, char** arguments) {
    if (const std::string line = CommandLine(count, arguments); !line.empty()) {
        tessara::CmdConvert(line);
        // The picture is written; giving back its memory piece by piece would only take time.
        std::_Exit(EXIT_SUCCESS);
    }
    const auto desktop = tessara::LoadModuleFunction("tessara_desktop", "TessaraDesktopMain");
    if (!desktop) {
        std::fprintf(stderr, "The window cannot be opened: %s\n", desktop.Error().message.c_str());
        return EXIT_FAILURE;
    }
    return reinterpret_cast<int (*)(int, char**)>(desktop.Value())(count, arguments);
}
