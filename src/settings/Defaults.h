#pragma once

#include <array>
#include <functional>
#include <string>

#include "settings/Session.h"

namespace tessara {

/// What the options dialog shows of the stored options.
struct OptionsControls {
    int OptionList = 1;  ///< 0 all files, 1 all graphics, 2 graphics for import
    std::array<bool, kImportFormatCount> CheckIn{};
    int OptionPic = 0;  ///< as ConvertScope; -1 for none
    std::array<bool, kExportFormatCount> CheckOut{};
    std::string TextOutFolder;
    std::string TextInFolder;
    int OptionOv = 0;  ///< as OverwriteMode; -1 for none
};

/// A folder field without a terminator shows as the program's folder.
OptionsControls ControlsOf(const ConvertOptions& options, const std::string& appPath);

/// What reading and keeping the options needs of the window.
class DefaultsHost {
  public:
    virtual ~DefaultsHost() = default;
    /// Enters a folder as the start does: path box, tree and list.
    virtual void EnterFolder(const std::string& folder) = 0;
    /// Rewrites the line of current options.
    virtual void PrintNote() = 0;
};

/// Reads the options from the settings file, or makes them and the file on a first run, and enters the start
/// folder. Without `readFile` only what shows the options is brought up to date; after the start that is also
/// the options dialog, through `SaveGefault00`.
void Getdefault(Session& session, DefaultsHost& host, bool readFile,
                const std::function<void()>& SaveGefault00 = {});

/// Takes the options from the dialog, and writes them where `writeFile` says so. `changed` becomes true where
/// a control differs from what was held: `before` for the list mode, which follows its control at once.
void Savedefault(Session& session, DefaultsHost& host, const OptionsControls& controls,
                 const ConvertOptions& before, bool writeFile, bool& changed);

/// Reads or writes the options of slide shows.
void SlideOptionsFile(Session& session, bool write);

}  // namespace tessara
