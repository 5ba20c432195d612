#pragma once

#include <memory>

#include "desktop/Screen.h"

namespace tessara {

/// The screen of the desktop that the program runs on.
std::unique_ptr<Screen> MakeScreen();

}  // namespace tessara
