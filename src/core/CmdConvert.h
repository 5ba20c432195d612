#pragma once

#include <string>
#include <string_view>

namespace tessara {

/// Carries out a whole command line, `[-O ]import-path,export-path`, without a window: converts one file, or
/// leaves a report with the suffix ".err.txt" in `reportFolder` (the current folder where empty) that says
/// which check failed. A conversion that fails later leaves no report. The caller ends the process.
void CmdConvert(std::string_view commandLine, const std::string& reportFolder = {});

}  // namespace tessara
