// CGShading.cpp: the geometry of colour transitions.

#include "XGShading.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>

#include "Core/Object/RuntimeObject.h"
#include "Core/Paint/CGGradientRecord.h"
#include "Core/Paint/ConicShading.h"

#include <optional>

struct CGShading {
    CFRuntimeBase base;
    bool isRadial = false;
    bool extendsStart = false;
    bool extendsEnd = false;
    cf::Ref<CGColorSpaceRef> space;
    cf::Ref<CGGradientRef> gradient; // Whose function it is: that does not keep it alive.
    cf::Ref<CGFunctionRef> function;
    CGPoint start = {0, 0};
    CGPoint end = {0, 0};
    CGFloat startRadius = 0;
    CGFloat endRadius = 0;
    std::optional<CGFloat> angle; // Of conic shadings, which have their centre in `start`.
};

namespace {

bool areEqual(CGShadingRef a, CGShadingRef b) {
    return a->isRadial == b->isRadial && a->extendsStart == b->extendsStart &&
           a->extendsEnd == b->extendsEnd && CFEqual(a->space.get(), b->space.get()) &&
           CFEqual(a->function.get(), b->function.get()) &&
           CGPointEqualToPoint(a->start, b->start) && CGPointEqualToPoint(a->end, b->end) &&
           a->startRadius == b->startRadius && a->endRadius == b->endRadius && a->angle == b->angle;
}

// Equal shadings have equal functions.
CFHashCode hash(CGShadingRef shading) {
    return CFHash(shading->function.get());
}

constexpr CFRuntimeClass kShadingClass = {
    .className = "CGShading",
    .finalize = cg::finalize<CGShading>,
    .equal = cg::equalBy<areEqual>,
    .hash = cg::hashBy<hash>,
};

// An axial shading from `start` to `end`; NULL when space or function are missing.
CGShadingRef create(CGColorSpaceRef space, CGPoint start, CGPoint end, CGFunctionRef function,
                    int extendStart, int extendEnd) {
    if (!space || !function)
        return nullptr;
    auto* const shading = cg::create<CGShading>(CGShadingGetTypeID());
    if (!shading)
        return nullptr;
    shading->space = cf::retain(space);
    shading->gradient = cf::retain(cg::gradientOfFunction(function));
    shading->function = cf::retain(function);
    shading->start = start;
    shading->end = end;
    shading->extendsStart = extendStart == 1;
    shading->extendsEnd = extendEnd == 1;
    return shading;
}

} // namespace

CFTypeID CGShadingGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kShadingClass);
    return id;
}

CGShadingRef CGShadingCreateAxial(CGColorSpaceRef space, CGPoint start, CGPoint end,
                                  CGFunctionRef function, int extendStart, int extendEnd) {
    return create(space, start, end, function, extendStart, extendEnd);
}

CGShadingRef CGShadingCreateRadial(CGColorSpaceRef space, CGPoint start, CGFloat startRadius,
                                   CGPoint end, CGFloat endRadius, CGFunctionRef function,
                                   int extendStart, int extendEnd) {
    const CGShadingRef shading = create(space, start, end, function, extendStart, extendEnd);
    if (shading) {
        shading->isRadial = true;
        shading->startRadius = startRadius;
        shading->endRadius = endRadius;
    }
    return shading;
}

CGShadingRef cg::createConicShading(CGColorSpaceRef space, CGPoint center, CGFloat angle,
                                    CGFunctionRef function) {
    const CGShadingRef shading = ::create(space, center, center, function, 0, 0);
    if (shading)
        shading->angle = angle;
    return shading;
}

std::optional<CGFloat> cg::startAngleOf(CGShadingRef shading) {
    return shading ? shading->angle : std::nullopt;
}

CGShadingRef CGShadingRetain(CGShadingRef shading) {
    return cg::retain(shading);
}
void CGShadingRelease(CGShadingRef shading) {
    cg::release(shading);
}

bool XGShadingIsRadial(CGShadingRef shading) {
    return shading && shading->isRadial;
}
bool XGShadingExtendsStart(CGShadingRef shading) {
    return shading && shading->extendsStart;
}
bool XGShadingExtendsEnd(CGShadingRef shading) {
    return shading && shading->extendsEnd;
}
CGColorSpaceRef XGShadingGetColorSpace(CGShadingRef shading) {
    return shading ? shading->space.get() : nullptr;
}
CGFunctionRef XGShadingGetFunction(CGShadingRef shading) {
    return shading ? shading->function.get() : nullptr;
}
CGPoint XGShadingGetStartPoint(CGShadingRef shading) {
    return shading ? shading->start : CGPointZero;
}
CGPoint XGShadingGetEndPoint(CGShadingRef shading) {
    return shading ? shading->end : CGPointZero;
}
CGFloat XGShadingGetStartRadius(CGShadingRef shading) {
    return shading ? shading->startRadius : 0;
}
CGFloat XGShadingGetEndRadius(CGShadingRef shading) {
    return shading ? shading->endRadius : 0;
}
