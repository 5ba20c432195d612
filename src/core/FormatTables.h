#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace tessara {

/// How many extensions are read and written.
inline constexpr std::size_t kImportFormatCount = 25;
inline constexpr std::size_t kExportFormatCount = 10;

/// One format as the user sees it: its extension in capitals, and whether it is switched on.
struct FormatRow {
    std::string Ext;
    bool Enabled = false;
};

/// The formats that are read and written, in the fixed orders that the settings file's flags follow.
struct FormatTables {
    std::array<FormatRow, kImportFormatCount> ImportFormats;
    std::array<FormatRow, kExportFormatCount> ExportFormats;

    /// Fills `Ext` of every row, in capitals; `Enabled` stays.
    void SetFormats();
    /// Upper-cases `ext` in place and tells whether its import row is switched on; False where there is no
    /// such row.
    void FindImpValid(std::string& ext, bool& enabled) const;
};

}  // namespace tessara
