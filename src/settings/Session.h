#pragma once

#include <string>

#include "core/FormatTables.h"
#include "core/rastx/Picture.h"
#include "settings/ConvertOptions.h"
#include "settings/Product.h"

namespace tessara {

/// The values that live as long as the process. Made by the desktop's entry, handed to every form by
/// reference.
struct Session {
    // Folders of this run, without a separator at their ends.
    std::string AppPath;        ///< base of the private files
    std::string DesktopPath;    ///< the user's desktop folder
    std::string DocumentsPath;  ///< the user's documents folder

    /// What the captions of the window begin with.
    std::string ProgramTitle = std::string(kProductCaption) + kVersionText;

    // Options.
    FormatTables formats;
    struct ConvertOptions ConvertOptions;
    struct SlideOptions SlideOptions;
    int JpgQuality = 60;
    bool JpgProgressive = false;
    bool JpgGrayScale = false;
    int CaptureWidth = 64;   ///< pixels
    int CaptureHeight = 64;  ///< pixels
    std::string TargetName;  ///< replaces the base name of a single conversion's target where not empty
    ColorNumber TransparentColor = RGB(255, 255, 255);
    bool DontShowOptions = false;     ///< a conversion starts without the options dialog
    bool OptionsFromConvert = false;  ///< the options dialog stands before a conversion
    bool ConvertConfirmed = false;    ///< the options dialog was left by "Convert Now" or "OK"

    // The start.
    bool Starting = true;         ///< until the window is complete
    bool StartFolderBad = false;  ///< the start folder could not be entered
    bool HelpOpened = false;

    // What the panes hold.
    std::string ImagePath;             ///< full path of the file shown; empty after a paste
    bool ImageValid = false;           ///< the panes hold a picture
    bool ExportChanged = false;        ///< the export picture has changes that were not saved
    bool SelectionActive = false;      ///< a rubber band stands on the import pane
    bool SelectionViewActive = false;  ///< a rubber band stands in the image viewer
    bool ViewImportOpen = false;
    bool ViewExportOpen = false;

    // The undo store.
    int UndoPosition = 0;
    int UndoTop = 0;
    bool UndoPending = false;
    bool UndoEnabled = false;

    // The effect that was chosen last.
    int EffectCode = 0;
    int EffectMenuIndex = 0;
    std::string EffectCaption;
    std::string EffectGroup;
    /// Starts the random effects; new with every entry chosen, so that applying again gives the same picture.
    std::uint32_t EffectSeed = 0;

    bool CaptureMode = false;   ///< a screen capture runs
    bool SlideRunning = false;  ///< a slide show runs

    /// Checked rows of the file list.
    int SelectedCount = 0;
    /// A conversion job is running.
    bool Converting = false;

    std::string PrivateFile(const std::string& name) const { return AppPath + "/" + name; }
};

}  // namespace tessara
