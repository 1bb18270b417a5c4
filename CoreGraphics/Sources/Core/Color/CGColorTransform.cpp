// CGColorTransform.cpp: single colours into one colour space.

#include "XGColor.h"
#include <CoreGraphics/CGColorTransform.h>

#include "Core/Color/CGColorRecord.h"
#include "Core/Color/CGColorSpaceRecord.h"
#include "Core/Object/RuntimeObject.h"

#include <algorithm>
#include <array>

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
    std::array<CGFloat, kMostComponents + 1> opaque = {};
    std::copy_n(in, space->componentCount, opaque.begin());
    opaque[space->componentCount] = 1;
    const auto color = cg::makeColor(space, opaque.data());
    const auto converted =
        cf::adopt(XGColorCreateWithColor(transform->space.get(), color.get(), intent));
    if (!converted)
        return false;
    const auto components = converted.get()->components();
    std::copy_n(components.begin(), components.size() - 1, out);
    return true;
}
