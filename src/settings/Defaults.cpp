#include "settings/Defaults.h"

#include "settings/SettingsFile.h"

namespace tessara {
namespace {

template <typename Rows, typename Flags>
void TakeFlags(Rows& rows, const Flags& flags) {
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i].Enabled = flags[i];
}

/// The rows of formats that are not written on a first run stay as they are: dialogs show them switched on.
void SetFirstRun(Session& session) {
    session.ConvertOptions = ConvertOptions::FirstRun(session.AppPath);
    session.SlideOptions = {};
    TakeFlags(session.formats.ImportFormats, session.ConvertOptions.ImportOn);
    for (std::size_t i = 0; i < session.formats.ExportFormats.size(); ++i)
        if (session.ConvertOptions.ExportOn[i]) session.formats.ExportFormats[i].Enabled = true;
}

std::string ShownFolder(const std::string& field, const std::string& appPath) {
    return HasTerminator(field) ? FolderOf(field) : appPath;
}

template <typename Value, typename Shown>
void Take(Value& value, const Shown& shown, bool& changed) {
    if (value == shown) return;
    value = static_cast<Value>(shown);
    changed = true;
}

/// An option of which none is on leaves the value as it is.
void TakeIndex(std::uint8_t& value, int index, bool& changed) {
    if (index >= 0) Take(value, index, changed);
}

}  // namespace

OptionsControls ControlsOf(const ConvertOptions& options, const std::string& appPath) {
    OptionsControls controls;
    controls.OptionList = options.ListAllFiles ? 0 : options.ListImportOnly ? 2 : 1;
    controls.CheckIn = options.ImportOn;
    controls.OptionPic = options.ConvertScope;
    controls.CheckOut = options.ExportOn;
    controls.TextOutFolder = ShownFolder(options.TargetFolder, appPath);
    controls.TextInFolder = ShownFolder(options.StartFolder, appPath);
    controls.OptionOv = options.OverwriteMode;
    return controls;
}

void Getdefault(Session& session, DefaultsHost& host, bool readFile,
                const std::function<void()>& SaveGefault00) {
    const SettingsFile file(session.PrivateFile(kSettingsFileName));
    if (readFile && file.HasContents() && file.Read(session.ConvertOptions)) {
        TakeFlags(session.formats.ImportFormats, session.ConvertOptions.ImportOn);
        TakeFlags(session.formats.ExportFormats, session.ConvertOptions.ExportOn);
        const std::string start = FolderOf(session.ConvertOptions.StartFolder);
        host.EnterFolder(start.empty() ? session.AppPath : start);
    } else if (readFile) {
        SetFirstRun(session);
        host.EnterFolder(session.AppPath);
        // A file that is there but cannot be read is left alone.
        if (!file.HasContents()) {
            Ignore(file.Write(session.ConvertOptions));
            Ignore(file.Write(session.SlideOptions));
        }
    }
    if (!session.Starting && SaveGefault00) SaveGefault00();
    host.PrintNote();
}

void Savedefault(Session& session, DefaultsHost& host, const OptionsControls& controls,
                 const ConvertOptions& before, bool writeFile, bool& changed) {
    ConvertOptions& options = session.ConvertOptions;
    options.ListAllFiles = controls.OptionList == 0;
    changed |= options.ListAllFiles != before.ListAllFiles;
    Take(options.ImportOn, controls.CheckIn, changed);
    TakeFlags(session.formats.ImportFormats, options.ImportOn);
    TakeIndex(options.ConvertScope, controls.OptionPic, changed);
    Take(options.ExportOn, controls.CheckOut, changed);
    Take(options.TargetFolder, FolderField(controls.TextOutFolder), changed);
    Take(options.StartFolder, FolderField(controls.TextInFolder), changed);
    TakeIndex(options.OverwriteMode, controls.OptionOv, changed);
    if (writeFile) Ignore(SettingsFile(session.PrivateFile(kSettingsFileName)).Write(options));
    host.PrintNote();
}

void SlideOptionsFile(Session& session, bool write) {
    const SettingsFile file(session.PrivateFile(kSettingsFileName));
    Ignore(write ? file.Write(session.SlideOptions) : file.Read(session.SlideOptions));
}

}  // namespace tessara
