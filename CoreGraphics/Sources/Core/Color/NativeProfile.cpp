// NativeProfile.cpp: which profile of Little CMS stands for a space, and how the profile shows.

#include "Core/Color/NativeProfile.h"

#include "XGColorSpace.h"
#include "XGColorSpaceProfile.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/EngineContext.h"
#include "Core/Color/RowTransform.h"
#include "Core/Color/XGColorSpaceProfileRecord.h"

#include <lcms2.h>

#include <array>
#include <cmath>
#include <memory>

namespace cg {

namespace {

struct DeleteTransform {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, DeleteTransform>;

// What the screen shows is sRGB: the device's gray and RGB have its tone curve, as they pass into
// it unchanged, rather than the linear one of their calibration.
void* sRGBProfile() {
    static void* const profile = cmsCreate_sRGBProfileTHR(engineContext());
    return profile;
}

void* sRGBGrayProfile() {
    static void* const profile = [] {
        constexpr double parameters[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
        constexpr int kIEC61966 = 4;
        const ToneCurve curve(cmsBuildParametricToneCurve(engineContext(), kIEC61966, parameters));
        return cmsCreateGrayProfileTHR(engineContext(), cmsD50_xyY(), curve.get());
    }();
    return profile;
}

constexpr int kGridPoints = 9;

// Whether colours all over the space come out as they were, less than half a step of 8 bits away:
// no rounding then moves them by more than one.
template <std::size_t channels>
bool keepsGrid(void* transform) {
    constexpr float kTolerance = 0.5f / 255;
    std::array<int, channels> position = {};
    for (;;) {
        std::array<float, channels> in, out = {};
        for (std::size_t index = 0; index < channels; ++index)
            in[index] = static_cast<float>(position[index]) / (kGridPoints - 1);
        cmsDoTransform(transform, in.data(), out.data(), 1);
        for (std::size_t index = 0; index < channels; ++index) {
            if (!(std::abs(in[index] - out[index]) < kTolerance))
                return false;
        }
        std::size_t index = 0;
        while (index < channels && ++position[index] == kGridPoints)
            position[index++] = 0;
        if (index == channels)
            return true;
    }
}

bool matchesSRGB(CGColorSpaceRef space) {
    const bool isGray = space->model == kCGColorSpaceModelMonochrome;
    void* const profile = nativeProfileOf(space);
    void* const standard = isGray ? sRGBGrayProfile() : sRGBProfile();
    if (!profile || !standard)
        return false;
    const cmsUInt32Number format = isGray ? TYPE_GRAY_FLT : TYPE_RGB_FLT;
    const Transform transform(
        cmsCreateTransform(profile, format, standard, format, INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE));
    return transform && (isGray ? keepsGrid<1>(transform.get()) : keepsGrid<3>(transform.get()));
}

bool haveSameBytes(CGColorSpaceRef a, CGColorSpaceRef b) {
    const auto first = a->profile.load(std::memory_order_acquire);
    const auto second = b->profile.load(std::memory_order_acquire);
    return first && second && first->data && second->data &&
           CFEqual(first->data.get(), second->data.get());
}

} // namespace

bool isDeviceLike(CGColorSpaceRef space) {
    return space == XGColorSpaceGetDeviceGray() || space == XGColorSpaceGetDeviceRGB() ||
           XGColorSpaceIsSRGB(space);
}

bool showsAsSRGB(CGColorSpaceRef space) {
    if (isDeviceLike(space))
        return true;
    if (space->model != kCGColorSpaceModelMonochrome && space->model != kCGColorSpaceModelRGB)
        return false;
    auto known = space->sRGBLikeness.load(std::memory_order_relaxed);
    if (known == CGColorSpace::Likeness::Unknown) {
        known = matchesSRGB(space) ? CGColorSpace::Likeness::Same : CGColorSpace::Likeness::Other;
        space->sRGBLikeness.store(known, std::memory_order_relaxed);
    }
    return known == CGColorSpace::Likeness::Same;
}

void* nativeProfileOf(CGColorSpaceRef space) {
    if (space == XGColorSpaceGetDeviceRGB())
        return sRGBProfile();
    if (space == XGColorSpaceGetDeviceGray())
        return sRGBGrayProfile();
    return XGColorSpaceProfileGetNativeObject(XGColorSpaceGetProfile(space));
}

bool needsConversion(CGColorSpaceRef from, CGColorSpaceRef to) {
    if (!from || !to || from == to)
        return false;
    if (from->model != to->model || from->componentCount != to->componentCount)
        return true;
    if (from->isDevice || to->isDevice)
        return false;
    if (haveSameBytes(from, to))
        return false;
    return !showsAsSRGB(from) || !showsAsSRGB(to);
}

} // namespace cg
