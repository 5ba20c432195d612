#pragma once

#include <lcms2.h>

#include "core/Bytes.h"

/// Colour profiles as files carry them.
namespace tessara::test {

inline ByteVector SaveAndClose(cmsHPROFILE profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    ByteVector bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

inline ByteVector GreyProfile(double gamma) {
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    const ByteVector bytes = SaveAndClose(cmsCreateGrayProfile(cmsD50_xyY(), curve));
    cmsFreeToneCurve(curve);
    return bytes;
}

/// Inks of the primaries of sRGB: what they leave of the light multiplies.
inline ByteVector CmykProfile() {
    const cmsHPROFILE lab = cmsCreateLab4Profile(nullptr);
    const cmsHPROFILE rgb = cmsCreate_sRGBProfile();
    cmsHTRANSFORM toLab = cmsCreateTransform(rgb, TYPE_RGB_16, lab, TYPE_Lab_16, INTENT_PERCEPTUAL, 0);
    cmsStage* const corners = cmsStageAllocCLut16bit(nullptr, 2, 4, 3, nullptr);
    const auto sample = [](const cmsUInt16Number* inks, cmsUInt16Number* out, void* transform) -> int {
        cmsUInt16Number light[3];
        for (int i = 0; i < 3; ++i)
            light[i] = static_cast<cmsUInt16Number>((65535u - inks[i]) * (65535u - inks[3]) / 65535u);
        cmsDoTransform(transform, light, out, 1);
        return 1;
    };
    cmsStageSampleCLut16bit(corners, sample, toLab, 0);
    cmsPipeline* const inks = cmsPipelineAlloc(nullptr, 4, 3);
    // The format of the file wants curves before and after.
    cmsPipelineInsertStage(inks, cmsAT_END, cmsStageAllocToneCurves(nullptr, 4, nullptr));
    cmsPipelineInsertStage(inks, cmsAT_END, corners);
    cmsPipelineInsertStage(inks, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr));
    const cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 4.3);
    cmsSetDeviceClass(profile, cmsSigOutputClass);
    cmsSetColorSpace(profile, cmsSigCmykData);
    cmsSetPCS(profile, cmsSigLabData);
    cmsWriteTag(profile, cmsSigAToB0Tag, inks);
    cmsPipelineFree(inks);
    cmsDeleteTransform(toLab);
    for (const cmsHPROFILE done : {lab, rgb}) cmsCloseProfile(done);
    return SaveAndClose(profile);
}

}  // namespace tessara::test
