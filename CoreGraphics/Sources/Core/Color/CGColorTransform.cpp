// CGColorTransform.cpp: single colours into one colour space.

#include "XGColor.h"
#include "XGColorSpace.h"
#include <CoreGraphics/CGColorTransform.h>

#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Color/ColorTransform.h"
#include "Core/Object/RuntimeObject.h"

#include <algorithm>

struct CGColorTransform {
    CFRuntimeBase base;
    cf::Ref<CGColorSpaceRef> space;
};

namespace {

constexpr CFRuntimeClass kColorTransformClass = {
    .className = "CGColorTransform",
    .copy = cg::copyByRetaining,
    .finalize = cg::finalize<CGColorTransform>,
};

} // namespace

CFTypeID CGColorTransformGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kColorTransformClass);
    return id;
}

CGColorTransformRef CGColorTransformCreate(CGColorSpaceRef space, CFDictionaryRef) {
    if (!space)
        return nullptr;
    const auto transform = cg::create<CGColorTransform>(CGColorTransformGetTypeID());
    if (transform)
        transform->space = cf::retain(space);
    return transform;
}

CGColorTransformRef CGColorTransformRetain(CGColorTransformRef transform) {
    return cg::retain(transform);
}
void CGColorTransformRelease(CGColorTransformRef transform) {
    cg::release(transform);
}

CGColorSpaceRef CGColorTransformGetColorSpace(CGColorTransformRef transform) {
    return transform ? transform->space.get() : nullptr;
}

CGColorRef CGColorTransformConvertColor(CGColorTransformRef transform, CGColorRef color,
                                        CGColorRenderingIntent intent) {
    return transform ? XGColorCreateWithColor(transform->space.get(), color, intent) : nullptr;
}

bool CGColorTransformConvertColorComponents(CGColorTransformRef transform, CGColorSpaceRef space,
                                            CGColorRenderingIntent intent, const CGFloat* in,
                                            CGFloat* out) {
    constexpr std::size_t kMostComponents = 4;
    if (!transform || !space || !in || !out || space->componentCount > kMostComponents)
        return false;
    const CGColorSpaceRef to = transform->space.get();
    cg::ColorComponents color = {}, converted = {};
    std::copy_n(in, space->componentCount, color.begin());
    color[space->componentCount] = 1;
    XGColorSpaceClampComponents(space, color.data(), color.data());
    if (!cg::convertColor(space, color, to, intent, converted))
        return false;
    XGColorSpaceClampComponents(to, converted.data(), converted.data());
    std::copy_n(converted.begin(), to->componentCount, out);
    return true;
}
