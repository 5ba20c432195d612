#include "core/rastx/Quantizer.h"

#include <algorithm>
#include <bit>
#include <cassert>

#include "core/rastx/Rows.h"

namespace tessara {
namespace {

constexpr std::uint8_t kOpaqueFrom = 128;

// A colour that fills half the area of an average entry, in runs, gets an entry of its own; at least half of
// the palette is left for the rest.
constexpr std::uint64_t kFlatShare = 512;
constexpr std::size_t kMaximumFlatColors = 128;

// Where no mixture of the palette reaches a colour the error would grow from pixel to pixel and then smear
// over whatever comes next.
constexpr std::int16_t kErrorLimit = 24;

std::uint32_t Bits(Pixel pixel) {
    return std::bit_cast<std::uint32_t>(pixel);
}
std::uint32_t Hash(Pixel pixel) {
    return Bits(pixel) * 2654435769u;
}

// ---- What colours a picture has ----

// Colours are told apart by the upper six bits of each channel.
constexpr int kCellBits = 6;
constexpr int kCellDrop = 8 - kCellBits;
constexpr int kCellMask = (1 << kCellDrop) - 1;
constexpr std::size_t kCells = std::size_t{1} << (3 * kCellBits);

std::size_t CellOf(Pixel p) {
    return static_cast<std::size_t>(p.r >> kCellDrop) << (2 * kCellBits) |
           static_cast<std::size_t>(p.g >> kCellDrop) << kCellBits |
           static_cast<std::size_t>(p.b >> kCellDrop);
}

using Channels = Quantizer::Channels;

Channels ChannelsOf(Pixel pixel) {
    const std::uint64_t bits = Bits(pixel);
    return std::bit_cast<Channels>((bits & 0xff) | (bits & 0xff00) << 8 | (bits & 0xff0000) << 16);
}
Channels Limited(Channels channels, std::int16_t low, std::int16_t high) {
    const Channels lowest = Channels{} + low;
    const Channels highest = Channels{} + high;
    channels = channels < lowest ? lowest : channels;
    return channels > highest ? highest : channels;
}

std::size_t CellOf(Channels color) {
    const auto bits = std::bit_cast<std::uint64_t>(color >> kCellDrop);
    const auto plane = [&](int position) {
        return bits >> (16 - kCellBits) * position & ((1 << kCellBits) - 1) << (kCellBits * position);
    };
    return plane(0) | plane(1) | plane(2);
}
Pixel MiddleOf(std::size_t cell) {
    const auto channel = [&](int position) {
        const std::size_t plane = cell >> (position * kCellBits) & ((1 << kCellBits) - 1);
        return static_cast<std::uint8_t>((plane << kCellDrop) + (1 << kCellDrop) / 2);
    };
    return {channel(0), channel(1), channel(2), 255};
}

/// Counts the colours of a picture by their upper six bits, with the means of the lower two; and the colours
/// that fill areas, each by itself.
class ColorHistogram {
  public:
    ColorHistogram() : cells_(kCells), flat_(kFlatSlots) {}

    void AddRow(std::span<const Pixel> row) {
        Pixel previous = kTransparent;
        for (const Pixel pixel : row) {
            if (pixel.a == 0) continue;
            Cell& cell = cells_[CellOf(pixel)];
            ++cell.count;
            cell.b += pixel.b & kCellMask;
            cell.g += pixel.g & kCellMask;
            cell.r += pixel.r & kCellMask;
            if (Bits(pixel) == Bits(previous)) AddFlat(pixel);
            previous = pixel;
        }
    }

    /// The colours that fill more than their share of the picture, at most `maximum`. They are taken out.
    std::vector<Pixel> TakeFlatColors(std::size_t maximum) {
        std::uint64_t total = 0;
        for (const Cell& cell : cells_) total += cell.count;
        std::ranges::sort(flat_, std::ranges::greater{}, &Flat::count);
        std::vector<Pixel> colors;
        for (const Flat& flat : flat_) {
            if (colors.size() == maximum || flat.count <= total / kFlatShare) break;
            colors.push_back(flat.color);
            Cell& cell = cells_[CellOf(flat.color)];
            cell.count -= flat.count;
            cell.b -= flat.count * static_cast<std::uint32_t>(flat.color.b & kCellMask);
            cell.g -= flat.count * static_cast<std::uint32_t>(flat.color.g & kCellMask);
            cell.r -= flat.count * static_cast<std::uint32_t>(flat.color.r & kCellMask);
        }
        return colors;
    }

    std::vector<WeightedColor> Colors() const {
        std::vector<WeightedColor> colors;
        for (std::size_t i = 0; i < kCells; ++i) {
            const Cell& cell = cells_[i];
            if (cell.count == 0) continue;
            const auto weight = static_cast<float>(cell.count);
            const auto channel = [&](int position, std::uint32_t low) {
                const std::size_t plane = i >> (position * kCellBits) & ((1 << kCellBits) - 1);
                return static_cast<float>(plane << kCellDrop) + static_cast<float>(low) / weight;
            };
            colors.push_back({{channel(0, cell.b), channel(1, cell.g), channel(2, cell.r)}, weight});
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
    std::size_t slot = Hash(color) >> (32 - kSlotBits);
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
    const std::vector<Pixel> flat = histogram.TakeFlatColors(kMaximumFlatColors);
    exactColors_ = {};
    for (const Pixel color : flat) exactColors_.Add(color, kMaximumColors);

    std::vector<WeightedColor> colors = histogram.Colors();
    palette_ = ChoosePalette(colors, flat, size);
    nearest_.emplace(palette_);
    std::ranges::transform(palette_, paletteChannels_.begin(), ChannelsOf);
    nearestOfCell_.resize(kCells);
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
            index =
                previous.a == 0 ? *transparentIndex_ : static_cast<std::uint8_t>(exactColors_.Find(previous));
        }
        indexes[x] = index;
    }
}

/// The entry nearest to the middle of a colour's cell, found when it is first asked for.
inline std::uint8_t Quantizer::NearestIndex(Channels color) {
    const std::size_t cell = CellOf(color);
    std::uint16_t& entry = nearestOfCell_[cell];
    if (entry == 0) [[unlikely]]
        entry = static_cast<std::uint16_t>(nearest_->Find(MiddleOf(cell)) + 1);
    return static_cast<std::uint8_t>(entry - 1);
}

void Quantizer::DiffuseRow(std::span<const Pixel> row, std::span<std::uint8_t> indexes) {
    diffusion_.NextRow([&](int column, Channels sixteenths) -> Channels {
        const auto x = static_cast<std::size_t>(column);
        const Pixel pixel = row[x];
        if (pixel.a == 0) {
            indexes[x] = *transparentIndex_;
            return Channels{};
        }
        // The colours of flat areas take no error from outside, and hand none on.
        if (const int flat = exactColors_.Find(pixel); flat != ExactColors::kNotFound) {
            indexes[x] = static_cast<std::uint8_t>(flat);
            return Channels{};
        }
        const Channels wanted = (ChannelsOf(pixel) * 16 + 8 + sixteenths) >> 4;
        const std::uint8_t index = NearestIndex(Limited(wanted, 0, 255));
        indexes[x] = index;
        return Limited(wanted - paletteChannels_[index], -kErrorLimit, kErrorLimit);
    });
}

}  // namespace tessara
