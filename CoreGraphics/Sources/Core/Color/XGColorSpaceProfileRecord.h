// XGColorSpaceProfileRecord.h: what a profile is made of.
#pragma once

#include "XGColorSpaceProfile.h"
#include "XGDataProvider.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>

#include "Core/Color/CGColorSpaceRecord.h"

#include <lcms2.h>

#include <array>
#include <memory>

namespace cg {

struct CloseProfile {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using NativeProfile = std::unique_ptr<void, CloseProfile>;

struct FreeToneCurve {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using ToneCurve = std::unique_ptr<cmsToneCurve, FreeToneCurve>;

// The data of a resource of this library, by name and type; empty when there is no such file.
cf::Ref<CFDataRef> copyResource(CFStringRef name, CFStringRef type);

} // namespace cg

struct XGColorSpaceProfile {
    CFRuntimeBase base;
    cf::Ref<CFDataRef> data;             // What it was read from, when that was data.
    cf::Ref<CGDataProviderRef> provider; // Or a provider, which stays locked.
    std::unique_ptr<char[]> path;        // Or a file.
    cg::Triple blackPoint = {0, 0, 0};
    std::array<cg::ToneCurve, 3> curves;
    cg::NativeProfile native; // Goes first: it may refer to the data.
};
