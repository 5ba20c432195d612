#pragma once

#include <QApplication>
#include <memory>

#include "desktop/ClipboardCarrier.h"
#include "desktop/DesktopScreen.h"
#include "desktop/DesktopShell.h"
#include "mainwindow/DesktopServices.h"
#include "settings/Session.h"

namespace tessara {

/// The desktop that the application runs on; who answers questions and shows the help is left open.
struct RealServices {
    DesktopShell shell;
    ClipboardCarrier clipboard{*QApplication::clipboard()};
    std::unique_ptr<Screen> screen = MakeScreen();
    SystemClock clock;
    SystemRandom random;
    DesktopLinkOpener links;

    DesktopServices With(Prompts& prompts, HelpViewer& help) {
        return {prompts, shell, clipboard, *screen, clock, random, links, help};
    }
    /// The values of a new process whose private files are in `appPath`.
    Session NewSession(const std::string& appPath) {
        Session session;
        session.AppPath = appPath;
        session.DesktopPath = shell.SpecialFolderPath(SpecialFolder::Desktop);
        session.DocumentsPath = shell.SpecialFolderPath(SpecialFolder::Documents);
        return session;
    }
};

}  // namespace tessara
