#pragma once

#include <vector>

#include "core/ByteReader.h"
#include "core/Result.h"
#include "core/rastx/Picture.h"

/// What stands around the codes of a GIF file: its screen, its palettes and the place of its first picture.
namespace tessara::gif {

using GifPalette = std::vector<Pixel>;

struct Screen {
    int width = 0;
    int height = 0;
    GifPalette palette;
};

struct Frame {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    bool interlaced = false;
    GifPalette palette;
    int transparentIndex = -1;
    int minimumCodeSize = 0;
    ByteVector codes;

    std::size_t PixelCount() const {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    }
};

/// Reads the signature and the screen.
Screen ReadScreen(ByteReader& reader);
/// The first picture that has a size. Bytes that begin no block are passed over.
Result<Frame> FindFirstFrame(ByteReader& reader, const Screen& screen);

}  // namespace tessara::gif
