#include "tiff/TifFile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace tessara {
namespace {

/// No block that libtiff takes for itself (strip tables, code tables, a row) is larger in an honest file.
constexpr tmsize_t kLargestBlock = tmsize_t{256} << 20;
constexpr int kDirectoriesLookedAt = 64;

int Silent(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

/// A field of the directory, or its default.
template <typename T>
T Field(TIFF* handle, std::uint32_t tag, T missing = {}) {
    T value = missing;
    return TIFFGetFieldDefaulted(handle, tag, &value) ? value : missing;
}

bool IsThumbnailOrMask(TIFF* handle) {
    return (Field<std::uint32_t>(handle, TIFFTAG_SUBFILETYPE) & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) != 0;
}

/// What the number of samples says where the file does not tell its kind of colours.
int GuessPhotometric(const TifLayout& layout) {
    switch (layout.compression) {
        case COMPRESSION_CCITTRLE:
        case COMPRESSION_CCITTRLEW:
        case COMPRESSION_CCITTFAX3:
        case COMPRESSION_CCITTFAX4:
            return PHOTOMETRIC_MINISWHITE;
        default:
            return layout.samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    }
}

}  // namespace

int TifLayout::Colors() const {
    switch (photometric) {
        case PHOTOMETRIC_RGB:
        case PHOTOMETRIC_YCBCR:
            return 3;
        case PHOTOMETRIC_CIELAB:
        case PHOTOMETRIC_ICCLAB:
            return samples >= 3 ? 3 : 1;  // lightness alone is allowed
        case PHOTOMETRIC_SEPARATED:
            return 4;
        default:
            return 1;
    }
}

std::uint64_t TifLayout::BytesPerLine() const {
    const std::uint64_t samplesPerBlock =
        Blocks() ? std::uint64_t{blockWidth} * blockHeight + 2 : static_cast<unsigned>(planar ? 1 : samples);
    const std::uint64_t blocks = (chunkWidth + std::uint64_t{blockWidth} - 1) / blockWidth;
    return (blocks * samplesPerBlock * static_cast<unsigned>(bits) + 7) / 8;
}

tmsize_t TifFile::Read(thandle_t self, void* target, tmsize_t size) {
    MemoryFile& file = *static_cast<MemoryFile*>(self);
    const Bytes found =
        Slice(file.bytes, file.position, static_cast<std::uint64_t>(std::max<tmsize_t>(size, 0)));
    if (!found.empty()) std::memcpy(target, found.data(), found.size());
    file.position += found.size();
    return static_cast<tmsize_t>(found.size());
}

toff_t TifFile::Seek(thandle_t self, toff_t offset, int whence) {
    MemoryFile& file = *static_cast<MemoryFile*>(self);
    const std::uint64_t base = whence == SEEK_CUR   ? file.position
                               : whence == SEEK_END ? file.bytes.size()
                                                    : 0;
    file.position = base + offset;
    return file.position;
}

TIFF* TifFile::OpenHandle(MemoryFile& file) {
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    if (!options) return nullptr;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, kLargestBlock);
    TIFFOpenOptionsSetErrorHandlerExtR(options, Silent, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, Silent, nullptr);
    // "c": strips stay as they are, instead of being presented in small pieces.
    TIFF* handle = TIFFClientOpenExt(
        "", "rc", &file, Read, [](thandle_t, void*, tmsize_t) -> tmsize_t { return 0; }, Seek,
        [](thandle_t) { return 0; },
        [](thandle_t self) -> toff_t { return static_cast<MemoryFile*>(self)->bytes.size(); },
        [](thandle_t self, void** base, toff_t* size) {
            // libtiff only reads from the mapping; its interface is older than const.
            const Bytes bytes = static_cast<MemoryFile*>(self)->bytes;
            *base = const_cast<std::uint8_t*>(bytes.data());
            *size = bytes.size();
            return 1;
        },
        [](thandle_t, void*, toff_t) {}, options);
    TIFFOpenOptionsFree(options);
    return handle;
}

Result<TifFile> TifFile::Open(Bytes file) {
    TifFile opened;
    opened.file_ = std::make_unique<MemoryFile>(MemoryFile{file});
    opened.handle_.reset(OpenHandle(*opened.file_));
    if (!opened.handle_) return Damaged("the directory of the first picture cannot be read");
    opened.GoToFirstFullPicture();
    TRY(opened.ReadLayout());
    return opened;
}

void TifFile::GoToFirstFullPicture() {
    TIFF* handle = handle_.get();
    if (!IsThumbnailOrMask(handle)) return;
    for (int i = 1; i < kDirectoriesLookedAt && TIFFReadDirectory(handle); ++i)
        if (!IsThumbnailOrMask(handle)) return;
    TIFFSetDirectory(handle, 0);
}

Result<void> TifFile::ReadLayout() {
    TIFF* handle = handle_.get();
    layout_.width = Field<std::uint32_t>(handle, TIFFTAG_IMAGEWIDTH);
    layout_.height = Field<std::uint32_t>(handle, TIFFTAG_IMAGELENGTH);
    layout_.bits = Field<std::uint16_t>(handle, TIFFTAG_BITSPERSAMPLE, 1);
    layout_.samples = Field<std::uint16_t>(handle, TIFFTAG_SAMPLESPERPIXEL, 1);
    layout_.format = Field<std::uint16_t>(handle, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    layout_.compression = Field<std::uint16_t>(handle, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    layout_.photometric = Field<std::uint16_t>(handle, TIFFTAG_PHOTOMETRIC,
                                               static_cast<std::uint16_t>(GuessPhotometric(layout_)));
    layout_.orientation = Field<std::uint16_t>(handle, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    layout_.reversed =
        Field<std::uint16_t>(handle, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) == FILLORDER_LSB2MSB;
    layout_.planar =
        layout_.samples > 1 &&
        Field<std::uint16_t>(handle, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
    layout_.swapped = TIFFIsByteSwapped(handle) != 0;
    if (layout_.compression == COMPRESSION_LZW || layout_.compression == COMPRESSION_ADOBE_DEFLATE ||
        layout_.compression == COMPRESSION_DEFLATE)
        layout_.predictor = Field<std::uint16_t>(handle, TIFFTAG_PREDICTOR, PREDICTOR_NONE);
    if (layout_.width == 0 || layout_.height == 0) return Damaged("the picture has no size");
    if (layout_.bits < 1 || layout_.bits > 64 || layout_.samples < 1)
        return Damaged("the samples have no size");

    if (layout_.compression == COMPRESSION_JPEG && layout_.Blocks()) {
        // The JPEG decoder brings chroma to full size better than repeating it would.
        TIFFSetField(handle, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        layout_.photometric = PHOTOMETRIC_RGB;
    }
    if (layout_.Blocks()) {
        std::uint16_t across = 1;
        std::uint16_t down = 1;
        TIFFGetFieldDefaulted(handle, TIFFTAG_YCBCRSUBSAMPLING, &across, &down);
        const auto allowed = [](int n) { return n == 1 || n == 2 || n == 4; };
        if (!allowed(across) || !allowed(down)) return Damaged("chroma of an impossible size");
        layout_.blockWidth = across;
        layout_.blockHeight = down;
    }
    ReadExtraSamples();
    return ReadChunkGrid();
}

void TifFile::ReadExtraSamples() {
    const int extra = layout_.samples - layout_.Colors();
    if (extra <= 0) return;
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    if (!TIFFGetField(handle_.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds) || !kinds) {
        // Old writers of RGBA did not say what the fourth sample is. One that is said to be unspecified,
        // though, is a mask or a spot colour and no transparency.
        if (layout_.photometric == PHOTOMETRIC_RGB && extra == 1) layout_.alphaSample = 3;
        return;
    }
    for (int i = 0; i < std::min<int>(count, extra); ++i) {
        if (kinds[i] != EXTRASAMPLE_ASSOCALPHA && kinds[i] != EXTRASAMPLE_UNASSALPHA) continue;
        layout_.alphaSample = layout_.Colors() + i;
        layout_.premultiplied = kinds[i] == EXTRASAMPLE_ASSOCALPHA;
        return;
    }
}

Result<void> TifFile::ReadChunkGrid() {
    TIFF* handle = handle_.get();
    layout_.tiled = TIFFIsTiled(handle) != 0;
    if (layout_.tiled) {
        layout_.chunkWidth = Field<std::uint32_t>(handle, TIFFTAG_TILEWIDTH);
        layout_.chunkHeight = Field<std::uint32_t>(handle, TIFFTAG_TILELENGTH);
        if (Field<std::uint32_t>(handle, TIFFTAG_TILEDEPTH, 1) > 1) return Unsupported("tiles with a depth");
    } else {
        layout_.chunkWidth = layout_.width;
        layout_.chunkHeight =
            std::min(layout_.height, Field<std::uint32_t>(handle, TIFFTAG_ROWSPERSTRIP, UINT32_MAX));
    }
    if (layout_.chunkWidth == 0 || layout_.chunkHeight == 0) return Damaged("strips or tiles have no size");
    const auto chunksFor = [](std::uint32_t side, std::uint32_t chunk) { return (side - 1) / chunk + 1; };
    layout_.chunksAcross = chunksFor(layout_.width, layout_.chunkWidth);
    layout_.chunksDown = chunksFor(layout_.height, layout_.chunkHeight);
    const std::uint32_t chunks = layout_.tiled ? TIFFNumberOfTiles(handle) : TIFFNumberOfStrips(handle);
    layout_.chunksPerPlane = chunks / static_cast<unsigned>(layout_.planar ? layout_.samples : 1);
    // Each chunk has an entry in the directory, so there cannot be more of them than bytes.
    if (std::uint64_t{layout_.chunksAcross} * layout_.chunksDown > layout_.chunksPerPlane ||
        chunks > file_->bytes.size())
        return Damaged("strips or tiles are missing");
    return {};
}

Resolution TifFile::DotsPerInch() const {
    TIFF* handle = handle_.get();
    float x = 0;
    float y = 0;
    if (!TIFFGetField(handle, TIFFTAG_XRESOLUTION, &x) || !TIFFGetField(handle, TIFFTAG_YRESOLUTION, &y))
        return {};
    const auto unit = Field<std::uint16_t>(handle, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    const double perInch = unit == RESUNIT_INCH ? 1 : unit == RESUNIT_CENTIMETER ? 2.54 : 0;
    const Resolution resolution{x * perInch, y * perInch};
    const bool plausible = std::isfinite(resolution.x) && std::isfinite(resolution.y);
    return plausible && resolution.Known() ? resolution : Resolution{};
}

Bytes TifFile::IccProfile() const {
    std::uint32_t size = 0;
    void* data = nullptr;
    if (!TIFFGetField(handle_.get(), TIFFTAG_ICCPROFILE, &size, &data) || !data) return {};
    return {static_cast<const std::uint8_t*>(data), size};
}

}  // namespace tessara
