#include "core/rastx/ColorProfile.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstdlib>

#include "core/ByteReader.h"
#include "core/Multiversion.h"

namespace tessara {
namespace {

struct CloseProfile {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
struct DeleteTransform {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using ProfileHandle = std::unique_ptr<void, CloseProfile>;
using TransformHandle = std::unique_ptr<void, DeleteTransform>;

cmsColorSpaceSignature SignatureOf(SampleColors colors) {
    switch (colors) {
        case SampleColors::Grey:
            return cmsSigGrayData;
        case SampleColors::Rgb:
            return cmsSigRgbData;
        case SampleColors::Cmyk:
            return cmsSigCmykData;
        case SampleColors::Lab:
            return cmsSigLabData;
    }
    return cmsSigRgbData;
}

cmsUInt32Number SampleLayout(SampleColors colors) {
    switch (colors) {
        case SampleColors::Grey:
            return TYPE_GRAY_8;
        case SampleColors::Rgb:
            return TYPE_BGRA_8;
        case SampleColors::Cmyk:
            return TYPE_CMYK_8;
        case SampleColors::Lab:
            return TYPE_Lab_8;
    }
    return TYPE_BGRA_8;
}

/// Whether a profile tells what samples of these colours mean. Device links and named colours are profiles
/// too, but say nothing about the samples of a picture. The header's signatures (ICC.1, 7.2) are read from
/// the bytes: a damaged profile holds numbers that the library's enumerations do not have.
bool Describes(Bytes icc, SampleColors colors) {
    ByteReader reader(icc);
    reader.Seek(12);
    const std::uint32_t kind = reader.U32Be();
    const std::uint32_t space = reader.U32Be();
    const std::uint32_t connection = reader.U32Be();
    return space == SignatureOf(colors) &&
           (kind == cmsSigInputClass || kind == cmsSigDisplayClass || kind == cmsSigOutputClass ||
            kind == cmsSigColorSpaceClass || kind == cmsSigAbstractClass) &&
           (connection == cmsSigXYZData || connection == cmsSigLabData);
}

TransformHandle MakeTransform(cmsHPROFILE profile, SampleColors colors, cmsUInt32Number flags) {
    const ProfileHandle target(cmsCreate_sRGBProfile());
    if (!target) return nullptr;
    return TransformHandle(cmsCreateTransform(profile, SampleLayout(colors), target.get(), TYPE_BGRA_8,
                                              INTENT_RELATIVE_COLORIMETRIC,
                                              flags | cmsFLAGS_BLACKPOINTCOMPENSATION));
}

bool NearlyEqual(Pixel a, Pixel b) {
    return std::abs(a.b - b.b) <= 1 && std::abs(a.g - b.g) <= 1 && std::abs(a.r - b.r) <= 1;
}

/// There are dozens of profiles of sRGB about; what they do tells them better than their names. The colours
/// of a coarse grid suffice.
bool LeavesColors(cmsHTRANSFORM transform) {
    constexpr int kStep = 17;
    std::array<Pixel, 16 * 16> plane;
    std::array<Pixel, 16 * 16> converted;
    for (int red = 0; red <= 255; red += kStep) {
        for (std::size_t i = 0; i < plane.size(); ++i)
            plane[i] = {static_cast<std::uint8_t>(kStep * (i / 16)),
                        static_cast<std::uint8_t>(kStep * (i % 16)), static_cast<std::uint8_t>(red), 255};
        cmsDoTransform(transform, plane.data(), converted.data(), static_cast<cmsUInt32Number>(plane.size()));
        if (!std::equal(plane.begin(), plane.end(), converted.begin(), NearlyEqual)) return false;
    }
    return true;
}

TESSARA_MULTIVERSION void MixInks(const std::uint8_t* in, std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t light = 255u - in[4 * i + 3];
        for (std::size_t c = 0; c < 3; ++c) {
            const std::uint32_t product = (255u - in[4 * i + 2 - c]) * light + 128;
            out[4 * i + c] = static_cast<std::uint8_t>((product + (product >> 8)) >> 8);
        }
        out[4 * i + 3] = 255;
    }
}

std::uint8_t EncodeSrgb(double linear) {
    const double light = std::clamp(linear, 0.0, 1.0);
    const double value = light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
    return static_cast<std::uint8_t>(std::lround(255 * value));
}

}  // namespace

class ColorProfile::Transform {
  public:
    Transform(TransformHandle handle, SampleColors colors) : handle_(std::move(handle)), colors_(colors) {
        if (colors_ == SampleColors::Grey) MakeGreys();
    }

    SampleColors Colors() const { return colors_; }
    const std::array<Pixel, 256>& Greys() const { return greys_; }
    bool ChangesGreys() const {
        for (std::size_t i = 0; i < greys_.size(); ++i)
            if (!NearlyEqual(greys_[i], Grey(static_cast<std::uint8_t>(i)))) return true;
        return false;
    }
    /// Safe to call from several threads: the library copies its cache for each call.
    void Convert(const void* samples, std::span<Pixel> pixels) const {
        cmsDoTransform(handle_.get(), samples, pixels.data(), static_cast<cmsUInt32Number>(pixels.size()));
    }

  private:
    void MakeGreys() {
        std::array<std::uint8_t, 256> levels;
        for (std::size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<std::uint8_t>(i);
        Convert(levels.data(), greys_);
    }

    TransformHandle handle_;
    SampleColors colors_;
    std::array<Pixel, 256> greys_;  ///< what each grey becomes
};

std::optional<ColorProfile> ColorProfile::Open(Bytes icc, SampleColors colors) {
    if (icc.size() > UINT32_MAX || !Describes(icc, colors)) return std::nullopt;
    const ProfileHandle profile(cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size())));
    if (!profile) return std::nullopt;
    if (colors == SampleColors::Rgb) {
        // The tables of the fast transform cost more than this whole test.
        const TransformHandle plain = MakeTransform(profile.get(), colors, cmsFLAGS_NOOPTIMIZE);
        if (!plain || LeavesColors(plain.get())) return std::nullopt;
    }
    TransformHandle handle = MakeTransform(profile.get(), colors, 0);
    if (!handle) return std::nullopt;

    auto transform = std::make_shared<const Transform>(std::move(handle), colors);
    if (colors == SampleColors::Grey && !transform->ChangesGreys()) return std::nullopt;
    ColorProfile opened;
    opened.transform_ = std::move(transform);
    return opened;
}

void ColorProfile::ConvertPixels(std::span<Pixel> pixels) const {
    if (transform_->Colors() == SampleColors::Rgb) {
        // Extra channels are left alone, and target and source are the same: alpha stays.
        transform_->Convert(pixels.data(), pixels);
        return;
    }
    assert(transform_->Colors() == SampleColors::Grey);
    for (Pixel& pixel : pixels) {
        const std::uint8_t alpha = pixel.a;
        pixel = transform_->Greys()[pixel.g];
        pixel.a = alpha;
    }
}

void ColorProfile::ConvertCmyk(Bytes cmyk, std::span<Pixel> pixels) const {
    assert(transform_->Colors() == SampleColors::Cmyk && cmyk.size() >= 4 * pixels.size());
    std::ranges::fill(pixels, kWhite);
    transform_->Convert(cmyk.data(), pixels);
}

void ColorProfile::ConvertLab(Bytes lab, std::span<Pixel> pixels) const {
    assert(transform_->Colors() == SampleColors::Lab && lab.size() >= 3 * pixels.size());
    std::ranges::fill(pixels, kWhite);
    transform_->Convert(lab.data(), pixels);
}

void CmykToPixels(Bytes cmyk, std::span<Pixel> pixels) {
    assert(cmyk.size() >= 4 * pixels.size());
    MixInks(cmyk.data(), pixels.size(), reinterpret_cast<std::uint8_t*>(pixels.data()));
}

Pixel LabToPixel(double lightness, double a, double b) {
    // CIE 15: the inverse of the cube root with its straight part near black.
    const auto ratio = [](double f) {
        constexpr double kDelta = 6.0 / 29;
        return f > kDelta ? f * f * f : 3 * kDelta * kDelta * (f - 4.0 / 29);
    };
    const double middle = (lightness + 16) / 116;
    const double x = 0.96422 * ratio(middle + a / 500);
    const double y = ratio(middle);
    const double z = 0.82521 * ratio(middle - b / 200);
    // D50 to the white of sRGB (D65) by the Bradford method, and to its primaries.
    return {EncodeSrgb(0.0719453 * x - 0.2289914 * y + 1.4052427 * z),
            EncodeSrgb(-0.9787684 * x + 1.9161415 * y + 0.0334540 * z),
            EncodeSrgb(3.1338561 * x - 1.6168667 * y - 0.4906146 * z), 255};
}

}  // namespace tessara
