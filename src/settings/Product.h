#pragma once

namespace tessara {

inline constexpr char kProductCaption[] = "Tessara Pro ";  ///< in front of what a caption goes on with
inline constexpr char kProductName[] = "Tessara Pro";
inline constexpr char kVersionText[] = "v4.0";
inline constexpr char kBuildText[] = "( Build 21102 )";

}  // namespace tessara
