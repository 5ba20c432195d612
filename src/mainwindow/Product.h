#pragma once

#include <cstdint>

namespace tessara {

constexpr char kProductCaption[] = "Tessara Pro ";  ///< in front of what a caption goes on with
constexpr char kProductName[] = "Tessara Pro";
constexpr char kVersionText[] = "v4.0";
constexpr std::uint8_t kVersion = 40;
constexpr char kBuildText[] = "( Build 21102 )";

}  // namespace tessara
