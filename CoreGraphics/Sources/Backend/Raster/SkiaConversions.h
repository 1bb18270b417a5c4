// SkiaConversions.h: the interface's values as Skia's.
#pragma once

#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGGeometry.h>

#include "include/core/SkBlendMode.h"
#include "include/core/SkMatrix.h"
#include "include/core/SkPaint.h"
#include "include/core/SkRect.h"

#include <array>

namespace cg {

inline SkMatrix toSkia(const CGAffineTransform& t) {
    return SkMatrix::MakeAll(t.a, t.c, t.tx, t.b, t.d, t.ty, 0, 0, 1);
}

// The standardised rectangle's edges.
inline SkRect toSkia(CGRect rect) {
    return SkRect::MakeLTRB(CGRectGetMinX(rect), CGRectGetMinY(rect), CGRectGetMaxX(rect),
                            CGRectGetMaxY(rect));
}

// Images count rows from the top, user space counts from the bottom: the first row goes to the
// rectangle's largest y.
inline SkMatrix turnedAround(const SkRect& rect) {
    return SkMatrix::MakeAll(1, 0, 0, 0, -1, rect.top() + rect.bottom(), 0, 0, 1);
}

// Caps and joins have Skia's own values; anything else falls back to the first.
inline SkPaint::Cap toSkiaCap(CGLineCap cap) {
    static_assert(int(kCGLineCapButt) == SkPaint::kButt_Cap &&
                  int(kCGLineCapRound) == SkPaint::kRound_Cap &&
                  int(kCGLineCapSquare) == SkPaint::kSquare_Cap);
    return cap > kCGLineCapSquare ? SkPaint::kButt_Cap : static_cast<SkPaint::Cap>(cap);
}

inline SkPaint::Join toSkiaJoin(CGLineJoin join) {
    static_assert(int(kCGLineJoinMiter) == SkPaint::kMiter_Join &&
                  int(kCGLineJoinRound) == SkPaint::kRound_Join &&
                  int(kCGLineJoinBevel) == SkPaint::kBevel_Join);
    return join > kCGLineJoinBevel ? SkPaint::kMiter_Join : static_cast<SkPaint::Join>(join);
}

// Indexed by the context's blend mode.
// Deliberate: plus-darker and plus-lighter are darken and lighten, never Skia's addition.
inline constexpr std::array kSkiaBlendModes = {
    SkBlendMode::kSrcOver,    // kCGBlendModeNormal
    SkBlendMode::kMultiply,   // kCGBlendModeMultiply
    SkBlendMode::kScreen,     // kCGBlendModeScreen
    SkBlendMode::kOverlay,    // kCGBlendModeOverlay
    SkBlendMode::kDarken,     // kCGBlendModeDarken
    SkBlendMode::kLighten,    // kCGBlendModeLighten
    SkBlendMode::kColorDodge, // kCGBlendModeColorDodge
    SkBlendMode::kColorBurn,  // kCGBlendModeColorBurn
    SkBlendMode::kSoftLight,  // kCGBlendModeSoftLight
    SkBlendMode::kHardLight,  // kCGBlendModeHardLight
    SkBlendMode::kDifference, // kCGBlendModeDifference
    SkBlendMode::kExclusion,  // kCGBlendModeExclusion
    SkBlendMode::kHue,        // kCGBlendModeHue
    SkBlendMode::kSaturation, // kCGBlendModeSaturation
    SkBlendMode::kColor,      // kCGBlendModeColor
    SkBlendMode::kLuminosity, // kCGBlendModeLuminosity
    SkBlendMode::kClear,      // kCGBlendModeClear
    SkBlendMode::kSrc,        // kCGBlendModeCopy
    SkBlendMode::kSrcIn,      // kCGBlendModeSourceIn
    SkBlendMode::kSrcOut,     // kCGBlendModeSourceOut
    SkBlendMode::kSrcATop,    // kCGBlendModeSourceAtop
    SkBlendMode::kDstOver,    // kCGBlendModeDestinationOver
    SkBlendMode::kDstIn,      // kCGBlendModeDestinationIn
    SkBlendMode::kDstOut,     // kCGBlendModeDestinationOut
    SkBlendMode::kDstATop,    // kCGBlendModeDestinationAtop
    SkBlendMode::kXor,        // kCGBlendModeXOR
    SkBlendMode::kDarken,     // kCGBlendModePlusDarker
    SkBlendMode::kLighten,    // kCGBlendModePlusLighter
};
static_assert(kSkiaBlendModes.size() == std::size_t(kCGBlendModePlusLighter) + 1);

inline SkBlendMode toSkia(CGBlendMode mode) {
    const auto index = static_cast<std::size_t>(mode);
    return index < kSkiaBlendModes.size() ? kSkiaBlendModes[index] : SkBlendMode::kSrcOver;
}

} // namespace cg
