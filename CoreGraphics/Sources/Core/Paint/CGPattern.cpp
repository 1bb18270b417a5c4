// CGPattern.cpp: the cell that a pattern repeats.

#include "XGPattern.h"
#include <CoreFoundation/CFRuntime.h>

#include "Core/Geometry/NearlyEqual.h"
#include "Core/Object/RuntimeObject.h"
#include "Core/Paint/PatternSerial.h"

#include <atomic>
#include <cstdint>

struct CGPattern {
    CFRuntimeBase base;
    bool isColored = false;
    bool isOpaque = false;
    CGRect bounds = {};
    CGAffineTransform matrix = {1, 0, 0, 1, 0, 0};
    CGSize step = {};
    CGPatternTiling tiling = kCGPatternTilingNoDistortion;
    CGFloat scale = 1;
    void* info = nullptr;
    CGPatternCallbacks callbacks = {};
    std::uint64_t serial = 0;

    ~CGPattern() {
        if (callbacks.releaseInfo)
            callbacks.releaseInfo(info);
    }
};

namespace {

// Equal patterns have equal infos.
CFHashCode hash(CGPatternRef pattern) {
    return static_cast<CFHashCode>(reinterpret_cast<std::uintptr_t>(pattern->info) >> 4);
}

constexpr CFRuntimeClass kPatternClass = {
    .className = "CGPattern",
    .finalize = cg::finalize<CGPattern>,
    .equal = cg::equalBy<XGPatternEqualToPattern>,
    .hash = cg::hashBy<hash>,
};

} // namespace

CFTypeID CGPatternGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kPatternClass);
    return id;
}

CGPatternRef CGPatternCreate(void* info, CGRect bounds, CGAffineTransform matrix, CGFloat xStep,
                             CGFloat yStep, CGPatternTiling tiling, int isColored,
                             const CGPatternCallbacks* callbacks) {
    auto* const pattern = callbacks ? cg::create<CGPattern>(CGPatternGetTypeID()) : nullptr;
    if (!pattern)
        return nullptr;
    pattern->isColored = isColored == 1;
    pattern->bounds = bounds;
    pattern->matrix = matrix;
    pattern->step = {xStep, yStep};
    pattern->tiling = tiling;
    pattern->info = info;
    pattern->callbacks = *callbacks;
    static constinit std::atomic<std::uint64_t> lastSerial = 0;
    pattern->serial = ++lastSerial;
    return pattern;
}

CGPatternRef CGPatternRetain(CGPatternRef pattern) {
    return cg::retain(pattern);
}
void CGPatternRelease(CGPatternRef pattern) {
    cg::release(pattern);
}

std::uint64_t cg::serialOf(CGPatternRef pattern) {
    return pattern ? pattern->serial : 0;
}

void XGPatternDraw(CGPatternRef pattern, CGContextRef context) {
    if (pattern && context && pattern->callbacks.drawPattern)
        pattern->callbacks.drawPattern(pattern->info, context);
}

// ---- Accessors

bool XGPatternIsColored(CGPatternRef pattern) {
    return pattern && pattern->isColored;
}
bool XGPatternIsOpaque(CGPatternRef pattern) {
    return pattern && pattern->isOpaque;
}
void XGPatternSetIsOpaque(CGPatternRef pattern, bool opaque) {
    if (pattern)
        pattern->isOpaque = opaque;
}
CGRect XGPatternGetBounds(CGPatternRef pattern) {
    return pattern ? pattern->bounds : CGRectZero;
}
CGSize XGPatternGetStepSize(CGPatternRef pattern) {
    return pattern ? pattern->step : CGSizeZero;
}
CGAffineTransform XGPatternGetMatrix(CGPatternRef pattern) {
    return pattern ? pattern->matrix : CGAffineTransformIdentity;
}
CGPatternTiling XGPatternGetTiling(CGPatternRef pattern) {
    return pattern ? pattern->tiling : kCGPatternTilingNoDistortion;
}
CGFloat XGPatternGetScale(CGPatternRef pattern) {
    return pattern ? pattern->scale : 0;
}
void XGPatternSetScale(CGPatternRef pattern, CGFloat scale) {
    if (pattern)
        pattern->scale = scale;
}

// ---- Comparison

bool XGPatternEqualToPattern(CGPatternRef a, CGPatternRef b) {
    if (!a || !b)
        return false;
    return a == b || (a->info == b->info && a->isColored == b->isColored &&
                      a->isOpaque == b->isOpaque && CGRectEqualToRect(a->bounds, b->bounds) &&
                      CGAffineTransformEqualToTransform(a->matrix, b->matrix) &&
                      a->step.width == b->step.width && a->step.height == b->step.height &&
                      a->tiling == b->tiling && cg::nearlyEqual(a->scale, b->scale));
}
