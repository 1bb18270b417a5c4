/* PublishedNames.c: the names and values that programs written against the interface rely on. The
 * compiler checks them; PublishedNamesInCxx.cpp does the same for C++. */

#include <CoreGraphics/CoreGraphics.h>
#include <ImageIO/ImageIO.h>

#if !defined(__cplusplus)
#define static_assert _Static_assert
#endif

#define HAS_VALUE(name, value) static_assert((int)(name) == (value), #name)
#define IS_POINTER(type) static_assert(sizeof(type) == sizeof(void*), #type)

static_assert(sizeof(CGFloat) == 4, "CGFloat");
#if !defined(CGFLOAT_DEFINED) || CGFLOAT_IS_DOUBLE || !defined(CGFLOAT_MIN) || !defined(CGFLOAT_MAX)
#error "CGFloat is a float, with its limits"
#endif

static_assert(sizeof(CGPoint) == 8 && sizeof(CGSize) == 8 && sizeof(CGVector) == 8, "pairs");
static_assert(sizeof(CGRect) == 16, "CGRect");
static_assert(sizeof(CGAffineTransform) == 24, "CGAffineTransform");
static_assert(sizeof(CGGlyph) == 2 && sizeof(CGFontIndex) == 2, "glyphs");
static_assert(sizeof(CGBitmapInfo) == 4, "CGBitmapInfo");

IS_POINTER(CGColorRef);
IS_POINTER(CGColorSpaceRef);
IS_POINTER(CGContextRef);
IS_POINTER(CGDataConsumerRef);
IS_POINTER(CGDataProviderRef);
IS_POINTER(CGFontRef);
IS_POINTER(CGFunctionRef);
IS_POINTER(CGGradientRef);
IS_POINTER(CGImageRef);
IS_POINTER(CGLayerRef);
IS_POINTER(CGMutablePathRef);
IS_POINTER(CGPDFDocumentRef);
IS_POINTER(CGPDFPageRef);
IS_POINTER(CGPathRef);
IS_POINTER(CGPatternRef);
IS_POINTER(CGShadingRef);
IS_POINTER(CGDataProviderReleaseDataCallback);
IS_POINTER(CGFunctionEvaluateCallback);
IS_POINTER(CGFunctionReleaseInfoCallback);
IS_POINTER(CGPathApplierFunction);

/* CGRectEdge */
HAS_VALUE(CGRectMinXEdge, 0);
HAS_VALUE(CGRectMinYEdge, 1);
HAS_VALUE(CGRectMaxXEdge, 2);
HAS_VALUE(CGRectMaxYEdge, 3);

/* CGLineCap */
HAS_VALUE(kCGLineCapButt, 0);
HAS_VALUE(kCGLineCapRound, 1);
HAS_VALUE(kCGLineCapSquare, 2);

/* CGLineJoin */
HAS_VALUE(kCGLineJoinMiter, 0);
HAS_VALUE(kCGLineJoinRound, 1);
HAS_VALUE(kCGLineJoinBevel, 2);

/* CGPathElementType */
HAS_VALUE(kCGPathElementMoveToPoint, 0);
HAS_VALUE(kCGPathElementAddLineToPoint, 1);
HAS_VALUE(kCGPathElementAddQuadCurveToPoint, 2);
HAS_VALUE(kCGPathElementAddCurveToPoint, 3);
HAS_VALUE(kCGPathElementCloseSubpath, 4);

/* CGPathDrawingMode */
HAS_VALUE(kCGPathFill, 0);
HAS_VALUE(kCGPathEOFill, 1);
HAS_VALUE(kCGPathStroke, 2);
HAS_VALUE(kCGPathFillStroke, 3);
HAS_VALUE(kCGPathEOFillStroke, 4);

/* CGColorRenderingIntent */
HAS_VALUE(kCGRenderingIntentDefault, 0);
HAS_VALUE(kCGRenderingIntentAbsoluteColorimetric, 1);
HAS_VALUE(kCGRenderingIntentRelativeColorimetric, 2);
HAS_VALUE(kCGRenderingIntentPerceptual, 3);
HAS_VALUE(kCGRenderingIntentSaturation, 4);

/* CGColorSpaceModel */
HAS_VALUE(kCGColorSpaceModelUnknown, -1);
HAS_VALUE(kCGColorSpaceModelMonochrome, 0);
HAS_VALUE(kCGColorSpaceModelRGB, 1);
HAS_VALUE(kCGColorSpaceModelCMYK, 2);
HAS_VALUE(kCGColorSpaceModelLab, 3);
HAS_VALUE(kCGColorSpaceModelDeviceN, 4);
HAS_VALUE(kCGColorSpaceModelIndexed, 5);
HAS_VALUE(kCGColorSpaceModelPattern, 6);
HAS_VALUE(kCGColorSpaceModelXYZ, 7);

/* CGPatternTiling */
HAS_VALUE(kCGPatternTilingNoDistortion, 0);
HAS_VALUE(kCGPatternTilingConstantSpacingMinimalDistortion, 1);
HAS_VALUE(kCGPatternTilingConstantSpacing, 2);

/* CGGradientDrawingOptions */
HAS_VALUE(kCGGradientDrawsBeforeStartLocation, 1);
HAS_VALUE(kCGGradientDrawsAfterEndLocation, 2);

/* CGImageAlphaInfo */
HAS_VALUE(kCGImageAlphaNone, 0);
HAS_VALUE(kCGImageAlphaPremultipliedLast, 1);
HAS_VALUE(kCGImageAlphaPremultipliedFirst, 2);
HAS_VALUE(kCGImageAlphaLast, 3);
HAS_VALUE(kCGImageAlphaFirst, 4);
HAS_VALUE(kCGImageAlphaNoneSkipLast, 5);
HAS_VALUE(kCGImageAlphaNoneSkipFirst, 6);
HAS_VALUE(kCGImageAlphaOnly, 7);

/* CGImageByteOrderInfo */
HAS_VALUE(kCGImageByteOrderMask, 0x7000);
HAS_VALUE(kCGImageByteOrderDefault, 0);
HAS_VALUE(kCGImageByteOrder16Little, 0x1000);
HAS_VALUE(kCGImageByteOrder32Little, 0x2000);
HAS_VALUE(kCGImageByteOrder16Big, 0x3000);
HAS_VALUE(kCGImageByteOrder32Big, 0x4000);

/* CGBitmapInfo */
HAS_VALUE(kCGBitmapAlphaInfoMask, 0x1F);
HAS_VALUE(kCGBitmapFloatInfoMask, 0xF00);
HAS_VALUE(kCGBitmapFloatComponents, 0x100);
HAS_VALUE(kCGBitmapByteOrderMask, 0x7000);
HAS_VALUE(kCGBitmapByteOrderDefault, 0);
HAS_VALUE(kCGBitmapByteOrder16Little, 0x1000);
HAS_VALUE(kCGBitmapByteOrder32Little, 0x2000);
HAS_VALUE(kCGBitmapByteOrder16Big, 0x3000);
HAS_VALUE(kCGBitmapByteOrder32Big, 0x4000);

/* CGImageSourceStatus */
HAS_VALUE(kCGImageStatusUnexpectedEOF, -5);
HAS_VALUE(kCGImageStatusInvalidData, -4);
HAS_VALUE(kCGImageStatusUnknownType, -3);
HAS_VALUE(kCGImageStatusReadingHeader, -2);
HAS_VALUE(kCGImageStatusIncomplete, -1);
HAS_VALUE(kCGImageStatusComplete, 0);

/* CGFontIndex */
HAS_VALUE(kCGFontIndexMax, 65534);
HAS_VALUE(kCGFontIndexInvalid, 65535);
HAS_VALUE(kCGGlyphMin, 0);
HAS_VALUE(kCGGlyphMax, 65534);

/* CGFontPostScriptFormat */
HAS_VALUE(kCGFontPostScriptFormatType1, 1);
HAS_VALUE(kCGFontPostScriptFormatType3, 3);
HAS_VALUE(kCGFontPostScriptFormatType42, 42);

/* CGTextDrawingMode */
HAS_VALUE(kCGTextFill, 0);
HAS_VALUE(kCGTextStroke, 1);
HAS_VALUE(kCGTextFillStroke, 2);
HAS_VALUE(kCGTextInvisible, 3);
HAS_VALUE(kCGTextFillClip, 4);
HAS_VALUE(kCGTextStrokeClip, 5);
HAS_VALUE(kCGTextFillStrokeClip, 6);
HAS_VALUE(kCGTextClip, 7);

/* CGTextEncoding */
HAS_VALUE(kCGEncodingFontSpecific, 0);
HAS_VALUE(kCGEncodingMacRoman, 1);

/* CGInterpolationQuality */
HAS_VALUE(kCGInterpolationDefault, 0);
HAS_VALUE(kCGInterpolationNone, 1);
HAS_VALUE(kCGInterpolationLow, 2);
HAS_VALUE(kCGInterpolationHigh, 3);
HAS_VALUE(kCGInterpolationMedium, 4);

/* CGBlendMode */
HAS_VALUE(kCGBlendModeNormal, 0);
HAS_VALUE(kCGBlendModeMultiply, 1);
HAS_VALUE(kCGBlendModeScreen, 2);
HAS_VALUE(kCGBlendModeOverlay, 3);
HAS_VALUE(kCGBlendModeDarken, 4);
HAS_VALUE(kCGBlendModeLighten, 5);
HAS_VALUE(kCGBlendModeColorDodge, 6);
HAS_VALUE(kCGBlendModeColorBurn, 7);
HAS_VALUE(kCGBlendModeSoftLight, 8);
HAS_VALUE(kCGBlendModeHardLight, 9);
HAS_VALUE(kCGBlendModeDifference, 10);
HAS_VALUE(kCGBlendModeExclusion, 11);
HAS_VALUE(kCGBlendModeHue, 12);
HAS_VALUE(kCGBlendModeSaturation, 13);
HAS_VALUE(kCGBlendModeColor, 14);
HAS_VALUE(kCGBlendModeLuminosity, 15);
HAS_VALUE(kCGBlendModeClear, 16);
HAS_VALUE(kCGBlendModeCopy, 17);
HAS_VALUE(kCGBlendModeSourceIn, 18);
HAS_VALUE(kCGBlendModeSourceOut, 19);
HAS_VALUE(kCGBlendModeSourceAtop, 20);
HAS_VALUE(kCGBlendModeDestinationOver, 21);
HAS_VALUE(kCGBlendModeDestinationIn, 22);
HAS_VALUE(kCGBlendModeDestinationOut, 23);
HAS_VALUE(kCGBlendModeDestinationAtop, 24);
HAS_VALUE(kCGBlendModeXOR, 25);
HAS_VALUE(kCGBlendModePlusDarker, 26);
HAS_VALUE(kCGBlendModePlusLighter, 27);

/* CGPDFBox */
HAS_VALUE(kCGPDFMediaBox, 0);
HAS_VALUE(kCGPDFCropBox, 1);
HAS_VALUE(kCGPDFBleedBox, 2);
HAS_VALUE(kCGPDFTrimBox, 3);
HAS_VALUE(kCGPDFArtBox, 4);

/* A bitmap info word is or-ed together without a cast. */
CGBitmapInfo publishedBitmapInfo(void);
CGBitmapInfo publishedBitmapInfo(void) {
    CGBitmapInfo info = kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Host;
    info |= kCGBitmapFloatComponents;
    info ^= kCGBitmapByteOrder16Host & kCGBitmapByteOrderMask;
    return info | (kCGImageByteOrder32Little | kCGImageAlphaNone) |
           (kCGBitmapByteOrderDefault | kCGImageAlphaLast | kCGBitmapFloatComponents);
}

/* The inline makers, and structures with the fields that callers set by name. */
CGRect publishedStructures(void);
CGRect publishedStructures(void) {
    const CGPoint point = CGPointMake(1, 2);
    const CGSize size = CGSizeMake(3, 4);
    const CGVector vector = CGVectorMake(5, 6);
    CGFunctionCallbacks function = {0, NULL, NULL};
    CGPatternCallbacks pattern = {0, NULL, NULL};
    CGDataProviderSequentialCallbacks sequential = {0, NULL, NULL, NULL, NULL};
    CGDataProviderDirectCallbacks direct = {0, NULL, NULL, NULL, NULL};
    CGDataConsumerCallbacks consumer = {NULL, NULL};
    CGPathElement element = {kCGPathElementMoveToPoint, NULL};
    (void)function, (void)pattern, (void)sequential, (void)direct, (void)consumer, (void)element;
    return CGRectMake(point.x, point.y, size.width + vector.dx, size.height);
}
