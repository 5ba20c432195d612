#pragma once

#include <string>

#include "core/Result.h"

namespace tessara {

/// Loads one of the program's own modules ("tessara_desktop") and finds the function that it exports. Looked
/// for beside the executable first, then where an installation puts it. A loaded module stays until the
/// process ends.
Result<void*> LoadModuleFunction(const std::string& module, const char* function);

}  // namespace tessara
