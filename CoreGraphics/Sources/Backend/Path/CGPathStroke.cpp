// CGPathStroke.cpp: the outline of a stroke, and the pieces that a dash leaves.

#include "CGPathRecord.h"
#include "XGPath.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGPath.h>

#include "Core/Object/Diagnostics.h"

#include <include/core/SkPaint.h>
#include <include/core/SkPathEffect.h>
#include <include/core/SkStrokeRec.h>
#include <include/effects/SkDashPathEffect.h>
#include <src/core/SkMatrixPriv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <new>
#include <span>

namespace {

static_assert(kCGLineCapButt == static_cast<int>(SkPaint::kButt_Cap));
static_assert(kCGLineCapRound == static_cast<int>(SkPaint::kRound_Cap));
static_assert(kCGLineCapSquare == static_cast<int>(SkPaint::kSquare_Cap));
static_assert(kCGLineJoinMiter == static_cast<int>(SkPaint::kMiter_Join));
static_assert(kCGLineJoinRound == static_cast<int>(SkPaint::kRound_Join));
static_assert(kCGLineJoinBevel == static_cast<int>(SkPaint::kBevel_Join));

// Keeps a width of 0 from becoming a hairline, which has no outline.
constexpr float kThinnestStroke = 0.0001f;

// Skia picks its cap and join functions by these, unchecked.
SkPaint::Cap skiaCap(CGLineCap cap) {
    if (cap >= kCGLineCapButt && cap <= kCGLineCapSquare)
        return static_cast<SkPaint::Cap>(cap);
    CG_LOG_WARNING("there is no line cap %d", static_cast<int>(cap));
    return SkPaint::kButt_Cap;
}

SkPaint::Join skiaJoin(CGLineJoin join) {
    if (join >= kCGLineJoinMiter && join <= kCGLineJoinBevel)
        return static_cast<SkPaint::Join>(join);
    CG_LOG_WARNING("there is no line join %d", static_cast<int>(join));
    return SkPaint::kMiter_Join;
}

// How many steps of the result's smoothness a coordinate of the stroke may span. Skia subdivides
// curves until they are smooth enough, and does not end in any useful time where floats are too
// coarse for that.
constexpr float kMostSteps = 1 << 14;

// Curves are to be as smooth as they have to be after the mapping, not before: so many times finer
// than Skia's usual quarter of a unit.
float resolution(const SkPath& path, float width, const CGAffineTransform* m) {
    const float wanted = m ? SkMatrixPriv::ComputeResScaleForStroking(cg::skiaMatrix(*m)) : 1;
    const SkRect& r = path.getBounds();
    const float extent = std::max(
        {std::abs(r.fLeft), std::abs(r.fTop), std::abs(r.fRight), std::abs(r.fBottom), width});
    return std::min(wanted, std::max(1.0f, kMostSteps / extent));
}

// A dash's lengths twice over, in memory of its own where the stack has no room.
class Intervals {
public:
    explicit Intervals(std::span<const CGFloat> lengths) : count_(lengths.size() * 2) {
        if (count_ > few_.size())
            many_.reset(new (std::nothrow) CGFloat[count_]);
        CGFloat* const all = data();
        if (!all)
            return;
        std::ranges::copy(lengths, all);
        std::ranges::copy(lengths, all + lengths.size());
    }

    explicit operator bool() const { return count_ <= few_.size() || many_; }
    SkSpan<const SkScalar> all() { return {data(), count_}; }

private:
    CGFloat* data() { return count_ > few_.size() ? many_.get() : few_.data(); }

    std::size_t count_;
    std::array<CGFloat, 32> few_;
    std::unique_ptr<CGFloat[]> many_;
};

} // namespace

CGPathRef CGPathCreateCopyByStrokingPath(CGPathRef path, const CGAffineTransform* m,
                                         CGFloat lineWidth, CGLineCap lineCap, CGLineJoin lineJoin,
                                         CGFloat miterLimit) {
    if (!path)
        return nullptr;
    const CGMutablePathRef outline = cg::createPath(0);
    // A path with points that are not finite covers nothing, and neither does its stroke.
    if (!outline || !path->path.isFinite())
        return outline;

    SkStrokeRec stroke(SkStrokeRec::kFill_InitStyle);
    // NaN is not above 0 either.
    stroke.setStrokeStyle(lineWidth > 0 ? lineWidth : kThinnestStroke);
    stroke.setStrokeParams(skiaCap(lineCap), skiaJoin(lineJoin), miterLimit);
    stroke.setResScale(resolution(path->path, stroke.getWidth(), m));
    stroke.applyToPath(&outline->path, path->path);
    if (m)
        outline->path.transform(cg::skiaMatrix(*m));
    cg::settle(outline->path);
    return outline;
}

CGPathRef CGPathCreateCopyByDashingPath(CGPathRef path, const CGAffineTransform* m, CGFloat phase,
                                        const CGFloat* lengths, size_t count) {
    if (!path || count > UINT32_MAX)
        return nullptr;
    const auto dash = cf::adopt(XGLineDashCreate(lengths, static_cast<uint32_t>(count), phase));
    const CGMutablePathRef dashed = _CGPathCreateDashedPath(path, dash.get());
    if (!dashed)
        return nullptr;
    if (m)
        dashed->path.transform(cg::skiaMatrix(*m));
    cg::settle(dashed->path);
    return dashed;
}

// Skia takes an even number of intervals. Two rounds of the pattern are even, and also keep the
// drawn and the skipped lengths of an odd pattern in turn.
CGMutablePathRef _CGPathCreateDashedPath(CGPathRef path, XGLineDashRef dash) {
    if (!path || !dash)
        return nullptr;
    Intervals intervals({XGLineDashGetLengths(dash), XGLineDashGetCount(dash)});
    if (!intervals)
        return nullptr;
    const sk_sp<SkPathEffect> effect =
        SkDashPathEffect::Make(intervals.all(), XGLineDashGetPhase(dash));
    SkStrokeRec hairline(SkStrokeRec::kHairline_InitStyle);
    SkPath pieces;
    if (!effect || !effect->filterPath(&pieces, path->path, &hairline, nullptr)) {
        CG_LOG_WARNING("%u dash lengths at phase %g leave no pieces of the path",
                       XGLineDashGetCount(dash), double{XGLineDashGetPhase(dash)});
        return nullptr;
    }
    const CGMutablePathRef dashed = cg::createPath(cg::kPathIsMutable);
    if (dashed)
        dashed->path.swap(pieces);
    return dashed;
}
