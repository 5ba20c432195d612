#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/ByteReader.h"
#include "core/rastx/Picture.h"

/// The grammar of PSP files: blocks that nest, information chunks at their beginning, fields of key and
/// value.
namespace tessara {

enum class PspId : std::uint16_t {
    Attributes = 0,
    Palette = 2,
    LayerBank = 3,
    Layer = 4,
    Channel = 5,
    Composite = 9,
    ExtendedData = 10,
    CompositeBank = 16,
    CompositeAttributes = 17,
    Jpeg = 18,
    Group = 25,
    Profile = 32,
};

struct PspBlock;

/// Reads chunks and blocks one after another. What runs over the end is cut there.
class PspContent {
  public:
    /// `initial`: version 3 tells the length of the first chunk in the block's header.
    PspContent(Bytes bytes, int version, std::uint32_t initial = 0)
        : reader_(bytes), version_(version), initial_(initial) {}

    bool AtEnd() const { return reader_.AtEnd(); }
    bool AtBlock() const { return HasSignature(reader_.Rest(), std::string_view("~BK\0", 4)); }
    /// The information chunk at the position, without its own length; empty where there is none.
    Bytes Chunk();
    /// The block at the position; none where there is no further one.
    std::optional<PspBlock> Block();
    Bytes Take(std::uint64_t count) { return reader_.TakeUpTo(count); }

  private:
    ByteReader reader_;
    int version_;
    std::uint32_t initial_;
};

struct PspBlock {
    PspId id;
    PspContent content;
    bool cut = false;  ///< the file ends within
};

/// A plane of samples, still packed.
struct PspChannel {
    /// What the samples are; the same kinds of planes have other numbers in layers and in composites.
    enum class Use : std::uint16_t { Color = 0, Alpha = 1, Mask = 2, CompositeColor = 8, CompositeAlpha = 9 };

    Use use;
    int component = 0;  ///< 0 alone, 1 red, 2 green, 3 blue
    Bytes data;
};

PspChannel ReadPspChannel(PspContent content);
/// Palettes hold blue, green, red and an unused byte each.
std::vector<Pixel> ReadPspPalette(PspContent content);

}  // namespace tessara
