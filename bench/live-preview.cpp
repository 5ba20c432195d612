// How long the window takes to answer a step of a slider of the effect dialog while "Apply when slider being
// dragged" is checked, for a photograph of two megapixels: the undo file, the effect and the repainted pane,
// in milliseconds.
//
//     QT_QPA_PLATFORM=offscreen tessara_bench_live_preview [ROUNDS]
//
// "first" is the step that takes the snapshot, "next" one of those that follow. Each is the median of its
// rounds, at the slider position that takes longest. Ends with 1 where an effect misses its bar.

#include <QApplication>
#include <QCheckBox>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/PhotoLike.h"
#include "bench/ScriptedWindow.h"
#include "edit/EffectCatalogue.h"

namespace {

using namespace tessara;
using bench::Median, bench::Milliseconds;

constexpr int kWidth = 1920, kHeight = 1080;
constexpr double kPointBar = 50, kOtherBar = 120;  ///< milliseconds
/// The effects whose pixels depend on no other pixel.
constexpr int kPointEffects[] = {1, 19, 20, 21, 22, 23, 24, 25, 28, 30, 117, 200, 204, 205, 230, 231};

struct Window : bench::ScriptedWindow {
    Window() : ScriptedWindow("live-preview") {
        form.rastx1(0).rastx().SetImage(bench::PhotoLike(kWidth, kHeight));
        form.Setvalid(true);
    }
};

struct Times {
    double first = 0, next = 0;
};

template <typename Control>
Control& Find(const QObject& parent, const char* name) {
    return *parent.findChild<Control*>(QString::fromLatin1(name));
}

/// Drags the last slider of the dialog on screen to the end where the effect does most; the others are there.
Times DragSlider(Window& window, const QWidget& dialog) {
    std::vector<ValueSlider*> sliders;
    for (auto* slider : dialog.findChildren<ValueSlider*>())
        if (slider->isVisible()) sliders.push_back(slider);
    ValueSlider& last = *sliders.back();
    for (ValueSlider* slider : sliders) slider->setValue(slider->maximum());
    last.setValue(last.maximum() - 2);
    Find<QCheckBox>(dialog, "CheckDrag").setChecked(true);
    QApplication::processEvents();
    last.setSliderDown(true);
    const auto step = [&](int position) {
        return Milliseconds([&] {
            last.setSliderPosition(position);
            QApplication::processEvents();
        });
    };
    Times times;
    times.next = step(last.maximum() - 1);
    // With nothing to undo the step begins with a snapshot.
    window.form.UndoRefresh("KILL");
    Find<QPushButton>(dialog, "OKButton(2)").setEnabled(false);
    times.first = step(last.maximum());
    return times;
}

Times Round(Window& window, const EffectEntry& entry) {
    window.form.UndoRefresh("KILL");
    window.session.ExportChanged = false;
    window.Choose("mEdit", 3);
    for (int i = 0; i < 2; ++i) window.Choose("mEffects", 4);  // a history, and the picture as it was
    QApplication::processEvents();
    Times times;
    QTimer::singleShot(0, qApp, [&] {
        QWidget* const dialog = QApplication::activeModalWidget();
        times = DragSlider(window, *dialog);
        dialog->close();
    });
    window.Choose(std::string(entry.array), entry.index);
    return times;
}

/// Whether the effect keeps to its bar.
bool Measure(Window& window, const EffectEntry& entry, int rounds) {
    std::vector<double> first, next;
    for (int i = 0; i < rounds; ++i) {
        const Times times = Round(window, entry);
        first.push_back(times.first);
        next.push_back(times.next);
    }
    const double bar =
        std::ranges::find(kPointEffects, entry.code) != std::end(kPointEffects) ? kPointBar : kOtherBar;
    const bool kept = std::max(Median(first), Median(next)) <= bar;
    std::printf("%4d  %-20s %7.1f %7.1f   %3.0f%s\n", entry.code, EffectCaptionOf(entry.caption).c_str(),
                Median(first), Median(next), bar, kept ? "" : "  MISSED");
    return kept;
}

}  // namespace

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    const int rounds = count > 1 ? std::max(1, std::atoi(arguments[1])) : 5;
    Window window;
    bool kept = true;
    std::puts("code  effect                 first    next   bar");
    for (const EffectEntry& entry : EffectEntries())
        if (entry.kind == EffectKind::Dialog && entry.visible) kept = Measure(window, entry, rounds) && kept;
    return kept ? 0 : 1;
}
