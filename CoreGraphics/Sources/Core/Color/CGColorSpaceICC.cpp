// CGColorSpaceICC.cpp: spaces of ICC profiles, and the profiles of spaces.

#include "XGColorSpace.h"
#include "XGColorSpaceProfile.h"
#include <CoreFoundation/CFBundle.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>
#include <CoreGraphics/CGColorSpace.h>
#include <Host/Host.h>

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/XGColorSpaceProfileRecord.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"

#include <array>
#include <climits>

namespace {

using Profile = cf::Ref<XGColorSpaceProfileRef>;

constexpr std::array<std::size_t, 4> kComponentCounts = {1, 3, 4, 3};
static_assert(kCGColorSpaceModelMonochrome == 0 && kCGColorSpaceModelLab == 3,
              "a count for every model that a profile can have");

} // namespace

// ---- Creation

CGColorSpaceRef CGColorSpaceCreateWithICCProfile(CFDataRef data) {
    Profile profile = cf::adopt(XGColorSpaceProfileCreateFromCFData(data));
    if (!data)
        return nullptr;
    const CGColorSpaceModel model = XGColorSpaceProfileGetModel(profile.get());
    if (model < kCGColorSpaceModelMonochrome || model > kCGColorSpaceModelLab) {
        CG_LOG_WARNING("Colorspace model %u is not handled or supported",
                       static_cast<unsigned>(model));
        return nullptr;
    }
    const auto space =
        cg::createColorSpace(model, kComponentCounts[static_cast<std::size_t>(model)]);
    if (space)
        space->profile.store(profile.release(), std::memory_order_release);
    return space;
}

CGColorSpaceRef CGColorSpaceCreateICCBased(size_t, const CGFloat*, CGDataProviderRef,
                                           CGColorSpaceRef alternate) {
    const bool isPattern = CGColorSpaceGetModel(alternate) == kCGColorSpaceModelPattern;
    return isPattern ? nullptr : cg::retain(alternate);
}

cf::Ref<CFDataRef> cg::copyResource(CFStringRef name, CFStringRef type) {
    static const char imageAddress = 0;
    const auto bundle =
        cf::adopt(_CFBundleCreateWithImageOfAddress(nullptr, &imageAddress, CFSTR("CoreGraphics")));
    const auto url = cf::adopt(CFBundleCopyResourceURL(bundle.get(), name, type, nullptr));
    UInt8 path[PATH_MAX];
    if (!CFURLGetFileSystemRepresentation(url.get(), true, path, sizeof path))
        return nullptr;
    const host::Descriptor file(HostFileOpenForReading(reinterpret_cast<const char*>(path)));
    HostMapping mapping = {};
    if (!HostFileMap(file.get(), &mapping))
        return nullptr;
    auto data = cf::adopt(CFDataCreate(nullptr, static_cast<const UInt8*>(mapping.bytes),
                                       static_cast<CFIndex>(mapping.size)));
    HostFileUnmap(&mapping);
    return data;
}

CGColorSpaceRef cg::createSRGB() {
    const auto data = copyResource(CFSTR("sRGB2014"), CFSTR("icc"));
    const CGColorSpaceRef space = CGColorSpaceCreateWithICCProfile(data.get());
    if (!space && HostLogIsEnabled(kHostLogError))
        logMessage(kHostLogError, "__CGColorSpaceCreateSRGB", "Failed to create sRGB colorspace");
    return space;
}

// Asked for again as long as it could not be made.
CGColorSpaceRef XGColorSpaceGetSRGB(void) {
    static std::atomic<CGColorSpaceRef> shared = nullptr;
    if (const CGColorSpaceRef made = shared.load(std::memory_order_acquire))
        return made;
    auto space = cf::adopt(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    CGColorSpaceRef first = nullptr;
    if (!shared.compare_exchange_strong(first, space.get(), std::memory_order_acq_rel))
        return first;
    return space.release();
}

// ---- Profiles

namespace {

XGColorSpaceProfileRef createProfile(CGColorSpaceRef space) {
    const auto& calibration = space->calibration;
    if (const auto* const gray = std::get_if<cg::GrayCalibration>(&calibration))
        return XGColorSpaceProfileCreateCalibratedGray(gray->whitePoint.data(),
                                                       gray->blackPoint.data(), gray->gamma);
    if (const auto* const rgb = std::get_if<cg::RGBCalibration>(&calibration))
        return XGColorSpaceProfileCreateCalibratedRGB(rgb->whitePoint.data(),
                                                      rgb->blackPoint.data(), rgb->gamma.data());
    if (space->model == kCGColorSpaceModelCMYK)
        return XGColorSpaceProfileCreateUncalibratedCMYK();
    if (space->model == kCGColorSpaceModelLab)
        return XGColorSpaceProfileCreateUncalibratedLab();
    return nullptr;
}

CFDataRef copySourceData(CGColorSpaceRef space) {
    const XGColorSpaceProfileRef profile =
        space ? space->profile.load(std::memory_order_acquire) : nullptr;
    return profile ? cg::retain(profile->data.get()) : nullptr;
}

} // namespace

// Threads that ask at once each make one; the first to finish wins.
XGColorSpaceProfileRef XGColorSpaceGetProfile(CGColorSpaceRef space) {
    if (!space)
        return nullptr;
    if (const auto cached = space->profile.load(std::memory_order_acquire))
        return cached;
    Profile profile = cf::adopt(createProfile(space));
    XGColorSpaceProfileRef first = nullptr;
    if (!space->profile.compare_exchange_strong(first, profile.get(), std::memory_order_acq_rel))
        return first;
    return profile.release();
}

CFDataRef CGColorSpaceCopyICCData(CGColorSpaceRef space) {
    return copySourceData(space);
}

CFDataRef CGColorSpaceCopyICCProfile(CGColorSpaceRef space) {
    return copySourceData(space);
}
