#include <cstdio>
#include <cstdlib>
#include <optional>

#include "artwork/Artwork.h"
#include "core/HeldSignals.h"
#include "core/ProgramFolders.h"
#include "desktop/AppFolder.h"
#include "desktop/Application.h"
#include "desktop/QtPrompts.h"
#include "desktop/SingleInstance.h"
#include "desktop/VisibleFocus.h"
#include "mainwindow/HelpWindow.h"
#include "mainwindow/MainForm.h"
#include "mainwindow/RealServices.h"

namespace tessara {
namespace {

void SetUpApplication() {
    QApplication::setApplicationName(QStringLiteral("tessara"));
    QApplication::setDesktopFileName(QStringLiteral("tessara"));
    QApplication::setWindowIcon(Artwork("tessara"));
    qApp->installEventFilter(new VisibleFocus(qApp));
}

/// Without one the toolkit would end the process as if it had crashed.
bool HasDisplay() {
    return std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY") || std::getenv("QT_QPA_PLATFORM");
}

/// The help's window, made when it is first asked for: laying out its pages would take a good part of the
/// start.
class HelpWhenWanted final : public HelpViewer {
  public:
    void DisplayIndex(const std::string& page) override { Window().DisplayIndex(page); }
    void DisplayContents(const std::string& page) override { Window().DisplayContents(page); }
    void DisplayTopic(const std::string& topic) override { Window().DisplayTopic(topic); }
    void CloseHelp() override {
        if (window_ != nullptr) window_->CloseHelp();
    }

  private:
    HelpWindow& Window() {
        if (window_ == nullptr) window_ = std::make_unique<HelpWindow>(HelpFolder());
        return *window_;
    }

    std::unique_ptr<HelpWindow> window_;
};

/// The window and all that it stands on, until the window is closed.
void RunDesktop() {
    RealServices desktop;
    Session session = desktop.NewSession(AppFolder());
    QtPrompts prompts;
    HelpWhenWanted help;
    MainForm form(session, desktop.With(prompts, help));
    if (form.Form_Load()) QApplication::exec();
}

}  // namespace
}  // namespace tessara

/// The entry of the desktop module.
extern "C" __attribute__((visibility("default"))) int TessaraDesktopMain(int count, char** arguments) {
    if (!tessara::HasDisplay()) {
        std::fputs("The window cannot be opened: there is no display.\n", stderr);
        return EXIT_FAILURE;
    }
    // The toolkit's own threads leave signals to this one, which makes them wait while it saves.
    std::optional<tessara::HeldSignals> held(std::in_place);
    const tessara::Application application(count, arguments);
    held.reset();
    const tessara::SingleInstance instance(tessara::InstanceLockFile());
    if (!instance.IsFirst()) return EXIT_SUCCESS;
    tessara::SetUpApplication();
    tessara::RunDesktop();
    return EXIT_SUCCESS;
}
