#include <QApplication>
#include <QCloseEvent>
#include <QScreen>
#include <filesystem>

#include "core/SystemVersion.h"
#include "desktop/Twips.h"
#include "edit/IconBitmap.h"
#include "mainwindow/MainForm.h"
#include "mainwindow/SplashForm.h"
#include "settings/Defaults.h"
#include "settings/Product.h"

// The load step of the main window, and its end.

namespace tessara {
namespace {

constexpr int kScreenMargin = 375 / kTwipsPerPixel;  ///< pixels of the screen's height that stay free

constexpr char kSmallFontsWarning[] =
    "This programme works in the Small Fonts mode properly, please us the following steps to change your "
    "font mode:\n\n"
    "Control Panel -> Display -> Settings -> Advanced -> General -> Small Fonts\n\n"
    "Continue anyway?";
constexpr char kNormalDpiWarning[] =
    "This programme works in the Normal DPI mode(96 DPI) properly, please us the following steps to change "
    "your DPI mode:\n\n"
    "Control Panel -> Display -> Settings -> Advanced -> General -> Normal size(96 DPI) -> Restart\n\n"
    "Continue anyway?";
constexpr char kStartFolderBad[] =
    "Cannot switch to the Start Folder!\n\nPlease change the Start Folder to fix this issue.";

bool HasDesignResolution(const QScreen& screen) {
    const auto isDesigned = [](qreal dotsPerInch) {
        return qRound(kTwipsPerInch / dotsPerInch) == kTwipsPerPixel;
    };
    return isDesigned(screen.logicalDotsPerInchX()) && isDesigned(screen.logicalDotsPerInchY());
}

}  // namespace

bool MainForm::DisplayAccepted() {
    if (HasDesignResolution(*screen())) return true;
    return services_.prompts.Ask({IsXP(session_.DesktopPath) ? kNormalDpiWarning : kSmallFontsWarning,
                                  PromptButtons::YesNo, PromptIcon::Information}) == Answer::Yes;
}

bool MainForm::Form_Load() {
    SetObjFalse();
    SetCaption(session_.ProgramTitle);
    SetImageCommandsEnabled(false);
    if (!DisplayAccepted()) return false;
    {
        SplashForm splash;
        splash.LabelVersion()->setText(QString::fromLatin1(kVersionText));
        splash.LabelBuild()->setText(QString::fromLatin1(kBuildText));
        splash.ShowAtOnce();
        PlaceOnScreen();
        ClearPositionLabels();
        box_->SetComboPath();
        SetFaceS(true);
        for (FormatRow& row : session_.formats.ImportFormats) row.Enabled = true;
        for (FormatRow& row : session_.formats.ExportFormats) row.Enabled = true;
        session_.formats.SetFormats();
        box_->SaveGetComBox(true);
        undo_->UndoRefresh("KILL");
        // The first folder that is entered is the first that is listed: before the options are read nobody
        // knows which files to list, and a list of the same folder would not be made anew.
        Getdefault(session_, *this, true);
        if (session_.StartFolderBad) Ignore(browser_->FileViewFile.SetPath(session_.AppPath));
        SetmnFile();
        SlideOptionsFile(session_, false);
        CheckPaste();
    }
    session_.Starting = false;
    show();
    SetFaceS();
    if (session_.StartFolderBad) {
        services_.prompts.Ask({kStartFolderBad});
        MenuClick("mnOptions", MainMenu::kHead);
    }
    return true;
}

void MainForm::PlaceOnScreen() {
    const QRect area = screen()->availableGeometry();
    const QRect whole = screen()->geometry();
    // The frame that the desktop puts around begins at the corner, not what is inside of it.
    move(area.topLeft());
    resize(QSize(whole.width(), whole.height() - kScreenMargin).boundedTo(area.size()));
    // The layout works before the window is shown.
    client_->resize(width(), height() - menuBar()->sizeHint().height());
}

void MainForm::EnterFolder(const std::string& folder) {
    Ignore(browser_->FileViewFile.SetPath(folder));
    box_->SetText(folder);
    Ignore(browser_->FileViewFile.Refresh());
    box_->ImageCobomKeyup(false);
}

bool MainForm::Form_Unload() {
    if (!ConfirmDiscardExport(session_.ExportChanged, services_.prompts)) return false;
    box_->SaveGetComBox(false);
    help_.CloseHelp();
    std::error_code ignored;
    std::filesystem::remove(session_.PrivateFile(kScratchIcon), ignored);
    return true;
}

void MainForm::closeEvent(QCloseEvent* event) {
    event->setAccepted(Form_Unload());
    // Viewers that are still open end with it.
    if (event->isAccepted()) QApplication::quit();
}

}  // namespace tessara
