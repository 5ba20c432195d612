#include "core/rastx/codecs/PngForm.h"

#include <tuple>

#include "core/Multiversion.h"
#include "core/rastx/Rows.h"

namespace tessara::png {
namespace {

constexpr std::size_t kMostColors = 256;

std::uint32_t BitsOf(Pixel pixel) {
    return std::bit_cast<std::uint32_t>(pixel);
}

TESSARA_MULTIVERSION bool AllGrey(const Pixel* pixels, std::size_t count) {
    unsigned differences = 0;
    for (std::size_t i = 0; i < count; ++i)
        differences |= static_cast<unsigned>(pixels[i].r ^ pixels[i].g) |
                       static_cast<unsigned>(pixels[i].b ^ pixels[i].g);
    return differences == 0;
}

/// The fewest bits that tell all greys apart by their own value.
int GreyDepth(const std::vector<Pixel>& colors) {
    int depth = 1;
    for (const Pixel color : colors)
        while (depth < 8 && color.g % (255 / ((1 << depth) - 1)) != 0) depth *= 2;
    return depth;
}

int IndexDepth(std::size_t colors) {
    return colors <= 2 ? 1 : colors <= 4 ? 2 : colors <= 16 ? 4 : 8;
}

}  // namespace

bool ColorTable::Add(std::span<const Pixel> row) {
    for (const Pixel pixel : row) {
        if (!colors_.empty() && pixel == last_) continue;
        last_ = pixel;
        Slot& slot = Find(pixel);
        if (slot.used) continue;
        if (colors_.size() == kMostColors) return false;
        slot = {BitsOf(pixel), true, 0};
        colors_.push_back(pixel);
    }
    return true;
}

void ColorTable::Sort() {
    std::ranges::sort(colors_, [](Pixel a, Pixel b) {
        const bool opaqueA = a.a == 255, opaqueB = b.a == 255;
        if (opaqueA != opaqueB) return opaqueB;
        return std::tuple(Luma(a), BitsOf(a)) < std::tuple(Luma(b), BitsOf(b));
    });
    for (std::size_t i = 0; i < colors_.size(); ++i) Find(colors_[i]).index = static_cast<std::uint8_t>(i);
}

Form ChooseForm(const Picture& picture, ColorTable& table) {
    bool grey = true;
    bool few = true;
    bool opaque = true;
    for (int y = 0; y < picture.Height() && (grey || few || (opaque && picture.HasAlpha())); ++y) {
        const std::span<const Pixel> row = picture.Row(y);
        if (few) few = table.Add(row);
        if (grey) grey = AllGrey(row.data(), row.size());
        if (opaque && picture.HasAlpha()) opaque = AllOpaque(row);
    }
    // In a tiny picture the palette itself can weigh more than what it spares.
    constexpr std::size_t kPaletteOverhead = 24;
    const std::size_t paletteSize = 3 * table.Colors().size() + kPaletteOverhead;
    if (few && (grey || paletteSize < 2 * picture.PixelCount())) {
        table.Sort();
        const int indexDepth = IndexDepth(table.Colors().size());
        const int greyDepth = grey && opaque ? GreyDepth(table.Colors()) : 16;
        if (greyDepth <= indexDepth) return {kGrey, greyDepth};
        return {kPalette, indexDepth};
    }
    if (grey) return {opaque ? kGrey : kGreyAlpha, 8};
    return {opaque ? kRgb : kRgbAlpha, 8};
}

}  // namespace tessara::png
