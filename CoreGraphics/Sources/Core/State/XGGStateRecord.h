// XGGStateRecord.h: what a graphics state is made of.
#pragma once

#include "XGGState.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGFont.h>

namespace cg {

enum StateFlag : uint32_t {
    kShouldAntialias = 1u << 0,
    kShouldSmoothFonts = 1u << 1,
    kShouldSubpixelPositionFonts = 1u << 2,
    kShouldSubpixelQuantizeFonts = 1u << 3,
    kHasTextCTM = 1u << 4, // Set by the scales, and never cleared again.
    kDidModifyClipRegion = 1u << 5,
    kShouldRasterizeClipRegion = 1u << 6,
    kClipChanged = kDidModifyClipRegion | kShouldRasterizeClipRegion,
};

constexpr CGAffineTransform kIdentity = {1, 0, 0, 1, 0, 0};

// Everything but the clipping, which copies of a state do not share.
struct StateValues {
    uint32_t flags = kShouldAntialias | kShouldSmoothFonts | kShouldSubpixelPositionFonts |
                     kShouldSubpixelQuantizeFonts;
    CGAffineTransform ctm = kIdentity;
    CGFloat deviceScale = 1;
    CGFloat xScale = 1;
    CGFloat yScale = 1; // Negative when the context is flipped.
    CGFloat textOffset = 0;
    CGAffineTransform combinedCTM = kIdentity; // Follows the CTM and the scales.
    CGAffineTransform textCTM = kIdentity;     // Follows the CTM while kHasTextCTM is set.
    CGFloat alpha = 1;
    CGBlendMode blendMode = kCGBlendModeNormal;
    bool isPorterDuff = true; // Follows the blend mode.
    CGInterpolationQuality interpolationQuality = kCGInterpolationDefault;
    CGColorRenderingIntent renderingIntent = kCGRenderingIntentDefault;
    cf::Ref<CGColorRef> fillColor;
    cf::Ref<CGColorRef> strokeColor;
    cf::Ref<CGColorRef> shadowColor;
    CGSize shadowOffset = {0, 0};
    CGFloat shadowBlur = 0;
    CGSize patternPhase = {0, 0};
    cf::Ref<CGFontRef> font;
    CGFloat fontSize = 0;
    CGFloat characterSpacing = 0;
    CGTextDrawingMode textDrawingMode = kCGTextFill;
    CGTextEncoding textEncoding = kCGEncodingFontSpecific; // Of bytes that are shown as text.
    // While glyphs are drawn: how they lie in user space; linear. Belongs to the context otherwise.
    CGAffineTransform textMatrix = kIdentity;
    CGFloat flatness = 0;
    // Deliberate: other systems start from a limit of 10, drawings made for this one from 4.
    CGFloat miterLimit = 4;
    CGLineCap lineCap = kCGLineCapButt;
    CGLineJoin lineJoin = kCGLineJoinMiter;
    CGFloat lineWidth = 1;
    cf::Ref<XGLineDashRef> lineDash; // Absent for solid lines.
    int32_t compositeOperation = 0;
    int32_t fontAntialiasingStyle = 0;
    int32_t fontSmoothingStyle = 0;
    int32_t fontRenderingMode = 0;
    CGFloat smoothness = 0;
};

} // namespace cg

struct XGGState {
    CFRuntimeBase base;
    cg::StateValues values;
    cf::Ref<XGClippingRef> clipping; // Absent when nothing is clipped.
    // The state saved before this one, in a context's stack; no part of the state itself.
    cf::Ref<XGGStateRef> below;
    cf::Ref<XGLineDashRef> spareDash; // One that nobody uses, for the next that is set.
};
