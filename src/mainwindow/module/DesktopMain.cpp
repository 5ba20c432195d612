#include <cstdio>
#include <cstdlib>

/// The entry of the desktop module.
extern "C" __attribute__((visibility("default"))) int TessaraDesktopMain(int, char**) {
    std::puts("Tessara Pro has no window yet; it converts files given as import-path,export-path.");
    return EXIT_SUCCESS;
}
