// CGColorSpaceComponents.cpp: what the components of a space's colours may be.

#include "XGColorSpace.h"

#include "Core/Color/CGColorSpaceRecord.h"

#include <algorithm>
#include <array>
#include <limits>

namespace {

CGFloat clamped(CGFloat value, CGFloat least, CGFloat most) {
    const bool isUsable =
        value >= least && value <= std::numeric_limits<CGFloat>::max(); // No NaN is.
    return isUsable ? std::min(value, most) : least;
}

void clampToUnit(const CGFloat* in, CGFloat* out, std::size_t count) {
    std::transform(in, in + count, out, [](CGFloat value) { return clamped(value, 0, 1); });
}

} // namespace

// Deliberate: the opacity is clamped in gray spaces alone, and lightness ends at 1, not at 100.
void XGColorSpaceClampComponents(CGColorSpaceRef space, const CGFloat* in, CGFloat* out) {
    if (!in || !out)
        return;
    switch (CGColorSpaceGetModel(space)) {
    case kCGColorSpaceModelMonochrome:
        return clampToUnit(in, out, 2);
    case kCGColorSpaceModelRGB:
        return clampToUnit(in, out, 3);
    case kCGColorSpaceModelCMYK:
        return clampToUnit(in, out, 4);
    case kCGColorSpaceModelLab:
        out[0] = clamped(in[0], 0, 1);
        out[1] = clamped(in[1], -100, 100);
        out[2] = clamped(in[2], -100, 100);
        return;
    case kCGColorSpaceModelPattern:
        return clampToUnit(in, out, 1);
    default:
        return;
    }
}

CGColorRef XGColorSpaceCopyDefaultColor(CGColorSpaceRef space) {
    constexpr std::array<CGFloat, 2> gray = {0, 1};
    constexpr std::array<CGFloat, 4> rgb = {0, 0, 0, 1};
    constexpr std::array<CGFloat, 5> cmyk = {0, 0, 0, 1, 1};
    constexpr std::array<CGFloat, 1> patternAlone = {1};

    CGColorSpaceRef decider = space;
    while (decider && decider->model == kCGColorSpaceModelPattern) {
        if (!decider->baseSpace)
            return CGColorCreate(space, patternAlone.data());
        decider = decider->baseSpace.get();
    }
    switch (CGColorSpaceGetModel(decider)) {
    case kCGColorSpaceModelMonochrome:
    case kCGColorSpaceModelIndexed:
        return CGColorCreate(space, gray.data());
    case kCGColorSpaceModelRGB:
        return CGColorCreate(space, rgb.data());
    case kCGColorSpaceModelCMYK:
        return CGColorCreate(space, cmyk.data());
    default:
        return nullptr;
    }
}
