#pragma once

#include <algorithm>
#include <vector>

#include "core/rastx/effects/Kernel.h"

/// What stands once for the effects that compute a pixel from the 3x3 window around it.
namespace tessara::effects {

/// A row with one more pixel at either end, a copy of the outermost.
class PaddedRow {
  public:
    explicit PaddedRow(std::span<const Pixel> row) : pixels_(row.size() + 2) { Load(row); }
    void Load(std::span<const Pixel> row);
    std::span<const Pixel> Pixels() const { return std::span(pixels_).subspan(1, pixels_.size() - 2); }
    const std::uint8_t* Bytes() const { return reinterpret_cast<const std::uint8_t*>(pixels_.data() + 1); }

  private:
    std::vector<Pixel> pixels_;
};

/// Three rows as bytes; each may be read one pixel beyond either end.
struct Neighbours {
    const std::uint8_t* above;
    const std::uint8_t* here;
    const std::uint8_t* below;
};

/// Gives the bytes of alpha in `row` the values of `alpha`.
void KeepAlpha(const std::uint8_t* alpha, std::span<Pixel> row);

/// The windows around pixels that have transparent neighbours, one beside the other in three rows. What is
/// transparent has no colour that anyone sees; so each neighbour counts by its alpha, and what is missing is
/// the colour of the pixel in the middle.
class AlphaWindows {
  public:
    AlphaWindows(const Neighbours& rows, std::span<Pixel> out);

    /// Takes the next windows; none are left where it returns false.
    bool Next();
    Neighbours Rows() const;
    std::size_t Length() const { return 12 * count_; }
    std::uint8_t* Out() { return BytesOf(std::span<Pixel>(out_)); }
    /// Gives the pixels of the windows what the rule made of them.
    void Put() const;

  private:
    static constexpr std::size_t kMost = 64;

    void Add(std::size_t column);

    Neighbours source_;
    std::span<Pixel> target_;
    std::vector<std::uint8_t> concerned_;  ///< for each column
    std::size_t next_ = 0;
    std::size_t count_ = 0;
    std::size_t columns_[kMost];
    Pixel rows_[3][3 * kMost + 2];
    Pixel out_[3 * kMost];
};

/// Neighbourhood operations: `rule(neighbours, length, out)` computes `length` bytes of one row from the 3x3
/// windows around them; beyond the border the outermost pixels go on. What the rule writes to alpha is
/// dropped. Transparent neighbours count by their alpha.
template <typename Rule>
Picture ChangeByNeighbours(Picture picture, const EffectRun& run, const Rule& rule) {
    const int width = picture.Width();
    const int height = picture.Height();
    const bool alpha = picture.HasAlpha();
    Canvas canvas(std::move(picture));
    // In place a band would read rows that its neighbours have overwritten; so those are put aside first.
    const int bands = std::clamp(height / RowsPerThread(width), 1, std::max(1, run.threads));
    const auto edge = [=](int band) { return static_cast<int>(std::int64_t{height} * band / bands); };
    std::vector<PaddedRow> outer;
    for (int band = 0; band < bands; ++band) {
        outer.emplace_back(canvas.Source(std::max(edge(band) - 1, 0)));
        outer.emplace_back(canvas.Source(std::min(edge(band + 1), height - 1)));
    }
    ParallelRows(bands, bands, 1, [&](int band, int) {
        PaddedRow above = outer[static_cast<std::size_t>(2 * band)];
        PaddedRow here(canvas.Source(edge(band)));
        PaddedRow below = here;
        for (int y = edge(band); y < edge(band + 1); ++y) {
            below.Load(y + 1 < edge(band + 1) ? canvas.Source(y + 1)
                                              : outer[static_cast<std::size_t>(2 * band + 1)].Pixels());
            const std::span<Pixel> row = canvas.Target(y);
            const Neighbours rows{above.Bytes(), here.Bytes(), below.Bytes()};
            rule(rows, 4 * row.size(), BytesOf(row));
            if (alpha) {
                for (AlphaWindows windows(rows, row); windows.Next(); windows.Put())
                    rule(windows.Rows(), windows.Length(), windows.Out());
            }
            KeepAlpha(here.Bytes(), row);
            std::swap(above, here);
            std::swap(here, below);
        }
    });
    return std::move(canvas).Take();
}

}  // namespace tessara::effects
