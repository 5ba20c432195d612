#pragma once

#include <string>

namespace tessara {

/// The base of the private files, without a separator at its end: `executableFolder`, or `userFolder`, which
/// is made then, where the program was installed for everybody and that folder is not for us to write.
std::string ProgramFolder(const std::string& executableFolder, const std::string& userFolder);

}  // namespace tessara
