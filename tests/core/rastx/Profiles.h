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

}  // namespace tessara::test
