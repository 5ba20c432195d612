#include "core/rastx/codecs/PspBitmap.h"

#include <algorithm>

#include "core/Inflate.h"
#include "core/Parallel.h"
#include "core/rastx/Rows.h"

namespace tessara {
namespace {

/// Counts above 128 repeat a byte, up to 128 they copy. Runs take no notice of rows.
std::size_t UnpackRuns(Bytes packed, std::span<std::uint8_t> target) {
    std::size_t in = 0;
    std::size_t out = 0;
    while (in < packed.size() && out < target.size()) {
        const std::size_t code = packed[in++];
        const bool run = code > 128;
        const std::size_t stored = run ? 1 : code;
        const std::size_t present = std::min(stored, packed.size() - in);
        const std::size_t count = std::min(run ? (code - 128) * present : present, target.size() - out);
        const auto to = target.begin() + static_cast<std::ptrdiff_t>(out);
        if (run && count > 0)
            std::fill_n(to, count, packed[in]);
        else
            std::copy_n(packed.begin() + static_cast<std::ptrdiff_t>(in), count, to);
        in += present;
        out += count;
    }
    return out;
}

std::uint64_t MostUnpacked(std::uint64_t packed, PspCompression compression) {
    constexpr std::uint64_t kMostPerRunByte = 64;  // 127 from two bytes
    return compression == PspCompression::Zip ? MostInflated(packed) : packed * kMostPerRunByte;
}

std::uint64_t TightStride(std::int64_t width, int bits) {
    return (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(bits) + 7) / 8;
}
std::uint64_t PaddedTo4(std::uint64_t bytes) {
    return (bytes + 3) / 4 * 4;
}

}  // namespace

Result<void> CheckPspLayout(const PspLayout& layout) {
    constexpr int kDepths[] = {1, 4, 8, 16, 24, 48};
    if (std::ranges::find(kDepths, layout.depth) == std::end(kDepths))
        return Damaged("there is no such depth");
    if (layout.compression > PspCompression::Zip) return Damaged("the samples are packed in an unknown way");
    if (layout.Indexed() && layout.palette.empty()) return Damaged("the palette is missing");
    return {};
}

Result<PspPlane> PspPlane::Unpack(Bytes packed, PspCompression compression, std::int64_t width,
                                  std::int64_t height, int bits, const Limits& limits) {
    const std::uint64_t size = PaddedTo4(TightStride(width, bits)) * static_cast<std::uint64_t>(height);
    PspPlane plane;
    plane.height_ = height;
    if (compression == PspCompression::None) {
        plane.samples_ = Slice(packed, 0, size);
    } else {
        const std::uint64_t memory = std::min(size, MostUnpacked(packed.size(), compression));
        if (memory > limits.decodedBytes) return TooBig("the samples need too much memory");
        plane.unpacked_ = LargeBuffer(static_cast<std::size_t>(memory));
        if (!plane.unpacked_.Valid()) return TooBig("no memory for the samples");
        const std::span<std::uint8_t> target(plane.unpacked_.Data(), plane.unpacked_.Size());
        plane.samples_ = target.first(compression == PspCompression::Zip ? InflateInto(packed, target)
                                                                         : UnpackRuns(packed, target));
    }
    plane.ChooseStride(width, height, bits);
    return plane;
}

/// Writers differ in whether rows are padded; the length of the whole plane tells.
void PspPlane::ChooseStride(std::int64_t width, std::int64_t height, int bits) {
    const auto fits = [&](std::uint64_t stride) {
        return samples_.size() == stride * static_cast<std::uint64_t>(height);
    };
    const std::uint64_t tight = TightStride(width, bits);
    const std::uint64_t padded = PaddedTo4(tight);
    bits_ = bits;
    stride_ = bits < 8 ? padded : tight;
    if (fits(tight))
        stride_ = tight;
    else if (fits(padded))
        stride_ = padded;
    else if (bits == 16 && (fits(TightStride(width, 8)) || fits(PaddedTo4(TightStride(width, 8))))) {
        bits_ = 8;
        stride_ = samples_.size() / static_cast<std::uint64_t>(height);
    }
}

std::int64_t PspPlane::RowsPresent() const {
    return std::min(height_, static_cast<std::int64_t>(samples_.size() / stride_));
}

Bytes PspPlane::Row(std::int64_t y, std::int64_t left, std::size_t count, ByteVector& scratch) const {
    if (y >= RowsPresent()) return {};
    const Bytes row = Slice(samples_, static_cast<std::uint64_t>(y) * stride_, stride_);
    const auto first = static_cast<std::size_t>(left);
    if (bits_ == 8) return row.subspan(first, count);
    scratch.resize(bits_ < 8 ? first + count : count);
    if (bits_ < 8) {
        UnpackBits(row, bits_, scratch);
        return Bytes(scratch).subspan(first);
    }
    for (std::size_t i = 0; i < count; ++i)
        scratch[i] = Narrow16(row[2 * (first + i)] | std::uint32_t{row[2 * (first + i) + 1]} << 8);
    return scratch;
}

Result<PspBitmap> PspBitmap::Open(std::span<const PspChannel> channels, PspChannel::Use color,
                                  PspChannel::Use alpha, const PspLayout& layout, std::int64_t width,
                                  std::int64_t height, const Limits& limits) {
    PspBitmap bitmap;
    bitmap.layout_ = layout;
    const int alphaBits = layout.BitsPerSample() == 16 ? 16 : 8;
    struct Task {
        Bytes packed;
        int bits;
        std::optional<PspPlane>* plane;
        Result<void> outcome = {};
    };
    std::vector<Task> tasks;
    for (const PspChannel& channel : channels) {
        const int index = layout.Components() == 3 ? channel.component - 1 : 0;
        if (channel.use == color && index >= 0 && index < 3)
            tasks.push_back(
                {channel.data, layout.BitsPerSample(), &bitmap.color_[static_cast<std::size_t>(index)]});
        else if (channel.use == alpha)
            tasks.push_back({channel.data, alphaBits, &bitmap.alpha_});
        // A plane is unpacked once, however often a hostile file names it.
        for (std::size_t i = 0; i + 1 < tasks.size(); ++i)
            if (tasks[i].plane == tasks.back().plane) {
                tasks.pop_back();
                break;
            }
    }
    const auto unpack = [&](int begin, int end) {
        for (Task& task : std::span(tasks).subspan(static_cast<std::size_t>(begin),
                                                   static_cast<std::size_t>(end - begin))) {
            Result<PspPlane> plane =
                PspPlane::Unpack(task.packed, layout.compression, width, height, task.bits, limits);
            if (plane)
                *task.plane = std::move(plane).Value();
            else
                task.outcome = plane.Error();
        }
    };
    constexpr std::int64_t kWorthThreads = 1 << 18;
    ParallelRows(static_cast<int>(tasks.size()), width * height < kWorthThreads ? 1 : HardwareThreads(), 1,
                 unpack);
    for (const Task& task : tasks) TRY(task.outcome);
    return bitmap;
}

std::int64_t PspBitmap::CompleteRows() const {
    std::int64_t rows = INT64_MAX;
    for (int i = 0; i < layout_.Components(); ++i) {
        const auto& plane = color_[static_cast<std::size_t>(i)];
        rows = std::min(rows, plane ? plane->RowsPresent() : 0);
    }
    return alpha_ ? std::min(rows, alpha_->RowsPresent()) : rows;
}

void PspBitmap::ToPixels(const Box& part, std::span<Pixel> pixels) const {
    const auto width = static_cast<std::size_t>(part.Width());
    ParallelRows(static_cast<int>(part.Height()), HardwareThreads(), 128, [&](int begin, int end) {
        std::array<ByteVector, 4> scratch;
        const auto row = [&](const std::optional<PspPlane>& plane, int y, std::size_t index) {
            return plane ? plane->Row(part.top + y, part.left, width, scratch[index]) : Bytes();
        };
        for (int y = begin; y < end; ++y) {
            const std::span<Pixel> target = pixels.subspan(static_cast<std::size_t>(y) * width, width);
            const Bytes first = row(color_[0], y, 0);
            const Bytes alpha = row(alpha_, y, 3);
            if (first.empty() || (alpha_ && alpha.empty())) {
                std::ranges::fill(target, alpha_ ? kTransparent : kWhite);
            } else if (layout_.Components() == 3) {
                // A plane that is missing follows the one before it: grey is better than garish.
                Bytes green = row(color_[1], y, 1);
                if (green.empty()) green = first;
                Bytes blue = row(color_[2], y, 2);
                if (blue.empty()) blue = green;
                PlanesToPixels(first, green, blue, alpha, target);
            } else {
                if (layout_.Indexed())
                    PaletteToPixels(first, layout_.palette, target);
                else
                    GreyToPixels(first, target);
                for (std::size_t i = 0; i < alpha.size(); ++i)
                    target[i].a = MultiplyBytes(target[i].a, alpha[i]);
            }
        }
    });
}

}  // namespace tessara
