/* XGGState: all drawing parameters of a context at one moment.
 *
 * A context has one current state and a stack of saved ones. Setters ignore NULL; getters answer it
 * with the value named, else 0, false or NULL. User space is what callers draw in, device space has
 * a unit per pixel. */
#pragma once

#include "XGClipping.h"
#include "XGLineDash.h"
#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGPath.h>

CG_BEGIN_DECLS

typedef struct XGGState* XGGStateRef;

/** The state that drawing starts with: identity transforms, opaque, normal blending, no colours,
 *  lines of width 1 with butt caps and miter joins up to a limit of 4, antialiased, no clip. */
CG_EXPORT XGGStateRef XGGStateCreate(void);
/** A copy that shares colours, font and dash; its clip is its own and counts as unmodified. */
CG_EXPORT XGGStateRef XGGStateCreateCopy(XGGStateRef state);
CG_EXPORT XGGStateRef XGGStateRetain(XGGStateRef state);
CG_EXPORT void XGGStateRelease(XGGStateRef state);
/** Whether everything that was set is equal; NULL equals nothing. */
CG_EXPORT bool XGGStateEqualToGState(XGGStateRef a, XGGStateRef b);

/* ---- Transforms and scales ----------------------------------------------------------------- */

/** User space to context space. The pointers of this group live as long as the state and follow its
 *  changes; they are NULL for NULL. */
CG_EXPORT const CGAffineTransform* XGGStateGetCTM(XGGStateRef state);
CG_EXPORT void XGGStateSetCTM(XGGStateRef state, CGAffineTransform transform);
/** User space to device space: the CTM, then the scales. */
CG_EXPORT const CGAffineTransform* XGGStateGetCombinedCTM(XGGStateRef state);
/** The transform for text: the combined CTM, or, where the scaled size differs from the device's by
 *  less than a pixel, the CTM moved by the difference so that glyphs stay crisp. */
CG_EXPORT const CGAffineTransform* XGGStateGetTextCTM(XGGStateRef state);
/** Tells how many pixels a unit of context space has on each axis, over `deviceScale`, for a bitmap
 *  of the given size in pixels; `flipped` for contexts whose y axis points down. */
CG_EXPORT void XGGStateSetScales(XGGStateRef state, size_t pixelWidth, size_t pixelHeight,
                                 bool flipped, CGFloat xScale, CGFloat yScale, CGFloat deviceScale);

/* ---- Compositing --------------------------------------------------------------------------- */

/** The opacity of everything drawn, 0 to 1. Greater ones become 1; negative ones and those that are
 *  not finite become 0. */
CG_EXPORT CGFloat XGGStateGetAlpha(XGGStateRef state);
CG_EXPORT void XGGStateSetAlpha(XGGStateRef state, CGFloat alpha);
CG_EXPORT CGBlendMode XGGStateGetBlendMode(XGGStateRef state);
CG_EXPORT void XGGStateSetBlendMode(XGGStateRef state, CGBlendMode mode);
/** Whether the blend mode counts as one of Porter and Duff's operators: normal and copy always, the
 *  others while the option NIMBRA_GPU_BLEND_MODES was on when the mode was set. */
CG_EXPORT bool XGGStateBlendModeIsPorterDuff(XGGStateRef state);
/** kCGInterpolationNone for NULL. */
CG_EXPORT CGInterpolationQuality XGGStateGetInterpolationQuality(XGGStateRef state);
CG_EXPORT void XGGStateSetInterpolationQuality(XGGStateRef state, CGInterpolationQuality quality);
CG_EXPORT CGColorRenderingIntent XGGStateGetRenderingIntent(XGGStateRef state);
CG_EXPORT void XGGStateSetRenderingIntent(XGGStateRef state, CGColorRenderingIntent intent);
/** Kept for callers; drawing does not look at it. */
CG_EXPORT int32_t XGGStateGetCompositeOperation(XGGStateRef state);
CG_EXPORT void XGGStateSetCompositeOperation(XGGStateRef state, int32_t operation);

/* ---- Colours and shadow -------------------------------------------------------------------- */

/** The colours, lent; NULL before one is set, which draws black. Setting an equal colour keeps the
 *  old object. */
CG_EXPORT CGColorRef XGGStateGetFillColor(XGGStateRef state);
CG_EXPORT void XGGStateSetFillColor(XGGStateRef state, CGColorRef color);
CG_EXPORT CGColorRef XGGStateGetStrokeColor(XGGStateRef state);
CG_EXPORT void XGGStateSetStrokeColor(XGGStateRef state, CGColorRef color);
/** Sets the shadow's colour (NULL: no shadow), its offset and the width of its blur, before the
 *  scales. */
CG_EXPORT void XGGStateSetShadow(XGGStateRef state, CGColorRef color, CGFloat offsetWidth,
                                 CGFloat offsetHeight, CGFloat blur);
CG_EXPORT CGColorRef XGGStateGetShadowColor(XGGStateRef state);
/** Whether the shadow's colour has an opacity above 0.001. */
CG_EXPORT bool XGGStateHasShadow(XGGStateRef state);
/** The offset in device space. A flipped context's is not divided by the device scale. */
CG_EXPORT CGSize XGGStateGetShadowOffset(XGGStateRef state);
/** The blur in device space: times the geometric mean of the scales. */
CG_EXPORT CGFloat XGGStateGetShadowBlur(XGGStateRef state);
/** Where patterns start, in the base space. */
CG_EXPORT CGSize XGGStateGetPatternPhase(XGGStateRef state);
CG_EXPORT void XGGStateSetPatternPhase(XGGStateRef state, CGSize phase);

/* ---- Lines --------------------------------------------------------------------------------- */

/* The setters of this group store what they are given. */

CG_EXPORT CGFloat XGGStateGetLineWidth(XGGStateRef state);
CG_EXPORT void XGGStateSetLineWidth(XGGStateRef state, CGFloat width);
CG_EXPORT CGLineCap XGGStateGetLineCap(XGGStateRef state);
CG_EXPORT void XGGStateSetLineCap(XGGStateRef state, CGLineCap cap);
CG_EXPORT CGLineJoin XGGStateGetLineJoin(XGGStateRef state);
CG_EXPORT void XGGStateSetLineJoin(XGGStateRef state, CGLineJoin join);
CG_EXPORT CGFloat XGGStateGetMiterLimit(XGGStateRef state);
CG_EXPORT void XGGStateSetMiterLimit(XGGStateRef state, CGFloat limit);
CG_EXPORT CGFloat XGGStateGetFlatness(XGGStateRef state);
CG_EXPORT void XGGStateSetFlatness(XGGStateRef state, CGFloat flatness);
/** The dash, lent; NULL for solid lines. */
CG_EXPORT XGLineDashRef XGGStateGetLineDash(XGGStateRef state);
/** Replaces the dash; no lengths or a count of 0 make lines solid. */
CG_EXPORT void XGGStateSetLineDash(XGGStateRef state, const CGFloat* lengths, size_t count,
                                   CGFloat phase);

/* ---- Text ---------------------------------------------------------------------------------- */

/** The font, lent. Setting an equal font keeps the old object. */
CG_EXPORT CGFontRef XGGStateGetFont(XGGStateRef state);
CG_EXPORT void XGGStateSetFont(XGGStateRef state, CGFontRef font);
CG_EXPORT CGFloat XGGStateGetFontSize(XGGStateRef state);
/** Ignores a negative size. */
CG_EXPORT void XGGStateSetFontSize(XGGStateRef state, CGFloat size);
CG_EXPORT CGTextDrawingMode XGGStateGetTextDrawingMode(XGGStateRef state);
CG_EXPORT void XGGStateSetTextDrawingMode(XGGStateRef state, CGTextDrawingMode mode);
CG_EXPORT CGFloat XGGStateGetCharacterSpacing(XGGStateRef state);
CG_EXPORT void XGGStateSetCharacterSpacing(XGGStateRef state, CGFloat spacing);
/** Kept for callers; drawing does not look at it. */
CG_EXPORT int32_t XGGStateGetFontAntialiasingStyle(XGGStateRef state);
CG_EXPORT void XGGStateSetFontAntialiasingStyle(XGGStateRef state, int32_t style);

/* ---- Clip ---------------------------------------------------------------------------------- */

/** The clipping, lent; NULL when nothing is clipped. */
CG_EXPORT XGClippingRef XGGStateGetClipping(XGGStateRef state);
/** Replaces the clipping. Like the functions below it marks the clip as modified and to be
 *  rasterised. */
CG_EXPORT void XGGStateSetClipping(XGGStateRef state, XGClippingRef clipping);
/** Clips to the bounds of a rectangle of user space mapped to device space. */
CG_EXPORT void XGGStateClipToRect(XGGStateRef state, CGRect rect);
/** Clips to a path in device space. An empty path is ignored. */
CG_EXPORT void XGGStateClipToPath(XGGStateRef state, CGPathRef path, bool evenOdd);
/** Clips to a mask in a rectangle of user space, as CGContextClipToMask does. */
CG_EXPORT void XGGStateClipToMask(XGGStateRef state, CGRect rect, CGImageRef mask);
/** The clipping's bounding box in user space; the zero rectangle without a clipping. */
CG_EXPORT CGRect XGGStateGetClipBoundingBox(XGGStateRef state);

/* ---- Flags --------------------------------------------------------------------------------- */

CG_EXPORT bool XGGStateShouldAntialias(XGGStateRef state);
CG_EXPORT void XGGStateSetShouldAntialias(XGGStateRef state, bool should);
CG_EXPORT bool XGGStateShouldSmoothFonts(XGGStateRef state);
CG_EXPORT void XGGStateSetShouldSmoothFonts(XGGStateRef state, bool should);
CG_EXPORT bool XGGStateShouldSubpixelPositionFonts(XGGStateRef state);
CG_EXPORT void XGGStateSetShouldSubpixelPositionFonts(XGGStateRef state, bool should);
CG_EXPORT bool XGGStateShouldSubpixelQuantizeFonts(XGGStateRef state);
CG_EXPORT void XGGStateSetShouldSubpixelQuantizeFonts(XGGStateRef state, bool should);
/** Whether the clip changed since the state was made or copied. */
CG_EXPORT bool XGGStateDidModifyClipRegion(XGGStateRef state);
CG_EXPORT void XGGStateSetDidModifyClipRegion(XGGStateRef state, bool did);
/** Whether a destination that keeps a rasterised clip must make it anew. */
CG_EXPORT bool XGGStateShouldRasterizeClipRegion(XGGStateRef state);
CG_EXPORT void XGGStateSetShouldRasterizeClipRegion(XGGStateRef state, bool should);

CG_END_DECLS
