#include "core/rastx/Compositor.h"

#include <deque>
#include <span>

#include "core/Multiversion.h"
#include "core/Parallel.h"
#include "core/rastx/BlendStrip.h"

// A pixel of the result depends on nothing but the same place of every layer. So the whole tree is composed
// row by row: groups need a row of memory each instead of a canvas, and all of it stays in floating point
// until the one rounding at the end.
namespace tessara {
namespace {

using namespace blend;

TESSARA_MULTIVERSION void LoadPixels(const Pixel* pixels, std::size_t count, Tone* tones) {
    for (std::size_t i = 0; i < count; ++i) {
        constexpr float kScale = 1.0f / 255;
        tones[i] = {pixels[i].b * kScale, pixels[i].g * kScale, pixels[i].r * kScale, pixels[i].a * kScale};
    }
}

TESSARA_MULTIVERSION void StorePixels(const Tone* tones, std::size_t count, Pixel* pixels) {
    for (std::size_t i = 0; i < count; ++i) {
        const Tone tone = tones[i];
        const float scale = tone.a > 0 ? 255 / tone.a : 0;
        const auto byte = [](float value) {
            return static_cast<std::uint8_t>(std::clamp(value + 0.5f, 0.0f, 255.0f));
        };
        pixels[i] = {byte(tone.b * scale), byte(tone.g * scale), byte(tone.r * scale), byte(tone.a * 255)};
        if (pixels[i].a == 0) pixels[i] = kTransparent;
    }
}

void Premultiply(std::span<Tone> tones) {
    for (Tone& tone : tones) tone = {tone.b * tone.a, tone.g * tone.a, tone.r * tone.a, tone.a};
}

/// The mask at one place of the row `y`, 0 to 1.
class MaskRow {
  public:
    MaskRow(const LayerMask* mask, int y) : mask_(mask) {
        if (!mask || y < mask->box.top || y >= mask->box.bottom) return;
        const auto width = static_cast<std::size_t>(mask->box.Width());
        row_ = Bytes(mask->values).subspan(static_cast<std::size_t>(y - mask->box.top) * width, width);
    }
    float At(int x) const {
        if (!mask_) return 1;
        const std::int64_t column = x - mask_->box.left;
        const bool inside = column >= 0 && column < static_cast<std::int64_t>(row_.size());
        return (inside ? row_[static_cast<std::size_t>(column)] : mask_->outside) / 255.0f;
    }

  private:
    const LayerMask* mask_;
    Bytes row_;
};

const LayerMask* MaskOf(const Layer& layer) {
    return layer.mask ? &*layer.mask : nullptr;
}

/// Composes one row at a time; one for each thread.
class RowComposer {
  public:
    explicit RowComposer(int width) : width_(width) {}

    void Compose(std::span<const Layer> layers, int y, std::span<Pixel> row) {
        y_ = y;
        const Borrowed canvas(*this);
        const Strip strip = {canvas.Tones(), 0, width_};
        std::ranges::fill(strip.All(), Tone{});
        DrawAll(layers, strip);
        StorePixels(strip.tones, row.size(), row.data());
    }

  private:
    /// A row of memory from the pool, given back at the end of the scope.
    class Borrowed {
      public:
        explicit Borrowed(RowComposer& owner) : owner_(owner) {
            if (owner.used_ == owner.pool_.size())
                owner.pool_.emplace_back(static_cast<std::size_t>(owner.width_));
            row_ = owner.pool_[owner.used_++].data();
        }
        ~Borrowed() { --owner_.used_; }
        Borrowed(const Borrowed&) = delete;
        Borrowed& operator=(const Borrowed&) = delete;
        Tone* Tones() const { return row_; }

      private:
        RowComposer& owner_;
        Tone* row_;
    };

    void DrawAll(std::span<const Layer> layers, const Strip& canvas) {
        for (std::size_t i = 0; i < layers.size();) {
            std::size_t end = i + 1;
            while (end < layers.size() && layers[end].clipped) ++end;
            Draw(layers[i], layers.subspan(i + 1, end - i - 1), canvas, Reach::Everywhere);
            i = end;
        }
    }

    void Draw(const Layer& layer, std::span<const Layer> clipped, const Strip& canvas, Reach reach) {
        if (y_ < layer.box.top || y_ >= layer.box.bottom) return;
        const Strip target = canvas.Limited(layer.box);
        if (layer.kind == Layer::Kind::Mask) return CutAway(layer, target);
        if (layer.kind == Layer::Kind::PassThroughGroup && clipped.empty() && reach == Reach::Everywhere)
            return DrawThrough(layer, target);
        const Borrowed row(*this);
        const Strip source = {row.Tones(), target.left, target.right};
        Load(layer, clipped, source);
        Cover(layer, source);
        Blend(layer.mode, source, target, y_, reach);
    }

    /// The layer's own colours, straight, with those clipped to it laid on.
    void Load(const Layer& layer, std::span<const Layer> clipped, const Strip& source) {
        if (layer.kind == Layer::Kind::Raster) {
            const auto row = layer.picture.Row(y_ - layer.top);
            LoadPixels(row.data() + (source.left - layer.left), source.All().size(), source.All().data());
            if (clipped.empty()) return;
            Premultiply(source.All());
        } else {
            std::ranges::fill(source.All(), Tone{});
            DrawAll(layer.children, source);
        }
        for (const Layer& above : clipped) Draw(above, {}, source, Reach::InsideOnly);
        for (Tone& tone : source.All()) tone = Straight(tone);
    }

    void Cover(const Layer& layer, const Strip& source) const {
        const float opacity = layer.opacity / 255.0f;
        if (!layer.mask) {
            if (layer.opacity < 255)
                for (Tone& tone : source.All()) tone.a *= opacity;
            return;
        }
        const MaskRow mask(MaskOf(layer), y_);
        for (int x = source.left; x < source.right; ++x) source.tones[x].a *= opacity * mask.At(x);
    }

    void CutAway(const Layer& layer, const Strip& canvas) const {
        const MaskRow mask(MaskOf(layer), y_);
        for (int x = canvas.left; x < canvas.right; ++x) {
            Tone& tone = canvas.tones[x];
            const float kept = 1 - (1 - mask.At(x)) * (layer.opacity / 255.0f);
            tone = {tone.b * kept, tone.g * kept, tone.r * kept, tone.a * kept};
        }
    }

    /// The members go straight onto the canvas; the group's opacity and mask then take back a part of the
    /// change.
    void DrawThrough(const Layer& group, const Strip& canvas) {
        if (group.opacity == 255 && !group.mask) return DrawAll(group.children, canvas);
        const Borrowed before(*this);
        std::copy(canvas.All().begin(), canvas.All().end(), before.Tones() + canvas.left);
        DrawAll(group.children, canvas);
        const MaskRow mask(MaskOf(group), y_);
        for (int x = canvas.left; x < canvas.right; ++x) {
            const float share = group.opacity / 255.0f * mask.At(x);
            const Tone old = before.Tones()[x];
            Tone& tone = canvas.tones[x];
            tone = {old.b + (tone.b - old.b) * share, old.g + (tone.g - old.g) * share,
                    old.r + (tone.r - old.r) * share, old.a + (tone.a - old.a) * share};
        }
    }

    int width_;
    int y_ = 0;
    std::deque<std::vector<Tone>> pool_;  // a deque: rows stay where they are while it grows
    std::size_t used_ = 0;
};

Box BoxOf(const Layer& layer, const Box& canvas) {
    switch (layer.kind) {
        case Layer::Kind::Mask:
            return canvas;
        case Layer::Kind::Raster:
            return Box{layer.left, layer.top, std::int64_t{layer.left} + layer.picture.Width(),
                       std::int64_t{layer.top} + layer.picture.Height()}
                .Intersected(canvas);
        default:
            break;
    }
    Box around;
    for (const Layer& child : layer.children)
        if (child.kind != Layer::Kind::Mask && !child.clipped) around = around.Joined(child.box);
    return around;
}

/// Finds where each layer shows and removes those that show nowhere, together with what is clipped to them.
/// Returns what composing will cost, in pixels.
std::uint64_t Prepare(std::vector<Layer>& layers, const Box& canvas) {
    std::uint64_t cost = 0;
    bool baseShows = true;
    if (!layers.empty()) layers.front().clipped = false;
    for (Layer& layer : layers) {
        cost += Prepare(layer.children, canvas);
        layer.box = BoxOf(layer, canvas);
        if (layer.opacity == 0) layer.box = {};
        if (layer.clipped && !baseShows) layer.box = {};
        if (!layer.clipped) baseShows = !layer.box.Empty();
        // Each row looks at each layer, also where it does not reach.
        if (!layer.box.Empty()) cost += layer.box.Area() + static_cast<std::uint64_t>(canvas.Height());
    }
    std::erase_if(layers, [](const Layer& layer) { return layer.box.Empty(); });
    return cost;
}

}  // namespace

Result<void> LayerBudget::Take(const Box& stored, const Box& shown) {
    if (shown.Area() > shownLeft_ || stored.Area() > storedLeft_)
        return TooBig("the layers need too much memory");
    shownLeft_ -= shown.Area();
    storedLeft_ -= stored.Area();
    return {};
}

Result<Picture> ComposeLayers(std::vector<Layer> layers, int width, int height, const Limits& limits) {
    TRY_ASSIGN(Picture picture, Picture::Create(width, height, Alpha::Straight, limits));
    constexpr std::uint64_t kMostPasses = 4;  // over the largest picture
    if (Prepare(layers, {0, 0, width, height}) > kMostPasses * (limits.decodedBytes / sizeof(Pixel)))
        return TooBig("too many layers");
    const std::span<Pixel> pixels = picture.MutablePixels();
    constexpr int kRowsPerBand = 32;
    ParallelRows(height, HardwareThreads(), kRowsPerBand, [&](int begin, int end) {
        RowComposer composer(width);
        const auto columns = static_cast<std::size_t>(width);
        for (int y = begin; y < end; ++y)
            composer.Compose(layers, y, pixels.subspan(static_cast<std::size_t>(y) * columns, columns));
    });
    picture.DropUnusedAlpha();
    return picture;
}

}  // namespace tessara
