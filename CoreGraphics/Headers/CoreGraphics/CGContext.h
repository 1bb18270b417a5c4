/* CGContext.h: drawing destinations with their graphics state and current path. */
#pragma once

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
CG_ENUM(int32_t, CGTextDrawingMode) {
    kCGTextFill = 0,
    kCGTextStroke = 1,
    kCGTextFillStroke = 2,
    kCGTextInvisible = 3, /**< Nothing is drawn, but the text position moves on. */
    kCGTextFillClip = 4,
    kCGTextStrokeClip = 5,
    kCGTextFillStrokeClip = 6,
    kCGTextClip = 7
};

/** What the bytes of a shown text mean. */
CG_ENUM(int32_t, CGTextEncoding) {
    kCGEncodingFontSpecific = 0,
    kCGEncodingMacRoman = 1
};

/** How carefully the pixels of a scaled image are computed. */
CG_ENUM(int32_t, CGInterpolationQuality) {
    kCGInterpolationDefault = 0,
    kCGInterpolationNone = 1, /**< The nearest pixel. */
    kCGInterpolationLow = 2,
    kCGInterpolationHigh = 3,
    kCGInterpolationMedium = 4
};

/** How new marks mix with what is there. R, S and D are result, source and destination with
 *  premultiplied alpha, Ra, Sa and Da their alphas. The first sixteen are the blend modes of
 *  ISO 32000-1, 11.3.5; the others are Porter and Duff's operators ("Compositing digital images",
 *  1984) and two sums. */
CG_ENUM(int32_t, CGBlendMode) {
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
    kCGBlendModePlusDarker = 26,      /**< R = max(0, 1 - (1 - D) - (1 - S)) */
    kCGBlendModePlusLighter = 27      /**< R = min(1, S + D) */
};

CG_END_DECLS
