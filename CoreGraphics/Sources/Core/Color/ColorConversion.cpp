// ColorConversion.cpp: colours in other spaces, and mixed with each other.

#include "XGColor.h"
#include "XGColorSpace.h"
#include <CoreFoundation/CFString.h>

#include "Core/Color/CGColorRecord.h"
#include "Core/Color/ColorTransform.h"
#include "Core/Object/Diagnostics.h"

#include <algorithm>
#include <array>

CGColorRef XGColorCreateWithColor(CGColorSpaceRef space, CGColorRef color,
                                  CGColorRenderingIntent intent) {
    const CGColorRef native = cg::nativeColor(color);
    if (!space || !native)
        return nullptr;
    if (XGColorSpaceEqualToColorSpace(space, native->space.get()))
        return CGColorCreateCopy(native);
    cg::ColorComponents components = {}, converted = {};
    std::ranges::copy(native->components(), components.begin());
    if (!cg::convertColor(native->space.get(), components, space, intent, converted))
        return nullptr;
    return cg::makeColor(space, converted.data()).release();
}

// ---- Red, green and blue

namespace {

using Color = cf::Ref<CGColorRef>;
using RGBA = std::array<CGFloat, 4>;

RGBA firstFour(CGColor& color) {
    RGBA rgba = {};
    std::copy_n(color.components().begin(), std::min(color.count, rgba.size()), rgba.begin());
    return rgba;
}

// The model that decides: an uncoloured pattern over RGB is read as its RGB components.
CGColorSpaceModel readingModel(CGColorSpaceRef space) {
    const CGColorSpaceModel model = CGColorSpaceGetModel(space);
    const bool isOverRGB =
        model == kCGColorSpaceModelPattern &&
        CGColorSpaceGetModel(CGColorSpaceGetBaseColorSpace(space)) == kCGColorSpaceModelRGB;
    return isOverRGB ? kCGColorSpaceModelRGB : model;
}

RGBA convertedRGBA(CGColor& color) {
    const Color rgb = cf::adopt(
        XGColorCreateWithColor(XGColorSpaceGetDeviceRGB(), &color, kCGRenderingIntentDefault));
    if (rgb)
        return firstFour(*rgb.get());
    if (HostLogIsEnabled(kHostLogWarning))
        cg::logMessage(kHostLogWarning, "_CGColorGetRGBA",
                       "Unable to convert color %@ to RGB colorspace.",
                       static_cast<CFTypeRef>(&color));
    // Deliberate: a colour that nobody picked, so that the missing conversion is seen.
    return {1, 0, 0, 1};
}

RGBA readRGBA(CGColor& color) {
    const auto components = color.components();
    switch (readingModel(color.space.get())) {
    case kCGColorSpaceModelMonochrome:
        return {components[0], components[0], components[0], components[1]};
    case kCGColorSpaceModelRGB:
        return firstFour(color);
    case kCGColorSpaceModelPattern:
        if (HostLogIsEnabled(kHostLogWarning))
            cg::logMessage(kHostLogWarning, "_CGColorGetRGBA",
                           "Attempting to get RGBA color from a CGColorRef with a pattern.");
        return {0, 0, 0, 0};
    default:
        return convertedRGBA(color);
    }
}

} // namespace

void _CGColorGetRGBA(CGColorRef color, CGFloat* red, CGFloat* green, CGFloat* blue,
                     CGFloat* alpha) {
    const CGColorRef native = cg::nativeColor(color);
    const RGBA rgba = native ? readRGBA(*native) : RGBA{};
    const std::array outputs = {red, green, blue, alpha};
    for (std::size_t index = 0; index < outputs.size(); ++index) {
        if (outputs[index])
            *outputs[index] = rgba[index];
    }
}

// ---- Mixing

namespace {

constexpr CGFloat kFaintestMixed = 0.01f;

bool isTooFaint(CGColorRef color) {
    return !color || CGColorGetAlpha(color) < kFaintestMixed;
}

Color withWeightedAlpha(CGColorRef color, CGFloat weight) {
    return color ? cf::adopt(CGColorCreateCopyWithAlpha(color, CGColorGetAlpha(color) * weight))
                 : nullptr;
}

// The one of two visible colours that stands for the mixture as it is; empty when they must be
// mixed.
CGColorRef unmixed(CGColor& a, CGColor& b, CGFloat weightA, CGFloat weightB) {
    if (weightA == 1 && weightB == 0)
        return &a;
    if (weightA == 0 && weightB == 1)
        return &b;
    // Deliberate: of a colour and a pattern the first wins, whichever of them is the pattern.
    return a.pattern || b.pattern ? &a : nullptr;
}

Color mixComponents(CGColor& a, CGColor& b, CGFloat weightA, CGFloat weightB) {
    std::array<CGFloat, 5> mixed = {};
    if (a.count > mixed.size() && HostLogIsEnabled(kHostLogFault))
        cg::logMessage(kHostLogFault, "XGColorCreateBlendedColor", "Assertion failed");
    for (std::size_t index = 0; index < a.count; ++index)
        mixed[index] = a.components()[index] * weightA + b.components()[index] * weightB;
    return cg::makeColor(a.space.get(), mixed.data());
}

Color mix(CGColor& a, CGColor& b, CGFloat weightA, CGFloat weightB) {
    if (XGColorSpaceEqualToColorSpace(a.space.get(), b.space.get()))
        return mixComponents(a, b, weightA, weightB);
    const CGColorSpaceRef rgb = XGColorSpaceGetDeviceRGB();
    const Color first = cf::adopt(XGColorCreateWithColor(rgb, &a, kCGRenderingIntentDefault));
    const Color second = cf::adopt(XGColorCreateWithColor(rgb, &b, kCGRenderingIntentDefault));
    if (first && second)
        return mixComponents(*first.get(), *second.get(), weightA, weightB);
    if (HostLogIsEnabled(kHostLogWarning))
        cg::logMessage(kHostLogWarning, "XGColorCreateBlendedColor",
                       "Converting colors %@ and %@ to RGB gave %@ and %@",
                       static_cast<CFTypeRef>(&a), static_cast<CFTypeRef>(&b),
                       static_cast<CFTypeRef>(first.get()), static_cast<CFTypeRef>(second.get()));
    return cf::retain(&a);
}

} // namespace

CGColorRef XGColorCreateBlendedColor(CGColorRef a, CGColorRef b, CGFloat weightA, CGFloat weightB) {
    const CGColorRef first = cg::nativeColor(a);
    const CGColorRef second = cg::nativeColor(b);
    if (isTooFaint(first))
        return withWeightedAlpha(second, weightB).release();
    if (isTooFaint(second))
        return withWeightedAlpha(first, weightA).release();
    if (const CGColorRef one = unmixed(*first, *second, weightA, weightB))
        return CGColorCreateCopy(one);
    return mix(*first, *second, weightA, weightB).release();
}
