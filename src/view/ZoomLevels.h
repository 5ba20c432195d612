#pragma once

#include <array>
#include <cstddef>

#include "core/Numbers.h"

namespace tessara {

/// The steps of the viewer's zoom.
class ZoomLevels {
  public:
    /// By the level plus 8. The entries behind the highest level are never reached.
    static constexpr std::array<float, 17> ZoomTable = {0.05f, 0.07f, 0.1f, 0.15f, 0.2f, 0.3f, 0.5f, 0.7f, 1,
                                                        1.5f,  2,     3,    5,     7,    10,   20,   30};
    static constexpr int kLowest = -8;
    static constexpr int kHighest = 3;

    /// 0 is 100 %.
    int ZoomLevel() const { return ZoomLevel_; }
    bool CanZoomOut() const { return ZoomLevel_ > kLowest; }
    bool CanZoomIn() const { return ZoomLevel_ < kHighest; }
    void ZoomOut() { ZoomLevel_ -= CanZoomOut() ? 1 : 0; }
    void ZoomIn() { ZoomLevel_ += CanZoomIn() ? 1 : 0; }

    float Factor() const { return ZoomTable[static_cast<std::size_t>(ZoomLevel_ - kLowest)]; }
    int Percent() const { return RoundToEven(Factor() * 100); }
    /// A side of the picture, given at 100 %, at this level. In single precision, as the table is: 250 at 5 %
    /// is 12.5 then, and the even number 12.
    int Scaled(int side) const { return RoundToEven(static_cast<float>(side) * Factor()); }

  private:
    int ZoomLevel_ = 0;
};

}  // namespace tessara
