// How long the image viewer takes to show the next of three photographs of 24 megapixels, beside the time
// that it takes to read and decode the file alone, and how long each step of its zoom takes, in milliseconds:
//
//     QT_QPA_PLATFORM=offscreen tessara_bench_viewer [ROUNDS]
//
// Medians of all rounds. Ends with 1 where one misses its bar.

#include <QApplication>
#include <cstdio>
#include <map>

#include "bench/PhotoLike.h"
#include "bench/ScriptedWindow.h"
#include "core/Files.h"
#include "core/rastx/Codec.h"
#include "view/FormviewImport.h"

namespace {

using namespace tessara;
using bench::Median, bench::Milliseconds;

constexpr int kWidth = 6000, kHeight = 4000, kFiles = 3;
constexpr double kDecodeBar = 1.3;  ///< times the decoding
constexpr double kZoomBar = 60;     ///< milliseconds

bool WritePhotographs(const std::string& folder) {
    std::filesystem::create_directory(folder);
    const Picture photograph = bench::PhotoLike(kWidth, kHeight);
    bool written = true;
    for (int i = 0; i < kFiles; ++i)
        written &= ReplaceFile(folder + "/" + std::to_string(i) + ".jpg", [&](ByteSink& sink) {
                       return FindCodec({}, "jpg")->encode(photograph, {.quality = 90}, sink);
                   }).Ok();
    return written;
}

/// Opens the viewer on the first photograph; it stays open as long as the window.
FormviewImport& OpenViewer(bench::ScriptedWindow& window, const std::string& folder) {
    window.form.EnterFolder(folder);
    window.form.List().SelectRow(0);
    window.form.List().ListViewFile_Click();
    window.Choose("mFile", 7);
    QApplication::processEvents();
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* viewer = qobject_cast<FormviewImport*>(widget)) return *viewer;
    std::abort();
}

void Decode(const std::string& path) {
    const Result<FileBytes> file = FileBytes::Read(path);
    if (file) Ignore(DecodeFile(file.Value().View(), "jpg"));
}

double Press(FormviewImport& viewer, int tool) {
    const double time = Milliseconds([&] {
        viewer.Imagetool(tool)->click();
        QApplication::processEvents();
    });
    if (!viewer.rastx1(0).rastx().ImageWidth()) std::abort();  // nothing shown is no time measured
    return time;
}

bool MeasureNext(FormviewImport& viewer, const std::string& folder, int rounds) {
    std::vector<double> next, decoded;
    for (int round = 0; round < rounds; ++round) {
        for (int i = 1; i < kFiles; ++i) {
            decoded.push_back(Milliseconds([&] { Decode(folder + "/" + std::to_string(i) + ".jpg"); }));
            next.push_back(Press(viewer, kNext));
        }
        for (int i = 1; i < kFiles; ++i) Press(viewer, kPrevious);
    }
    const double ratio = Median(next) / Median(decoded);
    std::printf("next picture %.1f, decoding alone %.1f: %.2f times, bar %.1f\n", Median(next),
                Median(decoded), ratio, kDecodeBar);
    return ratio <= kDecodeBar;
}

bool MeasureZoom(FormviewImport& viewer, int rounds) {
    std::map<int, std::vector<double>> steps;  // by the level that is arrived at, of both directions
    const auto walk = [&](ZoomLevels& levels, int tool) {
        while (viewer.Imagetool(tool)->isEnabled()) {
            tool == kZoomIn ? levels.ZoomIn() : levels.ZoomOut();
            steps[levels.Percent()].push_back(Press(viewer, tool));
        }
    };
    ZoomLevels levels;
    for (int round = 0; round < rounds; ++round) {
        walk(levels, kZoomIn);
        walk(levels, kZoomOut);
    }
    double slowest = 0;
    for (const auto& [percent, times] : steps) {
        std::printf("zoom to %3d%% %6.1f\n", percent, Median(times));
        slowest = std::max(slowest, Median(times));
    }
    std::printf("slowest step %.1f, bar %.0f\n", slowest, kZoomBar);
    return slowest <= kZoomBar;
}

}  // namespace

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    const int rounds = count > 1 ? std::max(1, std::atoi(arguments[1])) : 5;
    bench::ScriptedWindow window("viewer");
    // The window's own folder is on its list already.
    const std::string folder = window.folder + "/photographs";
    if (!WritePhotographs(folder)) return 1;
    FormviewImport& viewer = OpenViewer(window, folder);
    const bool next = MeasureNext(viewer, folder, rounds);
    const bool zoom = MeasureZoom(viewer, rounds);
    return next && zoom ? 0 : 1;
}
