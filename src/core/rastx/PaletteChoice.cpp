#include "core/rastx/PaletteChoice.h"

#include <algorithm>
#include <cmath>

#include "core/Multiversion.h"

namespace tessara {
namespace {

TESSARA_MULTIVERSION std::uint32_t FindNearest(const std::int32_t* b, const std::int32_t* g,
                                               const std::int32_t* r, int blue, int green, int red) {
    // Distance and index in one number: the least of them is all that the loop has to keep.
    std::uint32_t best = 0xffffffff;
    for (std::uint32_t i = 0; i < kMaximumColors; ++i) {
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
        return {weight + other.weight, {sum[0] + other.sum[0], sum[1] + other.sum[1], sum[2] + other.sum[2]}};
    }
    Moments operator-(const Moments& other) const {
        return {weight - other.weight, {sum[0] - other.sum[0], sum[1] - other.sum[1], sum[2] - other.sum[2]}};
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
        const auto above =
            std::partition(box.colors.begin(), box.colors.end(),
                           [&](const WeightedColor& color) { return color.channels[box.axis] < box.edge; });
        const auto below = static_cast<std::size_t>(above - box.colors.begin());
        const Box second = MakeBox(box.colors.subspan(below));
        box = MakeBox(box.colors.first(below));
        boxes.push_back(second);
    }
    return boxes;
}

std::size_t NearestTo(const WeightedColor& color, const NearestColor& nearest) {
    const auto whole = [&](std::size_t c) {
        return static_cast<std::uint8_t>(std::lround(color.channels[c]));
    };
    return nearest.Find({whole(0), whole(1), whole(2), 255});
}

/// Moves each entry from `fixed` on to the mean of the colours that are nearest to it.
void MoveToMeans(std::span<const WeightedColor> colors, std::size_t fixed, std::vector<Pixel>& palette) {
    const NearestColor nearest(palette);
    std::array<Moments, kMaximumColors> clusters{};
    for (const WeightedColor& color : colors) clusters[NearestTo(color, nearest)].Add(color);
    for (std::size_t i = fixed; i < palette.size(); ++i)
        if (clusters[i].weight > 0) palette[i] = clusters[i].Mean();
}

struct Vector {
    std::array<float, 3> v{};

    static Vector Between(Pixel from, Pixel to) {
        return {{static_cast<float>(to.b - from.b), static_cast<float>(to.g - from.g),
                 static_cast<float>(to.r - from.r)}};
    }
    Vector operator+(Vector other) const {
        return {{v[0] + other.v[0], v[1] + other.v[1], v[2] + other.v[2]}};
    }
    Vector operator*(float factor) const { return {{v[0] * factor, v[1] * factor, v[2] * factor}}; }
    float Dot(Vector other) const { return v[0] * other.v[0] + v[1] * other.v[1] + v[2] * other.v[2]; }
};

/// From the mean of an entry's neighbours to the entry: about zero amidst others, long at the rim of the
/// palette.
Vector OutwardOf(std::size_t entry, std::span<const Pixel> palette) {
    constexpr std::size_t kNeighbours = 6;
    std::vector<Vector> ways;
    for (const Pixel& other : palette)
        if (&other != &palette[entry]) ways.push_back(Vector::Between(other, palette[entry]));
    const std::size_t count = std::min(kNeighbours, ways.size());
    if (count == 0) return {};
    std::ranges::nth_element(ways, ways.begin() + static_cast<std::ptrdiff_t>(count - 1), {},
                             [](const Vector& way) { return way.Dot(way); });
    Vector sum;
    for (std::size_t i = 0; i < count; ++i) sum = sum + ways[i];
    return sum * (1 / static_cast<float>(count));
}

Pixel Moved(Pixel from, Vector by) {
    const auto channel = [](int value, float step) {
        return static_cast<std::uint8_t>(std::clamp(std::lround(static_cast<float>(value) + step), 0l, 255l));
    };
    return {channel(from.b, by.v[0]), channel(from.g, by.v[1]), channel(from.r, by.v[2]), 255};
}

/// Moves the entries at the rim of the palette outwards, at most to the outermost of their colours. Dithering
/// mixes entries, and no mixture lies outside of them: means alone leave every colour near the rim dull.
void SpreadRim(std::span<const WeightedColor> colors, std::size_t fixed, std::vector<Pixel>& palette) {
    constexpr float kStep = 0.8f;  // measured: the best fidelity of the blurred result over many pictures
    std::vector<Vector> outward(palette.size());
    for (std::size_t i = fixed; i < palette.size(); ++i) outward[i] = OutwardOf(i, palette);

    const NearestColor nearest(palette);
    std::vector<float> reach(palette.size());  // how far an entry's colours go outwards, squared with the way
    for (const WeightedColor& color : colors) {
        const std::size_t i = NearestTo(color, nearest);
        const Pixel entry = palette[i];
        const Vector way{{color.channels[0] - static_cast<float>(entry.b),
                          color.channels[1] - static_cast<float>(entry.g),
                          color.channels[2] - static_cast<float>(entry.r)}};
        reach[i] = std::max(reach[i], way.Dot(outward[i]));
    }
    for (std::size_t i = fixed; i < palette.size(); ++i) {
        const float square = outward[i].Dot(outward[i]);
        if (square > 0) palette[i] = Moved(palette[i], outward[i] * std::min(kStep, reach[i] / square));
    }
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

std::uint8_t NearestColor::Find(Pixel color) const {
    return static_cast<std::uint8_t>(FindNearest(b_.data(), g_.data(), r_.data(), color.b, color.g, color.r));
}

std::vector<Pixel> ChoosePalette(std::span<WeightedColor> colors, std::span<const Pixel> fixed,
                                 std::size_t size) {
    constexpr int kRefinements = 2;
    std::vector<Pixel> palette(fixed.begin(), fixed.end());
    for (const Box& box : CutBoxes(colors, size - fixed.size())) palette.push_back(box.moments.Mean());
    for (int i = 0; i < kRefinements; ++i) MoveToMeans(colors, fixed.size(), palette);
    SpreadRim(colors, fixed.size(), palette);
    return palette;
}

}  // namespace tessara
