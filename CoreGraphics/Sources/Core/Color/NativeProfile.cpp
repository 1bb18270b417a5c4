// NativeProfile.cpp: which profile of Little CMS stands for a space, and how the profile shows.

#include "Core/Color/NativeProfile.h"

#include "XGColorSpace.h"
#include "XGColorSpaceProfile.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/EngineContext.h"
#include "Core/Color/EngineMemory.h"
#include "Core/Color/RowTransform.h"
#include "Core/Color/XGColorSpaceProfileRecord.h"

#include <lcms2.h>

#include <array>
#include <atomic>
#include <cmath>
#include <memory>
#include <optional>

namespace cg {

namespace {

struct DeleteTransform {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, DeleteTransform>;

// A profile made the first time that it can be: what failed for want of memory is tried again.
template <void* (*make)()>
void* shared() {
    static constinit std::atomic<void*> kept = nullptr;
    if (void* const made = kept.load(std::memory_order_acquire))
        return made;
    void* const mine = make();
    void* first = nullptr;
    if (!mine || kept.compare_exchange_strong(first, mine))
        return mine;
    cmsCloseProfile(mine);
    return first;
}

void* makeSRGB() {
    return cmsCreate_sRGBProfileTHR(engineContext());
}

void* makeSRGBGray() {
    constexpr double parameters[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    constexpr int kIEC61966 = 4;
    const ToneCurve curve(cmsBuildParametricToneCurve(engineContext(), kIEC61966, parameters));
    return curve ? cmsCreateGrayProfileTHR(engineContext(), cmsD50_xyY(), curve.get()) : nullptr;
}

// What the screen shows is sRGB: the device's gray and RGB have its tone curve, as they pass into
// it unchanged, rather than the linear one of their calibration.
constexpr auto sRGBProfile = shared<makeSRGB>;
constexpr auto sRGBGrayProfile = shared<makeSRGBGray>;

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

// Nothing when memory runs out over the question, or there is no profile.
std::optional<bool> matchesSRGB(CGColorSpaceRef space) {
    const bool isGray = space->model == kCGColorSpaceModelMonochrome;
    void* const profile = nativeProfileOf(space);
    void* const standard = isGray ? sRGBGrayProfile() : sRGBProfile();
    if (!profile || !standard)
        return std::nullopt;
    const cmsUInt32Number format = isGray ? TYPE_GRAY_FLT : TYPE_RGB_FLT;
    const EngineTransform made = createEngineTransform(profile, format, standard, format,
                                                       INTENT_PERCEPTUAL, cmsFLAGS_NOCACHE);
    const Transform transform(made.native);
    if (!transform)
        return made.ranOutOfMemory ? std::nullopt : std::optional(false);
    return isGray ? keepsGrid<1>(transform.get()) : keepsGrid<3>(transform.get());
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
    using Likeness = CGColorSpace::Likeness;
    const Likeness known = space->sRGBLikeness.load(std::memory_order_relaxed);
    if (known != Likeness::Unknown)
        return known == Likeness::Same;
    const std::optional<bool> matches = matchesSRGB(space);
    if (matches)
        space->sRGBLikeness.store(*matches ? Likeness::Same : Likeness::Other,
                                  std::memory_order_relaxed);
    return matches.value_or(false);
}

bool hasOtherColors(CGColorSpaceRef space) {
    const bool isGrayOrRGB =
        space->model == kCGColorSpaceModelMonochrome || space->model == kCGColorSpaceModelRGB;
    return isGrayOrRGB && std::holds_alternative<std::monostate>(space->calibration) &&
           !showsAsSRGB(space);
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
        return !from->isDevice && hasOtherColors(from);
    if (haveSameBytes(from, to))
        return false;
    return !showsAsSRGB(from) || !showsAsSRGB(to);
}

} // namespace cg
