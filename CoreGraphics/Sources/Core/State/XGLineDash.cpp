// XGLineDash.cpp: the dash pattern that a graphics state holds.

#include "XGLineDash.h"

#include "Core/Object/Diagnostics.h"
#include "Core/Object/RuntimeObject.h"
#include "Core/State/StateReuse.h"

#include <algorithm>
#include <span>

struct XGLineDash {
    CFRuntimeBase base;
    CGFloat phase = 0;
    uint32_t count = 0;
    CGFloat* lengths = nullptr; // Right behind this record: a dash is one allocation.

    std::span<const CGFloat> pattern() const { return {lengths, count}; }
};

namespace {

constexpr CFRuntimeClass kLineDashClass = {
    .className = "CGLineDash",
    .copy = cg::copyBy<XGLineDashCreateCopy>,
    .equal = cg::equalBy<XGLineDashEqualToLineDash>,
};

} // namespace

XGLineDashRef XGLineDashCreate(const CGFloat* lengths, uint32_t count, CGFloat phase) {
    if (!lengths && count > 0) {
        CG_LOG_WARNING("no lengths given for a dash of %u", static_cast<unsigned>(count));
        return nullptr;
    }
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, sizeof(CGFloat), &bytes))
        return nullptr;
    const auto dash = cg::create<XGLineDash>(kLineDashClass, bytes);
    if (!dash)
        return nullptr;

    dash->phase = phase;
    dash->count = count;
    dash->lengths = cg::trailing<CGFloat>(dash);
    std::copy_n(lengths, count, dash->lengths);
    return dash;
}

bool cg::refillDash(XGLineDashRef dash, const CGFloat* lengths, uint32_t count, CGFloat phase) {
    if (!dash || dash->count != count || CFGetRetainCount(dash) != 1)
        return false;
    dash->phase = phase;
    std::copy_n(lengths, count, dash->lengths);
    return true;
}

XGLineDashRef XGLineDashCreateCopy(XGLineDashRef dash) {
    return dash ? XGLineDashCreate(dash->lengths, dash->count, dash->phase) : nullptr;
}

XGLineDashRef XGLineDashRetain(XGLineDashRef dash) {
    return cg::retain(dash);
}
void XGLineDashRelease(XGLineDashRef dash) {
    cg::release(dash);
}

CGFloat XGLineDashGetPhase(XGLineDashRef dash) {
    return dash ? dash->phase : 0;
}
uint32_t XGLineDashGetCount(XGLineDashRef dash) {
    return dash ? dash->count : 0;
}
const CGFloat* XGLineDashGetLengths(XGLineDashRef dash) {
    return dash ? dash->lengths : nullptr;
}

void XGLineDashSetPhase(XGLineDashRef dash, CGFloat phase) {
    if (dash)
        dash->phase = phase;
}

// Exact, unlike the comparisons of geometry: equal dashes must put down the same pixels.
bool XGLineDashEqualToLineDash(XGLineDashRef a, XGLineDashRef b) {
    return a && b && a->phase == b->phase && std::ranges::equal(a->pattern(), b->pattern());
}
