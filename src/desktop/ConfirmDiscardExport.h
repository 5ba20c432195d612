#pragma once

#include "desktop/Prompts.h"

namespace tessara {

/// False where the export picture has unsaved changes, as `ExportChanged` tells, and the user would rather
/// keep them.
bool ConfirmDiscardExport(bool ExportChanged, Prompts& prompts);

}  // namespace tessara
