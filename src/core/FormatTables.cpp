#include "core/FormatTables.h"

#include <algorithm>

#include "core/Text.h"
#include "core/rastx/Codec.h"

namespace tessara {

static_assert(decltype(ImportFormatTable())::extent == kImportFormatCount);
static_assert(decltype(ExportFormatTable())::extent == kExportFormatCount);

void FormatTables::SetFormats() {
    const auto fill = [](auto& rows, const auto& table) {
        for (std::size_t i = 0; i < rows.size(); ++i) rows[i].Ext = UpperCase(table[i].label);
    };
    fill(ImportFormats, ImportFormatTable());
    fill(ExportFormats, ExportFormatTable());
}

void FormatTables::FindImpValid(std::string& ext, bool& enabled) const {
    ext = UpperCase(ext);
    const auto row = std::ranges::find(ImportFormats, ext, &FormatRow::Ext);
    enabled = row != ImportFormats.end() && row->Enabled;
}

}  // namespace tessara
