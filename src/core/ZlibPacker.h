#pragma once

#include "core/Bytes.h"

namespace tessara {

/// Packs pieces of one thing, of up to some megabytes each, as zlib streams (RFC 1950), fast rather than
/// tightly.
///
/// What prediction leaves of a photograph hardly repeats: looking for matches takes most of the time of
/// packing and saves a sixth. Such pieces get Huffman codes alone, in a quarter of the time; the others are
/// left to ISA-L.
class ZlibPacker {
  public:
    ZlibPacker();

    /// The stream of one piece; valid until the next call.
    Bytes Pack(Bytes raw);

  private:
    bool Repeats(Bytes raw);
    std::size_t PackWithMatches(Bytes raw);
    std::size_t PackWithoutMatches(Bytes raw);

    int piecesUntilTrial_ = 0;
    bool repeats_ = false;
    ByteVector packed_;
    ByteVector workspace_;  ///< of ISA-L
};

}  // namespace tessara
