#pragma once

#include "desktop/Clipboard.h"
#include "desktop/Clock.h"
#include "desktop/LinkOpener.h"
#include "desktop/Prompts.h"
#include "desktop/RandomSource.h"
#include "desktop/Screen.h"
#include "desktop/Shell.h"
#include "mainwindow/Help.h"

namespace tessara {

/// What the desktop around the window offers; real or scripted.
struct DesktopServices {
    Prompts& prompts;
    Shell& shell;
    Clipboard& clipboard;
    Screen& screen;
    Clock& clock;
    RandomSource& random;
    LinkOpener& links;
    HelpViewer& help;
};

/// A desktop that follows a script.
struct ScriptedServices {
    ScriptedPrompts prompts;
    ScriptedShell shell;
    ScriptedClipboard clipboard;
    ScriptedScreen screen;
    ScriptedClock clock;
    ScriptedRandom random;
    ScriptedLinkOpener links;
    ScriptedHelpViewer help;

    DesktopServices All() { return With(prompts, clipboard, clock); }
    /// With these in the places of its own.
    DesktopServices With(Prompts& ofPrompts, Clipboard& ofClipboard, Clock& ofClock) {
        return {ofPrompts, shell, ofClipboard, screen, ofClock, random, links, help};
    }
};

}  // namespace tessara
