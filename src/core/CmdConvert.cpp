#include "core/CmdConvert.h"

#include <algorithm>
#include <optional>

#include "core/Files.h"
#include "core/FormatTables.h"
#include "core/Paths.h"
#include "core/Text.h"
#include "core/rastx/Rastx.h"

namespace tessara {
namespace {

/// Quality of the JPEG files that a command line writes.
constexpr int kCommandLineQuality = 80;

struct Conversion {
    std::string importPath;
    std::string exportPath;
    bool overwrite = false;
};

/// None for a line without a comma. A further comma belongs to the export path.
std::optional<Conversion> Parse(std::string_view commandLine) {
    const std::size_t comma = commandLine.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    Conversion conversion{std::string(commandLine.substr(0, comma)),
                          std::string(commandLine.substr(comma + 1))};
    constexpr std::string_view kOverwriteFlag = "-O ";
    if (EqualIgnoringCase(commandLine.substr(0, comma).substr(0, kOverwriteFlag.size()), kOverwriteFlag)) {
        conversion.overwrite = true;
        conversion.importPath.erase(0, kOverwriteFlag.size());
    }
    TrimSpaces(conversion.importPath);
    TrimSpaces(conversion.exportPath);
    return conversion;
}

/// The extension in capitals. Only those of three and four characters are known; the dot is looked for at
/// these two places of the whole path, so that ".bmp" alone gives ".BMP", which is no format.
std::optional<std::string> TakeExtension(std::string_view path) {
    const std::string tail = UpperCase(path.substr(path.size() - std::min<std::size_t>(path.size(), 5)));
    if (!tail.empty() && tail[0] == '.')
        return tail.substr(tail.size() - std::min<std::size_t>(tail.size(), 4));
    if (tail.size() == 5 && tail[1] == '.') return tail.substr(2);
    return std::nullopt;
}

/// The row of the export table, or the message of the first check that fails.
struct Checked {
    const ExportFormat* format = nullptr;
    std::string_view message;
};

Checked Check(const Conversion& conversion) {
    if (!IsNormalFile(conversion.importPath)) return {nullptr, "Import file not found!"};
    if (!conversion.overwrite && IsFile(conversion.exportPath))
        return {nullptr, "Export file already exists!"};
    const std::optional<std::string> importExtension = TakeExtension(conversion.importPath);
    if (!importExtension) return {nullptr, "Import file's format error!"};
    const std::optional<std::string> exportExtension = TakeExtension(conversion.exportPath);
    if (!exportExtension) return {nullptr, "Export file's format error!"};

    FormatTables formats;
    formats.SetFormats();
    if (std::ranges::find(formats.ImportFormats, *importExtension, &FormatRow::Ext) ==
        formats.ImportFormats.end())
        return {nullptr, "Import file's format isn't supported!"};
    const auto row = std::ranges::find(formats.ExportFormats, *exportExtension, &FormatRow::Ext);
    if (row == formats.ExportFormats.end()) return {nullptr, "Export file's format isn't supported!"};
    return {&ExportFormatTable()[static_cast<std::size_t>(row - formats.ExportFormats.begin())], {}};
}

void Convert(const Conversion& conversion, const ExportFormat& format) {
    Rastx pane;
    Ignore(pane.LoadImage(conversion.importPath));
    EncodeOptions options{.quality = kCommandLineQuality};
    if (format.suffix == ".ico") {
        options.transparent = true;
        options.color = RGB(255, 255, 255);
    }
    Ignore(pane.SaveAs(format, conversion.exportPath, options));
}

void WriteReport(std::string_view commandLine, const Conversion& conversion, std::string_view message,
                 const std::string& folder) {
    std::string ignored;
    std::string importName;
    std::string exportName;
    SplitPath(conversion.importPath, ignored, importName);
    SplitPath(conversion.exportPath, ignored, exportName);
    const std::string path =
        (folder.empty() ? "" : folder + "/") + importName + "-" + exportName + ".err.txt";
    const std::string text = std::string(commandLine) + "\n \n" + std::string(message) + "\n";
    Ignore(ReplaceFile(path, [&](ByteSink& sink) { return sink.Write(AsBytes(text)); }));
}

}  // namespace

void CmdConvert(std::string_view commandLine, const std::string& reportFolder) {
    const std::optional<Conversion> conversion = Parse(commandLine);
    if (!conversion) return;
    if (const Checked checked = Check(*conversion); checked.format)
        Convert(*conversion, *checked.format);
    else
        WriteReport(commandLine, *conversion, checked.message, reportFolder);
}

}  // namespace tessara
