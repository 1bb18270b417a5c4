/* CGColorConversionInfo.h: conversions between colour spaces, made ahead of their use. */
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreGraphics/CGImage.h>

#include <stdarg.h>

CG_BEGIN_DECLS

/** Immutable: any number of threads use one at the same time. Retained and released as every
 *  CFTypeRef is. */
typedef const struct CGColorConversionInfo* CGColorConversionInfoRef;

/** Which way a step of a conversion goes. */
CG_ENUM(uint32_t, CGColorConversionInfoTransformType){
    kCGColorConversionTransformFromSpace = 0, kCGColorConversionTransformToSpace = 1,
    kCGColorConversionTransformApplySpace = 2 /**< Through the space, as on a proof. */
};

CG_EXPORT CFTypeID CGColorConversionInfoGetTypeID(void);

/** The conversion from `source` to `destination` with the default intent. NULL when one is missing,
 *  or there is no way between them. */
CG_EXPORT CGColorConversionInfoRef CGColorConversionInfoCreate(CGColorSpaceRef source,
                                                               CGColorSpaceRef destination);

/** A conversion through a list of spaces, each followed by its CGColorConversionInfoTransformType
 *  and CGColorRenderingIntent, with NULL in place of a further space. The first is a FromSpace; the
 *  intent of each later one rules the step into it. There are no `options` yet: NULL. NULL when
 *  there are fewer than two spaces or more than eight, the first is not a FromSpace or a later one
 *  is, or there is no way from one to the next. */
CG_EXPORT CGColorConversionInfoRef CGColorConversionInfoCreateFromList(
    CFDictionaryRef options, CGColorSpaceRef space, CGColorConversionInfoTransformType type,
    CGColorRenderingIntent intent, ...);
CG_EXPORT CGColorConversionInfoRef CGColorConversionInfoCreateFromListWithArguments(
    CFDictionaryRef options, CGColorSpaceRef space, CGColorConversionInfoTransformType type,
    CGColorRenderingIntent intent, va_list arguments);

/** How pixels lie in memory, as an image's do. */
typedef struct CGColorBufferFormat {
    uint32_t version; /**< 0. */
    CGBitmapInfo bitmapInfo;
    size_t bitsPerComponent;
    size_t bitsPerPixel;
    size_t bytesPerRow;
} CGColorBufferFormat;

/** Converts `height` rows of `width` pixels from the first space of `info` into its last.
 * Components are of 1 to 16 bits or floats, and pixels of whole bytes where they are written;
 * opacity may stand first or last, multiplied or not, and is full where only the written pixels
 * have one. Bits that belong to nothing become 1. The memories do not overlap. There are no
 * `options` yet: NULL. False, with nothing written, when something is missing, a format is none for
 * the components of its space, a row is longer than the distance of two, or sizes overflow. */
CG_EXPORT bool CGColorConversionInfoConvertData(CGColorConversionInfoRef info, size_t width,
                                                size_t height, void* destination,
                                                CGColorBufferFormat destinationFormat,
                                                const void* source,
                                                CGColorBufferFormat sourceFormat,
                                                CFDictionaryRef options);

CG_END_DECLS
