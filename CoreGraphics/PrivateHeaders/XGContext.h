/* XGContext: contexts whose marks go to a table of callbacks.
 *
 * Whoever brings a new kind of drawing destination makes its contexts here. The front end keeps the
 * state, the state stack and the current path; the table receives the operations that make marks.
 */
#pragma once

#include "XGGState.h"
#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGPath.h>

CG_BEGIN_DECLS

enum { kXGContextKindBitmap = 1, kXGContextKindPDF = 3 };

/** Bits of the flags word that every callback receives. */
enum {
    kXGContextAllowsAntialiasing = 1u << 0,
    kXGContextAllowsFontSmoothing = 1u << 1,
    kXGContextAllowsFontSubpixelPositioning = 1u << 2,
    kXGContextAllowsFontSubpixelQuantization = 1u << 3,
    /** This pass draws the operation's shadow, and nothing else. */
    kXGContextShadowPass = 1u << 4,
    /** The paint's alpha is the state's alone, not multiplied by the colour's. */
    kXGContextIgnoresColorAlpha = 1u << 5,
    /** The rectangle of drawImage is one of many that fill the plane side by side, all with the
     *  image. */
    kXGContextTiledImage = 1u << 28,
    /** The geometry is in device space already: the combined CTM must not be applied again. */
    kXGContextGeometryInDeviceSpace = 1u << 29,
    /** The backend's paint is prepared: it must not be reset. */
    kXGContextPaintPrepared = 1u << 30
};

/** The operations of a destination. A slot left NULL is skipped silently. All receive the current
 *  graphics state and the flags word first and the backend's info last, except `releaseInfo` and
 *  `prepare`. Device space here has its origin at the bottom left and y up, one unit per pixel of a
 *  bitmap. What is passed is lent for the call. */
typedef struct XGContextCallbacks {
    uint32_t version; /**< Must be 0. */
    /** The context is going away: frees `info`. Called last, once. */
    void (*releaseInfo)(void* info);
    void (*flush)(XGGStateRef state, uint32_t flags, void* info);
    void (*synchronize)(XGGStateRef state, uint32_t flags, void* info);
    /** Fills `fill` by the even-odd or the winding rule, then strokes `stroke`; either may be NULL.
     *  Both are in device space, `stroke` is dashed already and the state's line width holds there.
     *  The stroke of a transform that does not keep shapes arrives as its outline to be filled,
     *  with the stroke's colour as the state's fill colour for the call. */
    void (*drawPath)(XGGStateRef state, uint32_t flags, CGPathRef fill, CGPathRef stroke,
                     bool evenOdd, void* info);
    /** Fills rectangles, in user space unless the flags say device space. */
    void (*fillRects)(XGGStateRef state, uint32_t flags, const CGRect* rects, size_t count,
                      void* info);
    void (*drawShading)(XGGStateRef state, uint32_t flags, CGShadingRef shading, void* info);
    /** Draws `image`, whose mask has been applied, first row at the rectangle's largest y in user
     *  space. An image mask lets the state's fill colour through. */
    void (*drawImage)(XGGStateRef state, uint32_t flags, CGRect rect, CGImageRef image, void* info);
    void (*drawLayer)(XGGStateRef state, uint32_t flags, CGRect rect, CGLayerRef layer, void* info);
    void (*drawSprites)(XGGStateRef state, uint32_t flags, CGFontRef font, const void* glyphs,
                        const CGPoint* positions, size_t count, void* info);
    void (*beginTransparencyLayer)(XGGStateRef state, uint32_t flags, void* info);
    void (*endTransparencyLayer)(XGGStateRef state, uint32_t flags, void* info);
    void (*reserved[4])(void); /**< Never called by the front end. */
    /** Called before marks are made, so that a destination can get ready for them. */
    void (*prepare)(CGContextRef context);
} XGContextCallbacks;

/** A context of `kind` (kXGContextKind…, or a number of the caller's own) over `callbacks`, which
 * are copied, and `info`, which is handed to each of them. `size` is the whole record's size for
 * kinds that keep fields behind the common ones; smaller values are raised. NULL when the table is
 *  missing or its version is not 0, or when memory runs out; `info` stays the caller's then. */
CG_EXPORT CGContextRef XGContextCreate(uint32_t kind, const XGContextCallbacks* callbacks,
                                       void* info, size_t size);

/** Tells the state how pixels and points relate: XGGStateSetScales with the bitmap's size in pixels
 *  (0 × 0 for contexts of other kinds). */
CG_EXPORT void XGContextSetScales(CGContextRef context, bool flipped, CGFloat xScale,
                                  CGFloat yScale, CGFloat deviceScale);

/** Three numbers kept for the caller: width and height in points, and one of its own. */
CG_EXPORT void XGContextSetSizeInPoints(CGContextRef context, CGFloat width, CGFloat height,
                                        CGFloat third);
/** The three numbers; each output may be NULL. A NULL context gives zeroes. */
CG_EXPORT void XGContextGetSizeInPoints(CGContextRef context, CGFloat* width, CGFloat* height,
                                        CGFloat* third);

/** Strokes each rectangle's outline, as CGContextStrokeRect does. */
CG_EXPORT void XGContextStrokeRects(CGContextRef context, const CGRect* rects, size_t count);

/** Draws the shadow that CGContextDrawPath would draw in `mode`, and not the path; the current path
 *  is consumed all the same. Nothing without a shadow in the state. */
CG_EXPORT void XGContextDrawShadowPath(CGContextRef context, CGPathDrawingMode mode);

/** Draws the shadow that CGContextDrawImage would draw, and not the image. Nothing without a shadow
 *  in the state. */
CG_EXPORT void XGContextDrawShadowImage(CGContextRef context, CGRect rect, CGImageRef image);

CG_END_DECLS
