#pragma once

#include <array>
#include <string>

namespace tessara {

/// One format as the user sees it: its extension in capitals, and whether it is switched on.
struct FormatRow {
    std::string Ext;
    bool Enabled = false;
};

/// The formats that are read and written, in the fixed orders that the settings file's flags follow.
struct FormatTables {
    std::array<FormatRow, 25> ImportFormats;
    std::array<FormatRow, 10> ExportFormats;

    /// Fills `Ext` of every row, in capitals; `Enabled` stays.
    void SetFormats();
    /// Upper-cases `ext` in place and tells whether its import row is switched on; False where there is no
    /// such row.
    void FindImpValid(std::string& ext, bool& enabled) const;
};

}  // namespace tessara
