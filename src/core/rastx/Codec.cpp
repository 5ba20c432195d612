#include "core/rastx/Codec.h"

#include <algorithm>

#include "core/Text.h"
#include "core/WithinMemory.h"
#include "core/rastx/codecs/Bmp.h"
#include "core/rastx/codecs/Emf.h"
#include "core/rastx/codecs/Gif.h"
#include "core/rastx/codecs/Ico.h"
#include "core/rastx/codecs/Jpg.h"
#include "core/rastx/codecs/Pcd.h"
#include "core/rastx/codecs/Pcx.h"
#include "core/rastx/codecs/Png.h"
#include "core/rastx/codecs/Pnm.h"
#include "core/rastx/codecs/Psd.h"
#include "core/rastx/codecs/Psp.h"
#include "core/rastx/codecs/Sgi.h"
#include "core/rastx/codecs/Tga.h"
#include "core/rastx/codecs/Tif.h"
#include "core/rastx/codecs/UtahRle.h"
#include "core/rastx/codecs/Wbmp.h"
#include "core/rastx/codecs/Wmf.h"

namespace tessara {
namespace {

enum CodecIndex {
    kBmp,
    kGif,
    kJpg,
    kPng,
    kTif,
    kPsd,
    kPsp,
    kPnm,
    kEmf,
    kWmf,
    kSgi,
    kUtahRle,
    kPcd,
    kIco,
    kPcx,
    kTga,
    kWbmp
};

using enum Recognition;
constexpr Codec kCodecs[] = {
    {"BMP", Signature, RecogniseBmp, DecodeBmp, EncodeBmp},
    {"GIF", Signature, RecogniseGif, DecodeGif, EncodeGif},
    {"JPG", Signature, RecogniseJpg, DecodeJpg, EncodeJpg},
    {"PNG", Signature, RecognisePng, DecodePng, EncodePng},
    {"TIF", Signature, RecogniseTif, DecodeTif, EncodeTif},
    {"PSD", Signature, RecognisePsd, DecodePsd, nullptr},
    {"PSP", Signature, RecognisePsp, DecodePsp, nullptr},
    {"PNM", Signature, RecognisePnm, DecodePnm, nullptr},
    {"EMF", Signature, RecogniseEmf, DecodeEmf, EncodeEmf},
    {"WMF", Signature, RecogniseWmf, DecodeWmf, EncodeWmf},
    {"SGI", Signature, RecogniseSgi, DecodeSgi, nullptr},
    {"RLE", Signature, RecogniseUtahRle, DecodeUtahRle, nullptr},
    {"PCD", Signature, RecognisePcd, DecodePcd, nullptr},
    {"ICO", Structure, RecogniseIco, DecodeIco, EncodeIco},
    {"PCX", Structure, RecognisePcx, DecodePcx, nullptr},
    {"TGA", Structure, RecogniseTga, DecodeTga, EncodeTga},
    {"WBMP", Structure, RecogniseWbmp, DecodeWbmp, EncodeWbmp},
};

constexpr ImportFormat kImportFormats[] = {
    {"Bmp", &kCodecs[kBmp]},   {"Gif", &kCodecs[kGif]},     {"Jpg", &kCodecs[kJpg]}, {"Png", &kCodecs[kPng]},
    {"Wbmp", &kCodecs[kWbmp]}, {"Dib", &kCodecs[kBmp]},     {"Emf", &kCodecs[kEmf]}, {"Icb", &kCodecs[kTga]},
    {"Ico", &kCodecs[kIco]},   {"Jpeg", &kCodecs[kJpg]},    {"Pbm", &kCodecs[kPnm]}, {"Pcd", &kCodecs[kPcd]},
    {"Pcx", &kCodecs[kPcx]},   {"Pgm", &kCodecs[kPnm]},     {"Ppm", &kCodecs[kPnm]}, {"Psd", &kCodecs[kPsd]},
    {"Psp", &kCodecs[kPsp]},   {"Rle", &kCodecs[kUtahRle]}, {"Sgi", &kCodecs[kSgi]}, {"Tga", &kCodecs[kTga]},
    {"Tif", &kCodecs[kTif]},   {"Tiff", &kCodecs[kTif]},    {"Vda", &kCodecs[kTga]}, {"Vst", &kCodecs[kTga]},
    {"Wmf", &kCodecs[kWmf]},
};

constexpr ExportFormat kExportFormats[] = {
    {"Bmp", ".bmp", &kCodecs[kBmp]}, {"Gif", ".gif", &kCodecs[kGif]},    {"Jpg", ".jpg", &kCodecs[kJpg]},
    {"Png", ".png", &kCodecs[kPng]}, {"Wbmp", ".wbmp", &kCodecs[kWbmp]}, {"Emf", ".emf", &kCodecs[kEmf]},
    {"Tga", ".tga", &kCodecs[kTga]}, {"Tif", ".tif", &kCodecs[kTif]},    {"Wmf", ".wmf", &kCodecs[kWmf]},
    {"Ico", ".ico", &kCodecs[kIco]},
};

}  // namespace

std::span<const Codec> Codecs() {
    return kCodecs;
}
std::span<const ImportFormat, 25> ImportFormatTable() {
    return kImportFormats;
}
std::span<const ExportFormat, 10> ExportFormatTable() {
    return kExportFormats;
}

const Codec* FindCodec(Bytes file, std::string_view extension) {
    const auto recognised = [&](Recognition kind) -> const Codec* {
        const auto found = std::ranges::find_if(
            kCodecs, [&](const Codec& codec) { return codec.recognition == kind && codec.recognise(file); });
        return found == std::end(kCodecs) ? nullptr : &*found;
    };
    if (const Codec* codec = recognised(Signature)) return codec;
    const auto row = std::ranges::find_if(kImportFormats, [&](const ImportFormat& format) {
        return EqualIgnoringCase(format.label, extension);
    });
    // The extension of a format that has a structure to show but does not show it is no vote.
    if (row != std::end(kImportFormats) && row->codec->recognise(file)) return row->codec;
    if (const Codec* codec = recognised(Structure)) return codec;
    return row == std::end(kImportFormats) ? nullptr : row->codec;
}

Result<Picture> DecodeFile(Bytes file, std::string_view extension, const DecodeOptions& options) {
    return WithinMemory([&]() -> Result<Picture> {
        const Codec* codec = FindCodec(file, extension);
        if (!codec) return Unsupported("the file is of no known format");
        return codec->decode(file, options);
    });
}

}  // namespace tessara
