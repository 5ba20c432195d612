#include "core/rastx/Quantizer.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdlib>

#include "core/rastx/Rows.h"

namespace tessara {
namespace {

constexpr std::size_t kMaximumColors = 256;
constexpr std::uint8_t kOpaqueFrom = 128;

std::uint32_t Bits(Pixel pixel) {
    return std::bit_cast<std::uint32_t>(pixel);
}
std::uint32_t Hash(Pixel pixel) {
    return Bits(pixel) * 2654435769u;
}

// ---- What colours a picture has ----

constexpr int kCellBits = 6;
constexpr std::size_t kCells = std::size_t{1} << (3 * kCellBits);

std::size_t CellOf(Pixel p) {
    constexpr int kDrop = 8 - kCellBits;
    return static_cast<std::size_t>(p.r >> kDrop) << (2 * kCellBits) |
           static_cast<std::size_t>(p.g >> kDrop) << kCellBits | static_cast<std::size_t>(p.b >> kDrop);
}

/// Counts the colours of a picture by their upper six bits, with the means of the lower two; and the colours that fill
/// areas, each by itself.
class ColorHistogram {
  public:
    ColorHistogram() : cells_(kCells), flat_(kFlatSlots) {}

    void AddRow(std::span<const Pixel> row) {
        Pixel previous = kTransparent;
        for (const Pixel pixel : row) {
            if (pixel.a == 0) continue;
            Cell& cell = cells_[CellOf(pixel)];
            ++cell.count;
            cell.b += pixel.b & 3;
            cell.g += pixel.g & 3;
            cell.r += pixel.r & 3;
            if (Bits(pixel) == Bits(previous)) AddFlat(pixel);
            previous = pixel;
        }
        
    }

    /// The colours that fill more than their share of the picture, at most `maximum`. They are taken out.
    std::vector<Pixel> TakeFlatColors(std::size_t maximum) {
        static const double kShare = getenv("SHARE") ? atof(getenv("SHARE")) : 512;
        std::uint64_t total = 0;
        for (const Cell& cell : cells_) total += cell.count;
        std::ranges::sort(flat_, std::ranges::greater{}, &Flat::count);
        std::vector<Pixel> colors;
        for (const Flat& flat : flat_) {
            if (colors.size() == maximum || flat.count * kShare <= static_cast<double>(total)) break;
            colors.push_back(flat.color);
            Cell& cell = cells_[CellOf(flat.color)];
            cell.count -= flat.count;
            cell.b -= flat.count * (flat.color.b & 3u);
            cell.g -= flat.count * (flat.color.g & 3u);
            cell.r -= flat.count * (flat.color.r & 3u);
        }
        return colors;
    }

    std::vector<WeightedColor> Colors() const {
        std::vector<WeightedColor> colors;
        for (std::size_t i = 0; i < kCells; ++i) {
            const Cell& cell = cells_[i];
            if (cell.count == 0) continue;
            const auto weight = static_cast<float>(cell.count);
            const auto channel = [&](std::size_t plane, std::uint32_t low) {
                return static_cast<float>(plane % 64 * 4) + static_cast<float>(low) / weight;
            };
            colors.push_back(
                {{channel(i, cell.b), channel(i >> 6, cell.g), channel(i >> 12, cell.r)}, weight});
        }
        return colors;
    }

  private:
    struct Cell {
        std::uint32_t count = 0, b = 0, g = 0, r = 0;
    };
    struct Flat {
        Pixel color;
        std::uint32_t count = 0;
    };
    static constexpr int kFlatBits = 12;
    static constexpr std::size_t kFlatSlots = std::size_t{1} << kFlatBits;

    // Of the colours that share a slot the one that holds the majority survives (Boyer and Moore).
    void AddFlat(Pixel color) {
        Flat& flat = flat_[Hash(color) >> (32 - kFlatBits)];
        if (Bits(flat.color) == Bits(color)) {
            ++flat.count;
        } else if (flat.count == 0) {
            flat = {color, 1};
        } else {
            --flat.count;
        }
    }

    std::vector<Cell> cells_;
    std::vector<Flat> flat_;
};

}  // namespace

// ---- Exact colours ----

std::size_t Quantizer::ExactColors::SlotOf(Pixel color) const {
    std::size_t slot = Hash(color) >> 22;
    while (slots_[slot] != 0 && Bits(colors_[static_cast<std::size_t>(slots_[slot] - 1)]) != Bits(color))
        slot = (slot + 1) % kSlots;
    return slot;
}

int Quantizer::ExactColors::Find(Pixel color) const {
    return slots_[SlotOf(color)] - 1;
}

bool Quantizer::ExactColors::Add(Pixel color, std::size_t maximum) {
    const std::size_t slot = SlotOf(color);
    if (slots_[slot] != 0) return true;
    if (colors_.size() == maximum) return false;
    colors_.push_back(color);
    slots_[slot] = static_cast<std::int16_t>(colors_.size());
    return true;
}

// ---- The quantizer ----

Quantizer::Quantizer(const Picture& picture, std::optional<ColorNumber> transparent)
    : picture_(picture), mayBeTransparent_(picture.HasAlpha() || transparent), diffusion_(picture.Width()) {
    if (transparent) transparentColor_ = PixelFromColor(*transparent);
    if (mayBeTransparent_) prepared_.resize(static_cast<std::size_t>(picture.Width()));
    exact_ = CollectExactColors();
    if (!exact_) ChooseColors();
}

/// The pixels of a row composed on white; those that are to be transparent have alpha 0.
std::span<const Pixel> Quantizer::PreparedRow(int y) {
    const auto row = picture_.Row(y);
    if (!mayBeTransparent_) return row;
    FlattenRow(row, kWhite, prepared_);
    for (std::size_t x = 0; x < row.size(); ++x)
        if (row[x].a < kOpaqueFrom || prepared_[x] == transparentColor_) prepared_[x] = kTransparent;
    return prepared_;
}

/// Whether the colours of the picture, and a transparent one where it occurs, fit into the palette.
bool Quantizer::CollectExactColors() {
    bool transparent = false;
    Pixel previous = kTransparent;
    for (int y = 0; y < picture_.Height(); ++y) {
        for (const Pixel pixel : PreparedRow(y)) {
            if (pixel.a == 0) {
                transparent = true;
            } else if (Bits(pixel) != Bits(previous)) {
                if (!exactColors_.Add(pixel, kMaximumColors)) return false;
                previous = pixel;
            }
        }
    }
    palette_.assign(exactColors_.Colors().begin(), exactColors_.Colors().end());
    if (!transparent) return true;
    if (palette_.size() == kMaximumColors) return false;
    transparentIndex_ = static_cast<std::uint8_t>(palette_.size());
    palette_.push_back(transparentColor_.value_or(kWhite));
    return true;
}

void Quantizer::ChooseColors() {
    ColorHistogram histogram;
    for (int y = 0; y < picture_.Height(); ++y) histogram.AddRow(PreparedRow(y));
    const std::size_t size = kMaximumColors - (mayBeTransparent_ ? 1 : 0);
    static const int kFlatMax = getenv("FLATMAX") ? atoi(getenv("FLATMAX")) : 128;
    const std::vector<Pixel> flat = histogram.TakeFlatColors(kFlatMax);
    exactColors_ = {};
    for (const Pixel color : flat) exactColors_.Add(color, kMaximumColors);

    std::vector<WeightedColor> colors = histogram.Colors();
    palette_ = ChoosePalette(colors, flat, size);
    nearest_.emplace(palette_);
    cells_.resize(kCells);
    if (mayBeTransparent_) {
        transparentIndex_ = static_cast<std::uint8_t>(palette_.size());
        palette_.push_back(transparentColor_.value_or(kWhite));
    }
}

void Quantizer::NextRow(std::span<std::uint8_t> indexes) {
    assert(nextRow_ < picture_.Height() && indexes.size() == static_cast<std::size_t>(picture_.Width()));
    const auto row = PreparedRow(nextRow_++);
    if (exact_)
        MapRow(row, indexes);
    else
        DiffuseRow(row, indexes);
}

void Quantizer::MapRow(std::span<const Pixel> row, std::span<std::uint8_t> indexes) const {
    Pixel previous = kTransparent;
    std::uint8_t index = transparentIndex_.value_or(0);
    for (std::size_t x = 0; x < row.size(); ++x) {
        if (Bits(row[x]) != Bits(previous)) {
            previous = row[x];
            index = previous.a == 0 ? *transparentIndex_ : static_cast<std::uint8_t>(exactColors_.Find(previous));
        }
        indexes[x] = index;
    }
}

/// The nearest colour to the middle of the cell that holds the given one.
std::uint8_t Quantizer::NearestIndex(int b, int g, int r) {
    static const int mode = getenv("NEAR") ? atoi(getenv("NEAR")) : 6;
    if (mode == 8) return nearest_->Find(b, g, r);
    if (mode == 5) return nearest_->Find((b & 0xf8) + 4, (g & 0xf8) + 4, (r & 0xf8) + 4);
    constexpr int kDrop = 8 - kCellBits;
    std::uint16_t& cell = cells_[static_cast<std::size_t>((r >> kDrop) << (2 * kCellBits) | (g >> kDrop) << kCellBits |
                                                          (b >> kDrop))];
    if (cell == 0) {
        const auto middle = [](int value) { return (value & ~3) + 2; };
        cell = static_cast<std::uint16_t>(nearest_->Find(middle(b), middle(g), middle(r)) + 1);
    }
    return static_cast<std::uint8_t>(cell - 1);
}

void Quantizer::DiffuseRow(std::span<const Pixel> row, std::span<std::uint8_t> indexes) {
    static const int clampMode = getenv("CLAMP") ? atoi(getenv("CLAMP")) : 0;
    const auto same = [&](std::size_t x, std::size_t y) { return y < row.size() && Bits(row[x]) == Bits(row[y]); };
    diffusion_.NextRow([&](int column, ColorError sixteenths) -> ColorError {
        const auto x = static_cast<std::size_t>(column);
        const Pixel pixel = row[x];
        if (pixel.a == 0) {
            indexes[x] = *transparentIndex_;
            return {};
        }
        // A flat area of a colour that the palette holds takes no error from outside, and hands none on.
        if (same(x, x - 1) || same(x, x + 1)) {
            const int flat = exactColors_.Find(pixel);
            if (flat >= 0) {
                indexes[x] = static_cast<std::uint8_t>(flat);
                return {};
            }
        }
        int b = pixel.b + ((sixteenths.b + 8) >> 4);
        int g = pixel.g + ((sixteenths.g + 8) >> 4);
        int r = pixel.r + ((sixteenths.r + 8) >> 4);
        const int cb = std::clamp(b, 0, 255), cg = std::clamp(g, 0, 255), cr = std::clamp(r, 0, 255);
        if (clampMode == 0) b = cb, g = cg, r = cr;
        const std::uint8_t index = NearestIndex(cb, cg, cr);
        indexes[x] = index;
        const Pixel chosen = palette_[index];
        if (clampMode > 1) {
            const auto lim = [&](int e) { return std::clamp(e, -clampMode, clampMode); };
            return {lim(b - chosen.b), lim(g - chosen.g), lim(r - chosen.r)};
        }
        return {b - chosen.b, g - chosen.g, r - chosen.r};
    });
}

}  // namespace tessara
