#include "core/rastx/effects/Windows.h"

namespace tessara::effects {
namespace {

TESSARA_MULTIVERSION void CopyAlpha(const std::uint8_t* alpha, std::size_t count,
                                    std::uint8_t* __restrict out) {
    for (std::size_t i = 0; i < count; ++i)
        StorePixel(out + 4 * i,
                   (LoadPixel(out + 4 * i) & kColorBits) | (LoadPixel(alpha + 4 * i) & kAlphaBits));
}

/// Marks the visible pixels that have a neighbour which is not opaque.
TESSARA_MULTIVERSION void FindConcerned(const Neighbours& rows, std::size_t width,
                                        std::uint8_t* __restrict concerned) {
    for (std::size_t x = 0; x < width; ++x) {
        std::uint8_t least = 255;
        for (const std::uint8_t* row : {rows.above, rows.here, rows.below}) {
            const std::uint8_t* alpha = row + 4 * x + 3;
            const auto both = static_cast<std::uint8_t>(alpha[-4] & alpha[4]);
            least = static_cast<std::uint8_t>(least & alpha[0] & both);
        }
        concerned[x] = rows.here[4 * x + 3] != 0 && least != 255;
    }
}

/// The way from one colour to another, as far as `alpha` tells.
std::uint8_t Toward(std::uint8_t from, std::uint8_t to, std::uint8_t alpha) {
    const int way = (to - from) * alpha;
    return static_cast<std::uint8_t>(from + (way + (way < 0 ? -127 : 127)) / 255);
}

}  // namespace

void PaddedRow::Load(std::span<const Pixel> row) {
    CopyPixels(row, &pixels_[1]);
    pixels_.front() = row.front();
    pixels_.back() = row.back();
}

AlphaWindows::AlphaWindows(const Neighbours& rows, std::span<Pixel> out)
    : source_(rows), target_(out), concerned_(out.size()) {
    FindConcerned(rows, out.size(), concerned_.data());
}

bool AlphaWindows::Next() {
    for (count_ = 0; next_ < target_.size() && count_ < kMost; ++next_)
        if (concerned_[next_]) Add(next_);
    return count_ > 0;
}

void AlphaWindows::Add(std::size_t column) {
    const std::uint8_t* sources[] = {source_.above, source_.here, source_.below};
    Pixel middle;
    std::memcpy(static_cast<void*>(&middle), source_.here + 4 * column, sizeof middle);
    for (std::size_t y = 0; y < 3; ++y) {
        Pixel* window = &rows_[y][3 * count_ + 1];
        std::memcpy(static_cast<void*>(window), sources[y] + 4 * column - 4, 3 * sizeof middle);
        for (std::size_t x = 0; x < 3; ++x) {
            Pixel& pixel = window[x];
            pixel = {Toward(middle.b, pixel.b, pixel.a), Toward(middle.g, pixel.g, pixel.a),
                     Toward(middle.r, pixel.r, pixel.a), pixel.a};
        }
    }
    columns_[count_++] = column;
}

Neighbours AlphaWindows::Rows() const {
    const auto bytes = [](const Pixel* row) { return reinterpret_cast<const std::uint8_t*>(row + 1); };
    return {bytes(rows_[0]), bytes(rows_[1]), bytes(rows_[2])};
}

void AlphaWindows::Put() const {
    for (std::size_t i = 0; i < count_; ++i) target_[columns_[i]] = out_[3 * i + 1];
}

void KeepAlpha(const std::uint8_t* alpha, std::span<Pixel> row) {
    CopyAlpha(alpha, row.size(), BytesOf(row));
}

}  // namespace tessara::effects
