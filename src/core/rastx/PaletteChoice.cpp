#include "core/rastx/PaletteChoice.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "core/Multiversion.h"

namespace tessara {
namespace {

TESSARA_MULTIVERSION std::uint32_t FindNearest(const std::int32_t* b, const std::int32_t* g,
                                               const std::int32_t* r, int blue, int green, int red) {
    // Distance and index in one number: the least of them is all that the loop has to keep.
    std::uint32_t best = 0xffffffff;
    for (std::uint32_t i = 0; i < 256; ++i) {
        const std::int32_t db = b[i] - blue, dg = g[i] - green, dr = r[i] - red;
        const auto candidate = static_cast<std::uint32_t>(db * db + dg * dg + dr * dr) << 8 | i;
        best = std::min(best, candidate);
    }
    return best & 255;
}

/// Sums over weighted colours.
struct Moments {
    double weight = 0;
    std::array<double, 3> sum{};

    void Add(const WeightedColor& color) {
        weight += color.weight;
        for (std::size_t c = 0; c < 3; ++c) sum[c] += double{color.weight} * color.channels[c];
    }
    Moments operator+(const Moments& other) const {
        return {weight + other.weight,
                {sum[0] + other.sum[0], sum[1] + other.sum[1], sum[2] + other.sum[2]}};
    }
    Moments operator-(const Moments& other) const {
        return {weight - other.weight,
                {sum[0] - other.sum[0], sum[1] - other.sum[1], sum[2] - other.sum[2]}};
    }
    /// What the mean explains of the squares; the sum of squares less this is the variance.
    double Explained() const {
        return weight > 0 ? (sum[0] * sum[0] + sum[1] * sum[1] + sum[2] * sum[2]) / weight : 0;
    }
    Pixel Mean() const {
        const auto channel = [&](std::size_t c) {
            return static_cast<std::uint8_t>(std::clamp(std::lround(sum[c] / weight), 0l, 255l));
        };
        return {channel(0), channel(1), channel(2), 255};
    }
};

/// Some of the colours, and the best way to cut them in two.
struct Box {
    std::span<WeightedColor> colors;
    Moments moments;
    double gain = 0;  ///< by how much the cut lowers the variance
    std::size_t axis = 0;
    float edge = 0;  ///< colours below go to the first part
};

constexpr int kPlanes = 64;

int PlaneOf(float value) {
    return static_cast<int>(value) >> 2;
}

void FindCut(Box& box) {
    std::array<std::array<Moments, kPlanes>, 3> planes{};
    for (const WeightedColor& color : box.colors) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            planes[axis][static_cast<std::size_t>(PlaneOf(color.channels[axis]))].Add(color);
    }
    const double whole = box.moments.Explained();
    box.gain = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Moments below;
        for (int plane = 0; plane + 1 < kPlanes; ++plane) {
            below = below + planes[axis][static_cast<std::size_t>(plane)];
            const Moments above = box.moments - below;
            if (below.weight <= 0 || above.weight < 0.5) continue;
            const double gain = below.Explained() + above.Explained() - whole;
            if (gain <= box.gain) continue;
            box.gain = gain;
            box.axis = axis;
            box.edge = static_cast<float>(4 * (plane + 1));
        }
    }
}

Box MakeBox(std::span<WeightedColor> colors) {
    Box box{.colors = colors, .moments = {}};
    for (const WeightedColor& color : colors) box.moments.Add(color);
    FindCut(box);
    return box;
}

/// Cuts all colours into at most `count` boxes.
std::vector<Box> CutBoxes(std::span<WeightedColor> colors, std::size_t count) {
    std::vector<Box> boxes;
    if (colors.empty() || count == 0) return boxes;
    boxes.push_back(MakeBox(colors));
    while (boxes.size() < count) {
        Box& box = *std::ranges::max_element(boxes, {}, &Box::gain);
        if (box.gain <= 0) break;
        const auto above = std::partition(
            box.colors.begin(), box.colors.end(),
            [&](const WeightedColor& color) { return color.channels[box.axis] < box.edge; });
        const auto below = static_cast<std::size_t>(above - box.colors.begin());
        const Box second = MakeBox(box.colors.subspan(below));
        box = MakeBox(box.colors.first(below));
        boxes.push_back(second);
    }
    return boxes;
}

/// Moves each colour from `fixed` on to the mean of the colours that are nearest to it.
void MoveToMeans(std::span<const WeightedColor> colors, std::size_t fixed, std::vector<Pixel>& palette) {
    const NearestColor nearest(palette);
    std::array<Moments, 256> clusters{};
    for (const WeightedColor& color : colors) {
        const auto whole = [&](std::size_t c) { return static_cast<int>(std::lround(color.channels[c])); };
        clusters[nearest.Find(whole(0), whole(1), whole(2))].Add(color);
    }
    for (std::size_t i = fixed; i < palette.size(); ++i)
        if (clusters[i].weight > 0) palette[i] = clusters[i].Mean();
}

}  // namespace

NearestColor::NearestColor(std::span<const Pixel> colors) {
    constexpr std::int32_t kFar = 2048;  // farther than any colour, and its distance still fits in 24 bits
    b_.fill(kFar);
    g_.fill(kFar);
    r_.fill(kFar);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        b_[i] = colors[i].b;
        g_[i] = colors[i].g;
        r_[i] = colors[i].r;
    }
}

std::uint8_t NearestColor::Find(int b, int g, int r) const {
    return static_cast<std::uint8_t>(FindNearest(b_.data(), g_.data(), r_.data(), b, g, r));
}

std::vector<Pixel> ChoosePalette(std::span<WeightedColor> colors, std::span<const Pixel> fixed,
                                 std::size_t size) {
    static const int kRefinements = getenv("KM") ? atoi(getenv("KM")) : 3;
    std::vector<Pixel> palette(fixed.begin(), fixed.end());
    for (const Box& box : CutBoxes(colors, size - fixed.size())) palette.push_back(box.moments.Mean());
    for (int i = 0; i < kRefinements; ++i) MoveToMeans(colors, fixed.size(), palette);
    return palette;
}

}  // namespace tessara
