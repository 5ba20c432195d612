#include "core/rastx/codecs/TgaFormat.h"

#include "core/ByteReader.h"

// Truevision TGA File Format, version 2.0. All numbers are little-endian.
//
//   0  u8   length of the identification     8  u16 x2  origin, without meaning here
//   1  u8   colour map: 0 none, 1 present   12  u16 x2  width, height
//   2  u8   kind: 1 map, 2 colour, 3 grey;  16  u8      bits per pixel
//           8 more with run lengths         17  u8      bits 0-3 alpha bits, 4 from right, 5 from top,
//   3  u16  first entry of the map                      6-7 interleaving, given up by all writers
//   5  u16  entries of the map              18  identification, colour map, pixels
//   7  u8   bits per entry
//
// Version 2 ends with an extension area, anywhere in the file, and a footer of 26 bytes that points to it.

namespace tessara::tga {
namespace {

Attributes AttributesOf(Bytes file) {
    if (!HasFooter(file)) return Attributes::NotTold;
    ByteReader reader(file);
    reader.Seek(file.size() - kFooterSize);
    const std::uint32_t extension = reader.U32Le();
    if (extension == 0 || !reader.Seek(extension) || reader.U16Le() < kExtensionSize ||
        !reader.Seek(std::uint64_t{extension} + kAttributesOffset))
        return Attributes::NotTold;
    const std::uint8_t attributes = reader.U8();
    return reader.Overrun() || attributes > 4 ? Attributes::NotTold : static_cast<Attributes>(attributes);
}

}  // namespace

bool IsColorDepth(int bits) {
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

Result<Header> ReadHeader(Bytes file) {
    ByteReader reader(file);
    Header header;
    header.identification = reader.U8();
    header.mapType = reader.U8();
    const std::uint8_t kind = reader.U8();
    header.mapFirst = reader.U16Le();
    header.mapEntries = reader.U16Le();
    header.mapBits = reader.U8();
    reader.Skip(4);
    header.width = reader.U16Le();
    header.height = reader.U16Le();
    header.bits = reader.U8();
    header.descriptor = reader.U8();
    if (reader.Overrun()) return Damaged("the header is cut short");

    header.runLengths = kind & kRunLengthKind;
    header.kind = static_cast<Kind>(kind & ~kRunLengthKind);
    if (header.mapType > 1) return Unsupported("an unknown kind of colour map");
    if (header.width == 0 || header.height == 0) return Damaged("the picture has no size");
    bool legal = false;
    switch (header.kind) {
        case Kind::Mapped:
            legal = header.mapType == 1 && header.mapEntries > 0 && IsColorDepth(header.mapBits) &&
                    (header.bits == 8 || header.bits == 16);
            break;
        case Kind::Color:
            legal = IsColorDepth(header.bits);
            break;
        case Kind::Grey:
            legal = header.bits == 8 || header.bits == 16;
            break;
    }
    if (!legal) return Unsupported("an unknown kind of pixels");
    return header;
}

std::uint64_t PossiblePixels(const Header& header, Bytes file) {
    const std::uint64_t bytes = Slice(file, header.PixelsOffset()).size();
    return header.runLengths ? bytes / (1 + header.PixelBytes()) * kPacketPixels + kPacketPixels
                             : bytes / header.PixelBytes();
}

bool HasFooter(Bytes file) {
    return file.size() >= kHeaderSize + kFooterSize &&
           HasSignature(file, kFooterSignature, file.size() - kFooterSignature.size());
}

AlphaUse AlphaUseOf(const Header& header, Bytes file) {
    switch (AttributesOf(file)) {
        // Writers that fill the extension area with zeros say so and mean nothing by it: the header decides.
        case Attributes::NoAlpha:
            return header.AlphaBits() > 0 ? AlphaUse::Unsure : AlphaUse::None;
        case Attributes::Undefined:
        case Attributes::UndefinedButKept:
            return AlphaUse::None;
        case Attributes::Straight:
            return AlphaUse::Straight;
        case Attributes::Premultiplied:
            return AlphaUse::Premultiplied;
        case Attributes::NotTold:
            break;
    }
    return AlphaUse::Unsure;
}

}  // namespace tessara::tga
