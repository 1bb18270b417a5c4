// XGColorSpaceProfile.cpp: profiles over Little CMS.

#include "XGColorSpaceProfile.h"

#include <CoreFoundation/CFString.h>

#include "Core/Color/EngineContext.h"
#include "Core/Color/XGColorSpaceProfileRecord.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace {

// Without our context the engine would use its own, whose locks crash when memory runs out.
template <typename Make, typename... Arguments>
void* inEngine(Make make, Arguments... arguments) {
    const cmsContext context = cg::engineContext();
    return context ? make(context, arguments...) : nullptr;
}

// Deliberate: profiles of different data are equal as long as their black points are, which only
// calibrated ones have.
Boolean equal(CFTypeRef a, CFTypeRef b) {
    return cg::as<XGColorSpaceProfileRef>(a)->blackPoint ==
           cg::as<XGColorSpaceProfileRef>(b)->blackPoint;
}

constexpr CFRuntimeClass kProfileClass = {
    .className = "CGColorSpaceProfile",
    .copy = cg::copyByRetaining,
    .finalize = cg::finalize<XGColorSpaceProfile>,
    .equal = equal,
};

using Profile = cf::Ref<XGColorSpaceProfileRef>;

// Empty when there is no native profile or no memory.
Profile makeProfile(cg::NativeProfile native) {
    if (!native)
        return nullptr;
    const auto profile = cg::create<XGColorSpaceProfile>(kProfileClass);
    if (profile)
        profile->native = std::move(native);
    return cf::adopt(profile);
}

cg::NativeProfile openBytes(const void* bytes, std::size_t length) {
    if (!bytes || length == 0 || length > std::numeric_limits<cmsUInt32Number>::max())
        return nullptr;
    return cg::NativeProfile(
        inEngine(cmsOpenProfileFromMemTHR, bytes, static_cast<cmsUInt32Number>(length)));
}

// All of a provider's bytes as data; empty unless the last one can be read, too.
cf::Ref<CFMutableDataRef> readProvider(CGDataProviderRef provider, CFIndex size) {
    auto data = cf::adopt(CFDataCreateMutable(nullptr, 0));
    CFDataSetLength(data.get(), size);
    const auto wanted = static_cast<std::size_t>(size);
    std::size_t read = 0;
    if (!data || CFDataGetLength(data.get()) != size ||
        !XGDataProviderReadBytes(provider, CFDataGetMutableBytePtr(data.get()), 0, wanted, &read) ||
        read != wanted)
        return nullptr;
    return data;
}

// A profile over the provider's memory, which stays locked for it.
Profile makeProfileOverLocked(CGDataProviderRef provider, const void* bytes, std::size_t size) {
    Profile profile = makeProfile(openBytes(bytes, size));
    if (profile)
        profile.get()->provider = cf::retain(provider);
    else
        XGDataProviderUnlockData(provider);
    return profile;
}

cmsCIExyY nativeWhite(const CGFloat whitePoint[3]) {
    return {whitePoint[0], whitePoint[1], whitePoint[2]};
}

} // namespace

// ---- Read

XGColorSpaceProfileRef XGColorSpaceProfileCreate(const void* bytes, size_t length) {
    return makeProfile(openBytes(bytes, length)).release();
}

XGColorSpaceProfileRef XGColorSpaceProfileCreateFromCFData(CFDataRef data) {
    if (!data)
        return nullptr;
    Profile profile = makeProfile(
        openBytes(CFDataGetBytePtr(data), static_cast<std::size_t>(CFDataGetLength(data))));
    if (profile)
        profile.get()->data = cf::retain(data);
    return profile.release();
}

XGColorSpaceProfileRef XGColorSpaceProfileCreateWithProvider(CGDataProviderRef provider) {
    std::int64_t size = XGDataProviderGetSize(provider);
    if (size == 0)
        return nullptr;
    if (const void* const bytes = XGDataProviderLockData(provider)) {
        size = XGDataProviderGetSize(provider);
        return makeProfileOverLocked(provider, bytes, static_cast<std::size_t>(size)).release();
    }
    // The engine counts bytes in 32 bits; a stream that cannot be measured has far more.
    if (size < 0 || size > std::numeric_limits<std::int32_t>::max())
        return nullptr;
    const auto data = readProvider(provider, static_cast<CFIndex>(size));
    return XGColorSpaceProfileCreateFromCFData(data.get());
}

XGColorSpaceProfileRef XGColorSpaceProfileCreateFromFile(const char* path) {
    if (!path || !*path)
        return nullptr;
    const std::size_t size = std::strlen(path) + 1;
    std::unique_ptr<char[]> copy(new (std::nothrow) char[size]);
    if (!copy)
        return nullptr;
    std::copy_n(path, size, copy.get());
    Profile profile =
        makeProfile(cg::NativeProfile(inEngine(cmsOpenProfileFromFileTHR, path, "rb")));
    if (profile)
        profile.get()->path = std::move(copy);
    return profile.release();
}

// ---- Made of numbers

XGColorSpaceProfileRef XGColorSpaceProfileCreateCalibratedGray(const CGFloat whitePoint[3],
                                                               const CGFloat blackPoint[3],
                                                               CGFloat gamma) {
    if (!whitePoint || !blackPoint || !std::isfinite(gamma) || gamma < 0)
        return nullptr;
    cg::ToneCurve curve(cmsBuildGamma(cg::engineContext(), gamma));
    if (!curve)
        return nullptr;
    const cmsCIExyY white = nativeWhite(whitePoint);
    Profile profile =
        makeProfile(cg::NativeProfile(inEngine(cmsCreateGrayProfileTHR, &white, curve.get())));
    if (profile) {
        std::copy_n(blackPoint, 3, profile.get()->blackPoint.begin());
        profile.get()->curves[0] = std::move(curve);
    }
    return profile.release();
}

XGColorSpaceProfileRef XGColorSpaceProfileCreateCalibratedRGB(const CGFloat whitePoint[3],
                                                              const CGFloat blackPoint[3],
                                                              const CGFloat gamma[3]) {
    if (!whitePoint || !blackPoint || !gamma)
        return nullptr;
    std::array<cg::ToneCurve, 3> curves;
    std::array<cmsToneCurve*, 3> native = {};
    for (std::size_t index = 0; index < curves.size(); ++index) {
        curves[index].reset(cmsBuildGamma(cg::engineContext(), gamma[index]));
        native[index] = curves[index].get();
        if (!native[index])
            return nullptr;
    }
    const cmsCIExyY white = nativeWhite(whitePoint);
    constexpr cmsCIExyYTRIPLE primaries = {
        {0.7355, 0.2645, 1}, {0.2658, 0.7243, 1}, {0.1669, 0.0085, 1}};
    Profile profile = makeProfile(
        cg::NativeProfile(inEngine(cmsCreateRGBProfileTHR, &white, &primaries, native.data())));
    if (profile) {
        std::copy_n(blackPoint, 3, profile.get()->blackPoint.begin());
        profile.get()->curves = std::move(curves);
    }
    return profile.release();
}

XGColorSpaceProfileRef XGColorSpaceProfileCreateLab(const CGFloat whitePoint[3]) {
    if (!whitePoint)
        return nullptr;
    const cmsCIExyY white = nativeWhite(whitePoint);
    return makeProfile(cg::NativeProfile(inEngine(cmsCreateLab4ProfileTHR, &white))).release();
}

XGColorSpaceProfileRef XGColorSpaceProfileCreateUncalibratedLab(void) {
    constexpr CGFloat white[] = {1, 1, 1};
    return XGColorSpaceProfileCreateLab(white);
}

XGColorSpaceProfileRef XGColorSpaceProfileCreateUncalibratedCMYK(void) {
    const auto data = cg::copyResource(CFSTR("SWOP"), CFSTR("icc"));
    if (!data)
        CG_LOG_ERROR("the library's CMYK profile is missing");
    return XGColorSpaceProfileCreateFromCFData(data.get());
}

XGColorSpaceProfileRef XGColorSpaceProfileRetain(XGColorSpaceProfileRef profile) {
    return cg::retain(profile);
}

void XGColorSpaceProfileRelease(XGColorSpaceProfileRef profile) {
    cg::release(profile);
}

// ---- Queries

CGColorSpaceModel XGColorSpaceProfileGetModel(XGColorSpaceProfileRef profile) {
    if (!profile)
        return kCGColorSpaceModelUnknown;
    switch (cmsGetColorSpace(profile->native.get())) {
    case cmsSigGrayData:
        return kCGColorSpaceModelMonochrome;
    case cmsSigRgbData:
        return kCGColorSpaceModelRGB;
    case cmsSigCmykData:
    case cmsSigCmyData:
        return kCGColorSpaceModelCMYK;
    case cmsSigLabData:
        return kCGColorSpaceModelLab;
    default:
        return kCGColorSpaceModelUnknown;
    }
}

void* XGColorSpaceProfileGetNativeObject(XGColorSpaceProfileRef profile) {
    return profile ? profile->native.get() : nullptr;
}
