#pragma once

#include "core/Bytes.h"

namespace tessara {

/// Packs pieces of up to some megabytes as zlib streams (RFC 1950), fast rather than tightly.
///
/// What prediction leaves of a photograph does not repeat: looking for matches costs most of the time of
/// packing and finds none. Such pieces get Huffman codes alone, in a third of the time; the others are left
/// to ISA-L.
class ZlibPacker {
  public:
    ZlibPacker();

    /// The stream of one piece; valid until the next call.
    Bytes Pack(Bytes raw);

  private:
    bool Repeats(Bytes raw);
    std::size_t PackWithMatches(Bytes raw);
    std::size_t PackWithoutMatches(Bytes raw);

    ByteVector packed_;
    ByteVector workspace_;  ///< of ISA-L
};

}  // namespace tessara
