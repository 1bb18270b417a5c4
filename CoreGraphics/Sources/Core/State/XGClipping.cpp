// XGClipping.cpp: the clip region that a graphics state holds.

#include "XGClipping.h"

#include "XGImage.h"
#include "XGPath.h"

#include "Core/Object/RuntimeObject.h"
#include "Core/State/StateReuse.h"
#include "Core/State/XGClippingRecord.h"

namespace {

constexpr CFRuntimeClass kClippingClass = {
    .className = "CGClipping",
    .copy = cg::copyBy<XGClippingCreateCopy>,
    .finalize = cg::finalize<XGClipping>,
    .equal = cg::equalBy<XGClippingEqualToClipping>,
};

using Clipping = cf::Ref<XGClippingRef>;

Clipping makeClipping(CGRect rect) {
    const auto clipping = cg::create<XGClipping>(kClippingClass);
    if (clipping)
        clipping->rect = rect;
    return cf::adopt(clipping);
}

// An array of paths that nobody else holds, with what `shared` has; empty when memory runs out.
cf::Ref<CFMutableArrayRef> ownArray(const cf::Ref<CFMutableArrayRef>& shared) {
    if (!shared)
        return cf::adopt(CFArrayCreateMutable(nullptr, 0, &kCFTypeArrayCallBacks));
    if (CFGetRetainCount(shared.get()) == 1)
        return shared;
    return cf::adopt(CFArrayCreateMutableCopy(nullptr, 0, shared.get()));
}

// Shares the points; mutable, because an immutable path keeps its rule.
cf::Ref<CGMutablePathRef> copyWithRule(CGPathRef path, bool evenOdd) {
    const auto copy = cf::adopt(CGPathCreateMutableCopy(path));
    _CGPathSetEvenOddFill(copy.get(), evenOdd ? 1 : 0);
    return copy;
}

} // namespace

void XGClipping::clipAll() {
    paths = nullptr;
    mask = nullptr;
    rect = CGRectZero;
}

// False when memory runs out.
bool XGClipping::add(CGPathRef path, bool evenOdd) {
    const auto copy = copyWithRule(path, evenOdd);
    const auto array = ownArray(paths);
    if (!copy || !array)
        return false;
    const CFIndex count = CFArrayGetCount(array.get());
    CFArrayAppendValue(array.get(), copy.get());
    paths = array;
    return CFArrayGetCount(array.get()) == count + 1;
}

XGClippingRef XGClippingCreateEmpty(void) {
    return makeClipping(CGRectNull).release();
}

XGClippingRef XGClippingCreateWithRect(CGRect rect) {
    return makeClipping(rect).release();
}

XGClippingRef XGClippingCreateWithPath(CGPathRef path, bool evenOdd) {
    if (!path)
        return nullptr;
    Clipping clipping = makeClipping(CGPathGetBoundingBox(path));
    if (!clipping)
        return nullptr;
    if (!XGClippingIsEmpty(clipping.get()) && !clipping.get()->add(path, evenOdd))
        return nullptr;
    return clipping.release();
}

XGClippingRef XGClippingCreateCopy(XGClippingRef clipping) {
    if (!clipping)
        return nullptr;
    Clipping copy = makeClipping(clipping->rect);
    if (copy)
        cg::copyClipping(copy.get(), clipping);
    return copy.release();
}

void cg::copyClipping(XGClippingRef target, XGClippingRef source) {
    target->rect = source->rect;
    target->paths = source->paths;
    target->mask = source->mask;
    target->maskRect = source->maskRect;
    target->maskMatrix = source->maskMatrix;
}

void cg::emptyClipping(XGClippingRef clipping) {
    clipping->rect = CGRectNull;
    clipping->paths = nullptr;
    clipping->mask = nullptr;
}

XGClippingRef XGClippingRetain(XGClippingRef clipping) {
    return cg::retain(clipping);
}
void XGClippingRelease(XGClippingRef clipping) {
    cg::release(clipping);
}

void XGClippingIntersectWithRect(XGClippingRef clipping, CGRect rect) {
    if (!clipping)
        return;
    clipping->rect = CGRectIntersection(clipping->rect, rect);
    if (XGClippingIsEmpty(clipping))
        clipping->clipAll();
}

void XGClippingIntersectWithPath(XGClippingRef clipping, CGPathRef path, bool evenOdd) {
    if (!clipping || !path)
        return;
    XGClippingIntersectWithRect(clipping, CGPathGetBoundingBox(path));
    if (!XGClippingIsEmpty(clipping) && !clipping->add(path, evenOdd))
        clipping->clipAll();
}

bool XGClippingIsEmpty(XGClippingRef clipping) {
    return clipping && CGRectIsEmpty(clipping->rect);
}

CGRect XGClippingGetBoundingBox(XGClippingRef clipping) {
    return clipping ? clipping->rect : CGRectZero;
}

CFArrayRef XGClippingGetPaths(XGClippingRef clipping) {
    return clipping ? clipping->paths.get() : nullptr;
}

CGRect XGClippingGetSimpleRect(XGClippingRef clipping) {
    return clipping && !clipping->paths && !clipping->mask ? clipping->rect : CGRectNull;
}

namespace {

bool equalPaths(CFArrayRef a, CFArrayRef b) {
    if (a == b)
        return true;
    if (!a || !b || CFArrayGetCount(a) != CFArrayGetCount(b))
        return false;
    for (CFIndex index = 0; index < CFArrayGetCount(a); ++index) {
        if (!CFEqual(CFArrayGetValueAtIndex(a, index), CFArrayGetValueAtIndex(b, index)))
            return false;
    }
    return true;
}

bool equalMasks(const XGClipping& a, const XGClipping& b) {
    if (a.mask.get() == b.mask.get() && !a.mask)
        return true;
    return (a.mask.get() == b.mask.get() || XGImageEqualToImage(a.mask.get(), b.mask.get())) &&
           CGRectEqualToRect(a.maskRect, b.maskRect) &&
           CGAffineTransformEqualToTransform(a.maskMatrix, b.maskMatrix);
}

} // namespace

bool XGClippingEqualToClipping(XGClippingRef a, XGClippingRef b) {
    if (a == b)
        return true;
    return a && b && CGRectEqualToRect(a->rect, b->rect) &&
           equalPaths(a->paths.get(), b->paths.get()) && equalMasks(*a, *b);
}
