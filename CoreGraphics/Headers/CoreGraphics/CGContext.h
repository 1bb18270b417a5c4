/* CGContext.h: drawing destinations with their graphics state and current path. */
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGFont.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGGradient.h>
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGPath.h>
#include <CoreGraphics/CGPattern.h>
#include <CoreGraphics/CGShading.h>

CG_BEGIN_DECLS

typedef struct CGContext* CGContextRef;
/** A drawing that is kept for drawing it again. */
typedef struct CGLayer* CGLayerRef;

/** What is done with glyphs: filled, stroked, added to the clip. */
CG_ENUM(int32_t, CGTextDrawingMode){
    kCGTextFill = 0,      kCGTextStroke = 1,     kCGTextFillStroke = 2,
    kCGTextInvisible = 3, /**< Nothing is drawn, but the text position moves on. */
    kCGTextFillClip = 4,  kCGTextStrokeClip = 5, kCGTextFillStrokeClip = 6,
    kCGTextClip = 7};

/** What the bytes of a shown text mean. */
CG_ENUM(int32_t, CGTextEncoding){kCGEncodingFontSpecific = 0, kCGEncodingMacRoman = 1};

/** How carefully the pixels of a scaled image are computed. */
CG_ENUM(int32_t, CGInterpolationQuality){
    kCGInterpolationDefault = 0, kCGInterpolationNone = 1, /**< The nearest pixel. */
    kCGInterpolationLow = 2, kCGInterpolationHigh = 3, kCGInterpolationMedium = 4};

/** How new marks mix with what is there. R, S and D are result, source and destination with
 *  premultiplied alpha, Ra, Sa and Da their alphas. The first sixteen are the blend modes of
 *  ISO 32000-1, 11.3.5; the others are Porter and Duff's operators ("Compositing digital images",
 *  1984) and two sums. */
CG_ENUM(int32_t, CGBlendMode){
    kCGBlendModeNormal = 0,
    kCGBlendModeMultiply = 1,
    kCGBlendModeScreen = 2,
    kCGBlendModeOverlay = 3,
    kCGBlendModeDarken = 4,
    kCGBlendModeLighten = 5,
    kCGBlendModeColorDodge = 6,
    kCGBlendModeColorBurn = 7,
    kCGBlendModeSoftLight = 8,
    kCGBlendModeHardLight = 9,
    kCGBlendModeDifference = 10,
    kCGBlendModeExclusion = 11,
    kCGBlendModeHue = 12,
    kCGBlendModeSaturation = 13,
    kCGBlendModeColor = 14,
    kCGBlendModeLuminosity = 15,
    kCGBlendModeClear = 16,           /**< R = 0 */
    kCGBlendModeCopy = 17,            /**< R = S */
    kCGBlendModeSourceIn = 18,        /**< R = S·Da */
    kCGBlendModeSourceOut = 19,       /**< R = S·(1 - Da) */
    kCGBlendModeSourceAtop = 20,      /**< R = S·Da + D·(1 - Sa) */
    kCGBlendModeDestinationOver = 21, /**< R = S·(1 - Da) + D */
    kCGBlendModeDestinationIn = 22,   /**< R = D·Sa */
    kCGBlendModeDestinationOut = 23,  /**< R = D·(1 - Sa) */
    kCGBlendModeDestinationAtop = 24, /**< R = S·(1 - Da) + D·Sa */
    kCGBlendModeXOR = 25,             /**< R = S·(1 - Da) + D·(1 - Sa) */
    kCGBlendModePlusDarker = 26,      /**< Drawn into bitmaps as darken. */
    kCGBlendModePlusLighter = 27      /**< Drawn into bitmaps as lighten. */
};

/* What holds for all: drawing is done in user space, which the current transform (CTM) maps to the
 * destination. A NULL context is ignored; getters then answer 0, false, NULL or what they name. The
 * current path is not part of the state that is saved and restored. Painting and clipping consume
 * it; so do the functions that paint or clip by a shape of their own. */

CG_EXPORT CFTypeID CGContextGetTypeID(void);
CG_EXPORT CGContextRef CGContextRetain(CGContextRef context);
CG_EXPORT void CGContextRelease(CGContextRef context);
/** The kind of destination: 1 for bitmaps, 3 for PDF output. */
CG_EXPORT uint32_t CGContextGetType(CGContextRef context);

/* ---- Graphics state ------------------------------------------------------------------------ */

/** Pushes a copy of the state. */
CG_EXPORT void CGContextSaveGState(CGContextRef context);
/** Makes the state that was saved last current again. When none is saved nothing changes, after an
 *  error in the log. */
CG_EXPORT void CGContextRestoreGState(CGContextRef context);

/* ---- Transforms ---------------------------------------------------------------------------- */

/* Each comes before the current transform: it maps the new user space to the old. */

CG_EXPORT void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy);
CG_EXPORT void CGContextTranslateCTM(CGContextRef context, CGFloat tx, CGFloat ty);
CG_EXPORT void CGContextRotateCTM(CGContextRef context, CGFloat angle);
CG_EXPORT void CGContextConcatCTM(CGContextRef context, CGAffineTransform transform);
/** Replaces the current transform. */
CG_EXPORT void CGContextSetCTM(CGContextRef context, CGAffineTransform transform);
/** The identity for NULL. */
CG_EXPORT CGAffineTransform CGContextGetCTM(CGContextRef context);
/** Always the identity. */
CG_EXPORT CGAffineTransform CGContextGetBaseCTM(CGContextRef context);
/** User space to device space; of a bitmap, to its pixels counted from the top left. The identity
 *  for NULL. */
CG_EXPORT CGAffineTransform CGContextGetUserSpaceToDeviceSpaceTransform(CGContextRef context);
/* Values mapped by that transform and back. A transform that has no inverse leaves points and sizes
 * as they are. NULL gives the zero point, the zero size and the rectangle unchanged. */
CG_EXPORT CGPoint CGContextConvertPointToDeviceSpace(CGContextRef context, CGPoint point);
CG_EXPORT CGPoint CGContextConvertPointToUserSpace(CGContextRef context, CGPoint point);
CG_EXPORT CGSize CGContextConvertSizeToDeviceSpace(CGContextRef context, CGSize size);
CG_EXPORT CGSize CGContextConvertSizeToUserSpace(CGContextRef context, CGSize size);
/** The bounds of the mapped rectangle. */
CG_EXPORT CGRect CGContextConvertRectToDeviceSpace(CGContextRef context, CGRect rect);
CG_EXPORT CGRect CGContextConvertRectToUserSpace(CGContextRef context, CGRect rect);

/* ---- Lines --------------------------------------------------------------------------------- */

/** The width in user space; negative and non-finite ones are ignored. At 0 a line is as thin as the
 *  destination can draw. */
CG_EXPORT void CGContextSetLineWidth(CGContextRef context, CGFloat width);
CG_EXPORT void CGContextSetLineCap(CGContextRef context, CGLineCap cap);
CG_EXPORT void CGContextSetLineJoin(CGContextRef context, CGLineJoin join);
/** How many times the line width a mitered corner may be long before it is bevelled. */
CG_EXPORT void CGContextSetMiterLimit(CGContextRef context, CGFloat limit);
/** Lengths drawn and skipped in turn, in user space, starting `phase` into them; no lengths or a
 *  count of 0 make lines solid. Patterns with a negative length, or of no length at all, draw solid
 *  lines, and so do those that would cut a path into more than about a million dashes. */
CG_EXPORT void CGContextSetLineDash(CGContextRef context, CGFloat phase, const CGFloat* lengths,
                                    size_t count);
/** How far curves may be off when they are flattened; negative and non-finite ones are ignored. */
CG_EXPORT void CGContextSetFlatness(CGContextRef context, CGFloat flatness);
CG_EXPORT CGFloat CGContextGetLineWidth(CGContextRef context);
CG_EXPORT CGLineCap CGContextGetLineCap(CGContextRef context);
CG_EXPORT CGLineJoin CGContextGetLineJoin(CGContextRef context);
CG_EXPORT CGFloat CGContextGetMiterLimit(CGContextRef context);
/** How many lengths the dash has; 0 for solid lines. */
CG_EXPORT size_t CGContextGetLineDashCount(CGContextRef context);

/* ---- Compositing and quality --------------------------------------------------------------- */

/** The opacity of everything drawn; clamped to 0 … 1, and 0 when it is not finite. */
CG_EXPORT void CGContextSetAlpha(CGContextRef context, CGFloat alpha);
CG_EXPORT void CGContextSetBlendMode(CGContextRef context, CGBlendMode mode);
CG_EXPORT void CGContextSetRenderingIntent(CGContextRef context, CGColorRenderingIntent intent);
CG_EXPORT void CGContextSetInterpolationQuality(CGContextRef context,
                                                CGInterpolationQuality quality);
/** kCGInterpolationNone for NULL. */
CG_EXPORT CGInterpolationQuality CGContextGetInterpolationQuality(CGContextRef context);
/** Kept for callers; drawing does not look at it. */
CG_EXPORT void CGContextSetCompositeOperation(CGContextRef context, int32_t operation);
CG_EXPORT int32_t CGContextGetCompositeOperation(CGContextRef context);
/** Where patterns start, in the base space. */
CG_EXPORT void CGContextSetPatternPhase(CGContextRef context, CGSize phase);
/** Edges are smoothed when the state asks for it and the context allows it, which both do at first.
 *  The same holds for the settings of fonts below; smoothing of fonts is not allowed at first. */
CG_EXPORT void CGContextSetShouldAntialias(CGContextRef context, bool should);
CG_EXPORT void CGContextSetAllowsAntialiasing(CGContextRef context, bool allows);
CG_EXPORT bool CGContextGetShouldAntialias(CGContextRef context);
CG_EXPORT void CGContextSetShouldSmoothFonts(CGContextRef context, bool should);
CG_EXPORT void CGContextSetAllowsFontSmoothing(CGContextRef context, bool allows);
CG_EXPORT bool CGContextGetShouldSmoothFonts(CGContextRef context);
CG_EXPORT void CGContextSetShouldSubpixelPositionFonts(CGContextRef context, bool should);
CG_EXPORT void CGContextSetAllowsFontSubpixelPositioning(CGContextRef context, bool allows);
CG_EXPORT void CGContextSetShouldSubpixelQuantizeFonts(CGContextRef context, bool should);
CG_EXPORT void CGContextSetAllowsFontSubpixelQuantization(CGContextRef context, bool allows);
/** These are kept for callers; drawing does not look at them. */
CG_EXPORT void CGContextSetFontAntialiasingStyle(CGContextRef context, int32_t style);
CG_EXPORT int32_t CGContextGetFontAntialiasingStyle(CGContextRef context);
CG_EXPORT void CGContextSetFontSmoothingStyle(CGContextRef context, int32_t style);
CG_EXPORT int32_t CGContextGetFontSmoothingStyle(CGContextRef context);
CG_EXPORT void CGContextSetFontRenderingMode(CGContextRef context, int32_t mode);
CG_EXPORT int32_t CGContextGetFontRenderingMode(CGContextRef context);
/** How far the colours of a shading may be off where its function is sampled; negative and
 *  non-finite ones are ignored. */
CG_EXPORT void CGContextSetSmoothness(CGContextRef context, CGFloat smoothness);
CG_EXPORT CGFloat CGContextGetSmoothness(CGContextRef context);
/** A bitmap that records its drawing for a graphics processor brings it into pixels when
 *  acceleration is no longer allowed. */
CG_EXPORT void CGContextSetAllowsAcceleration(CGContextRef context, bool allows);

/* ---- Colours and shadow -------------------------------------------------------------------- */

/** NULL stands for black. */
CG_EXPORT void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color);
CG_EXPORT void CGContextSetStrokeColorWithColor(CGContextRef context, CGColorRef color);
/** Makes the current colour the space's default unless it is in an equal space. */
CG_EXPORT void CGContextSetFillColorSpace(CGContextRef context, CGColorSpaceRef space);
CG_EXPORT void CGContextSetStrokeColorSpace(CGContextRef context, CGColorSpaceRef space);
/** Sets the components, opacity last, in the current colour's space; device gray before a colour
 * was set. */
CG_EXPORT void CGContextSetFillColor(CGContextRef context, const CGFloat* components);
CG_EXPORT void CGContextSetStrokeColor(CGContextRef context, const CGFloat* components);
/** Colours of the device's spaces. */
CG_EXPORT void CGContextSetGrayFillColor(CGContextRef context, CGFloat gray, CGFloat alpha);
CG_EXPORT void CGContextSetGrayStrokeColor(CGContextRef context, CGFloat gray, CGFloat alpha);
CG_EXPORT void CGContextSetRGBFillColor(CGContextRef context, CGFloat red, CGFloat green,
                                        CGFloat blue, CGFloat alpha);
CG_EXPORT void CGContextSetRGBStrokeColor(CGContextRef context, CGFloat red, CGFloat green,
                                          CGFloat blue, CGFloat alpha);
CG_EXPORT void CGContextSetCMYKFillColor(CGContextRef context, CGFloat cyan, CGFloat magenta,
                                         CGFloat yellow, CGFloat black, CGFloat alpha);
CG_EXPORT void CGContextSetCMYKStrokeColor(CGContextRef context, CGFloat cyan, CGFloat magenta,
                                           CGFloat yellow, CGFloat black, CGFloat alpha);
/** Paints with a pattern when the current colour is in a pattern space; nothing happens elsewhere,
 *  or for NULL. `components` are the opacity alone for a coloured pattern, else a colour of the
 *  space beneath the pattern space, with its opacity. The pattern lies in base space: drawing
 *  moves, turns or scales it by its own matrix and the pattern phase alone, not by the CTM. Its
 *  cells are drawn by its callback when they are first needed, and kept while they serve. */
CG_EXPORT void CGContextSetFillPattern(CGContextRef context, CGPatternRef pattern,
                                       const CGFloat* components);
CG_EXPORT void CGContextSetStrokePattern(CGContextRef context, CGPatternRef pattern,
                                         const CGFloat* components);
/** Not implemented: logs a fault and aborts. */
CG_EXPORT CGColorRef CGContextGetFillColorAsColor(CGContextRef context);
/** Everything drawn casts a shadow of this colour; NULL or a clear colour ends it. The offset (y
 * up) and the blur are not turned or scaled by the CTM. */
CG_EXPORT void CGContextSetShadowWithColor(CGContextRef context, CGSize offset, CGFloat blur,
                                           CGColorRef color);
/** The same in black at a third of full opacity. */
CG_EXPORT void CGContextSetShadow(CGContextRef context, CGSize offset, CGFloat blur);

/* ---- Current path -------------------------------------------------------------------------- */

/* Points are mapped by the CTM when they are added; later changes of the CTM do not move them.
 * Lines, curves and tangent arcs need a current point: without one they are ignored with a warning.
 */

/** Drops the current path. */
CG_EXPORT void CGContextBeginPath(CGContextRef context);
CG_EXPORT void CGContextMoveToPoint(CGContextRef context, CGFloat x, CGFloat y);
CG_EXPORT void CGContextAddLineToPoint(CGContextRef context, CGFloat x, CGFloat y);
CG_EXPORT void CGContextAddCurveToPoint(CGContextRef context, CGFloat control1X, CGFloat control1Y,
                                        CGFloat control2X, CGFloat control2Y, CGFloat x, CGFloat y);
CG_EXPORT void CGContextAddQuadCurveToPoint(CGContextRef context, CGFloat controlX,
                                            CGFloat controlY, CGFloat x, CGFloat y);
CG_EXPORT void CGContextClosePath(CGContextRef context);
CG_EXPORT void CGContextAddRect(CGContextRef context, CGRect rect);
CG_EXPORT void CGContextAddRects(CGContextRef context, const CGRect* rects, size_t count);
/** Moves to the first point and draws lines to the others. */
CG_EXPORT void CGContextAddLines(CGContextRef context, const CGPoint* points, size_t count);
CG_EXPORT void CGContextAddEllipseInRect(CGContextRef context, CGRect rect);
/** An arc around (x, y), joined by a line to the current point if there is one. Not 0 for
 *  `clockwise` means clockwise where y points up. */
CG_EXPORT void CGContextAddArc(CGContextRef context, CGFloat x, CGFloat y, CGFloat radius,
                               CGFloat startAngle, CGFloat endAngle, int clockwise);
/** The arc of `radius` that touches the line from the current point to (x1, y1) and the line from
 *  there to (x2, y2), joined by a line to the current point. */
CG_EXPORT void CGContextAddArcToPoint(CGContextRef context, CGFloat x1, CGFloat y1, CGFloat x2,
                                      CGFloat y2, CGFloat radius);
/** Appends a path given in user space; NULL adds nothing. */
CG_EXPORT void CGContextAddPath(CGContextRef context, CGPathRef path);
/** Replaces the path by the outline of its stroke, dashes included: filling it by the winding rule
 *  puts down what stroking would have. */
CG_EXPORT void CGContextReplacePathWithStrokedPath(CGContextRef context);
/** True without a path. */
CG_EXPORT bool CGContextIsPathEmpty(CGContextRef context);
/** The last point in user space; (+infinity, +infinity) without a path. */
CG_EXPORT CGPoint CGContextGetPathCurrentPoint(CGContextRef context);
/** The bounds in user space, control points included; the null rectangle without a path. */
CG_EXPORT CGRect CGContextGetPathBoundingBox(CGContextRef context);
/** Whether painting the path in `mode` would cover a point of user space. */
CG_EXPORT bool CGContextPathContainsPoint(CGContextRef context, CGPoint point,
                                          CGPathDrawingMode mode);
/** The path in user space; NULL without a path, or when the CTM has no inverse. */
CG_EXPORT CGPathRef CGContextCopyPath(CGContextRef context);

/* ---- Painting ------------------------------------------------------------------------------ */

CG_EXPORT void CGContextDrawPath(CGContextRef context, CGPathDrawingMode mode);
CG_EXPORT void CGContextFillPath(CGContextRef context);
CG_EXPORT void CGContextEOFillPath(CGContextRef context);
CG_EXPORT void CGContextStrokePath(CGContextRef context);
/** Fills a rectangle; an empty one draws nothing. */
CG_EXPORT void CGContextFillRect(CGContextRef context, CGRect rect);
CG_EXPORT void CGContextFillRects(CGContextRef context, const CGRect* rects, size_t count);
/** Makes a rectangle transparent, without a shadow. */
CG_EXPORT void CGContextClearRect(CGContextRef context, CGRect rect);
CG_EXPORT void CGContextStrokeRect(CGContextRef context, CGRect rect);
/** Strokes with a line width for this call alone. */
CG_EXPORT void CGContextStrokeRectWithWidth(CGContextRef context, CGRect rect, CGFloat width);
CG_EXPORT void CGContextFillEllipseInRect(CGContextRef context, CGRect rect);
CG_EXPORT void CGContextStrokeEllipseInRect(CGContextRef context, CGRect rect);
/** Strokes a line from each even point to the one after it. */
CG_EXPORT void CGContextStrokeLineSegments(CGContextRef context, const CGPoint* points,
                                           size_t count);

/* ---- Gradients and shadings ---------------------------------------------------------------- */

/* They paint everything inside the clip, under the state's alpha and blend mode and without its
 * shadow. Points and radii are in user space. Outside an end that does not go on nothing is
 * painted; neither is anything where start and end coincide, a radius is negative, or a number is
 * not finite. A NULL gradient or shading draws nothing. */

/** Colours along the line from `start` to `end`, the same at right angles to it. */
CG_EXPORT void CGContextDrawLinearGradient(CGContextRef context, CGGradientRef gradient,
                                           CGPoint start, CGPoint end,
                                           CGGradientDrawingOptions options);
/** Colours from circle to circle; later circles cover earlier ones. */
CG_EXPORT void CGContextDrawRadialGradient(CGContextRef context, CGGradientRef gradient,
                                           CGPoint startCenter, CGFloat startRadius,
                                           CGPoint endCenter, CGFloat endRadius,
                                           CGGradientDrawingOptions options);
/** Colours once around `center`, from `angle` on, in radians: counter-clockwise where y points up.
 *  The last colour meets the first at that angle. */
CG_EXPORT void CGContextDrawConicGradient(CGContextRef context, CGGradientRef gradient,
                                          CGPoint center, CGFloat angle);
/** What the shading's function gives; it is asked on the calling thread, and a function of more or
 *  less than one input draws nothing, after a warning. */
CG_EXPORT void CGContextDrawShading(CGContextRef context, CGShadingRef shading);

/* ---- Clipping ------------------------------------------------------------------------------ */

/* The clip can only shrink, until the state saved before is restored. */

/** Clips to the inside of the current path. An empty path is ignored. */
CG_EXPORT void CGContextClip(CGContextRef context);
CG_EXPORT void CGContextEOClip(CGContextRef context);
/** Clips to a rectangle; an empty one clips everything away. */
CG_EXPORT void CGContextClipToRect(CGContextRef context, CGRect rect);
/** Clips to the union of rectangles. No rectangles at all are ignored. */
CG_EXPORT void CGContextClipToRects(CGContextRef context, const CGRect* rects, size_t count);
/** Clips to `mask`, put into `rect` as CGContextDrawImage puts images. An image mask lets paint
 *  through as far as it would paint, a gray image as far as it is white, any other image as far as
 *  it is opaque; the current path is dropped. Nothing for NULL. */
CG_EXPORT void CGContextClipToMask(CGContextRef context, CGRect rect, CGImageRef mask);
/** The bounds of the clip in user space; the zero rectangle when nothing is clipped. A bitmap's
 * clip is its own bounds at first. */
CG_EXPORT CGRect CGContextGetClipBoundingBox(CGContextRef context);
/** Takes all clipping of the current state back; a bitmap's clip becomes its bounds again. */
CG_EXPORT void CGContextResetClip(CGContextRef context);

/* ---- Images -------------------------------------------------------------------------------- */

/** Draws `image` into `rect` of user space, its first row at the rectangle's largest y, under the
 *  state's alpha, blend mode, clip, shadow and interpolation quality. An image mask paints the fill
 *  colour where its samples are 0. The image's colours are converted to the destination's. What
 *  cannot be read is drawn as a transparent image, after an error in the log. Nothing for NULL or
 *  an empty rectangle. */
CG_EXPORT void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image);
/** Fills the clip with copies of `image` side by side, as large as `rect`, one of them in it. */
CG_EXPORT void CGContextDrawTiledImage(CGContextRef context, CGRect rect, CGImageRef image);

/* ---- Transparency layers ------------------------------------------------------------------- */

/** What is drawn until the matching end is put together first and then drawn as one, with the
 *  shadow, alpha and blend mode of now; inside they start from none, 1 and normal. `auxiliaryInfo`
 *  is not looked at. */
CG_EXPORT void CGContextBeginTransparencyLayer(CGContextRef context, CFDictionaryRef auxiliaryInfo);
/** The same; `rect` is not looked at. */
CG_EXPORT void CGContextBeginTransparencyLayerWithRect(CGContextRef context, CGRect rect,
                                                       CFDictionaryRef auxiliaryInfo);
CG_EXPORT void CGContextEndTransparencyLayer(CGContextRef context);

/* ---- Text ---------------------------------------------------------------------------------- */

CG_EXPORT void CGContextSetFont(CGContextRef context, CGFontRef font);
CG_EXPORT CGFontRef CGContextGetFont(CGContextRef context);
/** Negative and non-finite sizes become 0. */
CG_EXPORT void CGContextSetFontSize(CGContextRef context, CGFloat size);
/** The size, and the font of a name in UTF-8 as CGFontCreateWithFontName finds it; where it finds
 *  none the font stays. `encoding` is that of text shown by CGContextShowText. Nothing for a NULL
 * or empty name. */
CG_EXPORT void CGContextSelectFont(CGContextRef context, const char* name, CGFloat size,
                                   CGTextEncoding encoding);
/** What is added to each glyph's advance, in text space. */
CG_EXPORT void CGContextSetCharacterSpacing(CGContextRef context, CGFloat spacing);
/** Modes that clip clip to the outlines of all glyphs that are shown until something else is drawn;
 *  to nothing, where they have none. */
CG_EXPORT void CGContextSetTextDrawingMode(CGContextRef context, CGTextDrawingMode mode);
/** The transform from text space to user space. It is not part of the saved state. */
CG_EXPORT void CGContextSetTextMatrix(CGContextRef context, CGAffineTransform transform);
/** The identity for NULL. */
CG_EXPORT CGAffineTransform CGContextGetTextMatrix(CGContextRef context);
/** The translation of the text matrix: where the next glyph goes. */
CG_EXPORT void CGContextSetTextPosition(CGContextRef context, CGFloat x, CGFloat y);
CG_EXPORT CGPoint CGContextGetTextPosition(CGContextRef context);

/* The functions below draw glyphs of the state's font at its size, under the text matrix, as the
 * text drawing mode says: filled in the fill colour, stroked as paths are. They cast one shadow
 * together. Pictures, such as emoji, keep their colours and have no outline to stroke or to clip
 * to. The text position moves on by what was shown, but for CGContextShowGlyphsAtPositions. Nothing
 * is drawn without a font or a size, nor at places that are not finite. */

/** One glyph after the other from the text position, each by its advance and the character
 *  spacing. Invisible glyphs move the position by their advances alone. */
CG_EXPORT void CGContextShowGlyphs(CGContextRef context, const CGGlyph* glyphs, size_t count);
/** The same from a point in user space. */
CG_EXPORT void CGContextShowGlyphsAtPoint(CGContextRef context, CGFloat x, CGFloat y,
                                          const CGGlyph* glyphs, size_t count);
/** Each glyph at a position of its own, which the text matrix maps to user space. */
CG_EXPORT void CGContextShowGlyphsAtPositions(CGContextRef context, const CGGlyph* glyphs,
                                              const CGPoint* positions, size_t count);
/** One glyph after the other from the text position, each by an advance in user space. */
CG_EXPORT void CGContextShowGlyphsWithAdvances(CGContextRef context, const CGGlyph* glyphs,
                                               const CGSize* advances, size_t count);
/** `length` bytes in Mac Roman, or in the font's own encoding, as CGContextSelectFont was told: as
 *  many glyphs as there are characters, shown as CGContextShowGlyphs does. */
CG_EXPORT void CGContextShowText(CGContextRef context, const char* string, size_t length);
/** The same from a point in user space. */
CG_EXPORT void CGContextShowTextAtPoint(CGContextRef context, CGFloat x, CGFloat y,
                                        const char* string, size_t length);

/* ---- Destination --------------------------------------------------------------------------- */

/** Passes on to the destination that what was drawn should be shown. */
CG_EXPORT void CGContextFlush(CGContextRef context);
CG_EXPORT void CGContextSynchronize(CGContextRef context);

CG_END_DECLS
