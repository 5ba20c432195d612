// How long the main window takes for much, as ratios to what the same takes without it:
//
//     tessara_bench_window [FILES]
//
// Lists a folder of so many files (20 000) without and with type names and icons, and shows a photograph of
// 24 megapixels in both panes. Each time is the least of several.

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <string>

#include "bench/PhotoLike.h"
#include "bench/WholeWindow.h"
#include "core/rastx/Codec.h"

namespace {

using namespace tessara;

double LeastMilliseconds(int runs, const std::function<void()>& work) {
    qint64 least = std::numeric_limits<qint64>::max();
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        least = std::min(least, timer.nsecsElapsed());
    }
    return static_cast<double>(least) / 1e6;
}

void Print(const char* what, double milliseconds, double reference) {
    std::printf("%-32s %8.1f ms %6.2f times\n", what, milliseconds, milliseconds / reference);
}

void MakeFiles(const std::string& folder, int count) {
    const auto formats = ImportFormatTable();
    for (int i = 0; i < count; ++i) {
        const std::string extension(formats[static_cast<std::size_t>(i) % formats.size()].label);
        std::ofstream(folder + "/picture " + std::to_string(i) + "." + extension) << i;
    }
}

void MeasureList(bench::WholeWindow& window, const std::string& folder, int files) {
    constexpr int kRuns = 9;
    MakeFiles(folder, files);
    const std::string find = "find '" + folder + "' -maxdepth 1 -printf '%s %T@ %p\\n' > /dev/null";
    const double reference = LeastMilliseconds(kRuns, [&] {
        if (std::system(find.c_str()) != 0) std::printf("there is no find\n");
    });
    Print("find", reference, reference);
    window.form.EnterFolder(folder);
    const auto list = [&](Answer answer) {
        window.prompts.answer = answer;
        return LeastMilliseconds(kRuns, [&] {
            window.form.List().FileViewFile_PathChange();
            QApplication::processEvents();
        });
    };
    Print("list in fast mode", list(Answer::No), reference);
    Print("list with type names and icons", list(Answer::Yes), reference);
    std::printf("rows %d of %d\n", window.form.List().RowCount(), files);
}

/// In megabytes, from the system's account of this process.
double Memory(const std::string& field) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (double kilobytes = 0; word == field && status >> kilobytes) return kilobytes / 1024;
    return 0;
}

void MeasurePhotograph(bench::WholeWindow& window, const std::string& folder) {
    constexpr int kRuns = 5;
    const std::string path = folder + "/photo.jpg";
    {
        Rastx pane;
        pane.SetImage(bench::PhotoLike(6000, 4000));
        Ignore(pane.SaveJpg(path, 90, false, false));
    }
    window.form.EnterFolder(folder);
    const double before = Memory("VmRSS:");
    window.ShowRow(0);
    std::printf("photograph: %.0f MB more, at most %.0f MB\n", Memory("VmRSS:") - before,
                Memory("VmHWM:") - before);
    const Picture& import = window.form.rastx1(0).rastx().Image();
    const Picture& shown = window.form.rastx1(1).rastx().Image();
    std::printf("the panes share its pixels: %s\n",
                import.Pixels().data() == shown.Pixels().data() ? "yes" : "no");
    Rastx pane;
    const double decode = LeastMilliseconds(kRuns, [&] { Ignore(pane.LoadImage(path)); });
    Print("decoded", decode, decode);
    Print("in both panes", LeastMilliseconds(kRuns, [&] { window.form.LoadPict(path); }), decode);
}

}  // namespace

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    const QTemporaryDir folder;
    const std::string files = folder.path().toStdString() + "/files";
    const std::string photos = folder.path().toStdString() + "/photos";
    for (const std::string& made : {files, photos}) std::filesystem::create_directory(made);
    bench::WholeWindow window;
    if (!window.form.Form_Load()) return EXIT_FAILURE;
    MeasurePhotograph(window, photos);
    MeasureList(window, files, count > 1 ? std::atoi(arguments[1]) : 20000);
    return EXIT_SUCCESS;
}
