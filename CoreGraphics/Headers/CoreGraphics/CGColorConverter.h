/* CGColorConverter: rows of pixels from one colour space and format to another.
 *
 * A pixel is the components of its space, interleaved, then its opacity where there is one; it is
 * not multiplied by the opacity. Integers are in host order and use all of their range, floats are
 * 0 to 1. Of Lab, floats are lightness (0 to 100), a* and b* themselves, and integers are encoded
 * as ICC profiles of version 4 do. Immutable: any number of threads use one at the same time. */
#pragma once

#include <CoreGraphics/CGColorSpace.h>

CG_BEGIN_DECLS

typedef struct CGColorConverter* CGColorConverterRef;

typedef struct CGColorConverterFormat {
    uint32_t bitsPerComponent; /**< 8 or 16, or 32 for floats. */
    bool hasAlpha;             /**< Whether the opacity stands behind the components. */
} CGColorConverterFormat;

/** A converter from pixels of `from` to pixels of `to`. NULL when an argument is missing, a format
 *  has other bits, a space is indexed or of patterns, or there is no way between the profiles;
 *  other bits are logged as a warning. */
CG_EXPORT CGColorConverterRef CGColorConverterCreate(CGColorSpaceRef from,
                                                     const CGColorConverterFormat* fromFormat,
                                                     CGColorSpaceRef to,
                                                     const CGColorConverterFormat* toFormat,
                                                     CGColorRenderingIntent intent);

CG_EXPORT CFTypeID CGColorConverterGetTypeID(void);
CG_EXPORT CGColorConverterRef CGColorConverterRetain(CGColorConverterRef converter);
CG_EXPORT void CGColorConverterRelease(CGColorConverterRef converter);

/** Converts `height` rows of `width` pixels. Rows start `inBytesPerRow` and `outBytesPerRow` apart,
 *  aligned to their components; `in` and `out` do not overlap. Opacity passes through, and is full
 *  where `in` has none. False when something is missing, a row is longer than the distance of two,
 *  or sizes overflow. */
CG_EXPORT bool CGColorConverterConvertRows(CGColorConverterRef converter, const void* in,
                                           size_t inBytesPerRow, void* out, size_t outBytesPerRow,
                                           size_t width, size_t height);

CG_END_DECLS
