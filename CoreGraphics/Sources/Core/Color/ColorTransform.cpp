// ColorTransform.cpp: transforms of Little CMS between the profiles of two spaces.

#include "XGColorSpace.h"
#include "XGColorSpaceProfile.h"

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/ColorTransform.h"
#include "Core/Color/XGColorSpaceProfileRecord.h"

#include <lcms2.h>

#include <memory>
#include <utility>

namespace cg {

namespace {

struct DeleteTransform {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, DeleteTransform>;

// ---- Profiles

// What the screen shows is sRGB: the device's gray and RGB have its tone curve, as they pass into
// it unchanged, rather than the linear one of their calibration.
void* sRGBProfile() {
    static void* const profile = cmsCreate_sRGBProfile();
    return profile;
}

void* sRGBGrayProfile() {
    static void* const profile = [] {
        constexpr double parameters[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
        constexpr int kIEC61966 = 4;
        const ToneCurve curve(cmsBuildParametricToneCurve(nullptr, kIEC61966, parameters));
        return cmsCreateGrayProfile(cmsD50_xyY(), curve.get());
    }();
    return profile;
}

void* profileOf(CGColorSpaceRef space) {
    if (space == XGColorSpaceGetDeviceRGB())
        return sRGBProfile();
    if (space == XGColorSpaceGetDeviceGray())
        return sRGBGrayProfile();
    return XGColorSpaceProfileGetNativeObject(XGColorSpaceGetProfile(space));
}

// ---- Components

// How the engine counts the components of a model: inks in per cent, lightness to 100.
struct Encoding {
    cmsUInt32Number format;
    std::array<CGFloat, 4> scale;
};

std::optional<Encoding> encodingOf(CGColorSpaceRef space) {
    switch (CGColorSpaceGetModel(space)) {
    case kCGColorSpaceModelMonochrome:
        return Encoding{TYPE_GRAY_FLT, {1, 1, 1, 1}};
    case kCGColorSpaceModelRGB:
        return Encoding{TYPE_RGB_FLT, {1, 1, 1, 1}};
    case kCGColorSpaceModelCMYK:
        return Encoding{TYPE_CMYK_FLT, {100, 100, 100, 100}};
    case kCGColorSpaceModelLab:
        return Encoding{TYPE_Lab_FLT, {100, 1, 1, 1}};
    default:
        return std::nullopt;
    }
}

cmsUInt32Number nativeIntent(CGColorRenderingIntent intent) {
    switch (intent) {
    case kCGRenderingIntentAbsoluteColorimetric:
        return INTENT_ABSOLUTE_COLORIMETRIC;
    case kCGRenderingIntentRelativeColorimetric:
        return INTENT_RELATIVE_COLORIMETRIC;
    case kCGRenderingIntentSaturation:
        return INTENT_SATURATION;
    default:
        return INTENT_PERCEPTUAL;
    }
}

// ---- Transforms

// The transform that this thread used last: colours are converted in runs, and each thread's own
// needs no lock.
struct LastTransform {
    cf::Ref<CGColorSpaceRef> from;
    cf::Ref<CGColorSpaceRef> to;
    cmsUInt32Number intent = 0;
    Transform transform;
};

void* transformBetween(CGColorSpaceRef from, cmsUInt32Number fromFormat, CGColorSpaceRef to,
                       cmsUInt32Number toFormat, cmsUInt32Number intent) {
    static thread_local LastTransform last;
    if (last.transform && last.from.get() == from && last.to.get() == to && last.intent == intent)
        return last.transform.get();
    void* const fromProfile = profileOf(from);
    void* const toProfile = profileOf(to);
    if (!fromProfile || !toProfile)
        return nullptr;
    last = {cf::retain(from), cf::retain(to), intent,
            Transform(cmsCreateTransform(fromProfile, fromFormat, toProfile, toFormat, intent,
                                         cmsFLAGS_NOCACHE | cmsFLAGS_NOOPTIMIZE))};
    return last.transform.get();
}

} // namespace

std::optional<ColorComponents> transformed(CGColorSpaceRef from, CGColorSpaceRef to,
                                           CGColorRenderingIntent intent,
                                           const ColorComponents& components) {
    const auto source = encodingOf(from);
    const auto destination = encodingOf(to);
    if (!source || !destination)
        return std::nullopt;
    void* const transform =
        transformBetween(from, source->format, to, destination->format, nativeIntent(intent));
    if (!transform)
        return std::nullopt;

    ColorComponents in = components;
    for (std::size_t index = 0; index < in.size(); ++index)
        in[index] *= source->scale[index];
    ColorComponents out = {};
    cmsDoTransform(transform, in.data(), out.data(), 1);
    for (std::size_t index = 0; index < out.size(); ++index)
        out[index] /= destination->scale[index];
    return out;
}

} // namespace cg
