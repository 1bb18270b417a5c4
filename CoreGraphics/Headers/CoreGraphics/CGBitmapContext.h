/* CGBitmapContext.h: contexts that draw into pixels in memory. */
#pragma once

#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGImage.h>

CG_BEGIN_DECLS

/** The context no longer needs the pixels that its caller gave. */
typedef void (*CGBitmapContextReleaseDataCallback)(void* releaseInfo, void* data);

/** A context that draws into `width` × `height` pixels of `bitsPerComponent` bits each component.
 *
 *  `data` holds the pixels, the picture's top row first, and must outlive the context; what it
 * holds stays until it is drawn over. With NULL the context has pixels of its own, at first all
 * zero; while it can it records what is drawn instead, and allocates them when they are needed.
 *  `bytesPerRow` is the distance between rows; 0 means packed rows. `space` gives the number and
 *  meaning of the components and may be NULL for alpha-only pixels; the context keeps it.
 *  `bitmapInfo` says where the alpha is and in which order bytes lie. User space has its origin at
 *  the lower left corner, y up, one unit per pixel, and the whole bitmap is the clip.
 *
 *  Formats: gray of 8 bits; alpha alone of 8 bits; gray with alpha of 8 or 16 bits each; RGB in 16,
 *  24, 32 or 64 bits (three of 5 bits; 5-6-5 as kCGImagePixelFormatRGB565 with 5 bits given; 4, 6,
 *  8 or 16 bits each), with alpha or skipped bits first or last and in every byte order; CMYK of 8
 *  bits without alpha; indices of 8 bits into a table of gray, RGB or CMYK. BGRA, premultiplied
 *  first in little-endian order, is drawn fastest. Marks are mixed in RGB in any space, and only
 *  what they change is written.
 *
 *  NULL, without a message, when width, height or bitsPerComponent is 0; NULL, with an error in the
 *  log, for alpha that is not premultiplied, rows too short for the width, and formats that cannot
 *  be drawn into. */
CG_EXPORT CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height,
                                             size_t bitsPerComponent, size_t bytesPerRow,
                                             CGColorSpaceRef space, CGBitmapInfo bitmapInfo);
/** CGBitmapContextCreate that calls `release(releaseInfo, data)` once the context is gone and needs
 *  `data` no longer. When NULL is returned `release` has not been called. */
CG_EXPORT CGContextRef CGBitmapContextCreateWithData(void* data, size_t width, size_t height,
                                                     size_t bitsPerComponent, size_t bytesPerRow,
                                                     CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                                                     CGBitmapContextReleaseDataCallback release,
                                                     void* releaseInfo);

/* Of contexts that are not bitmap contexts the following answer 0 or NULL. */

/** The pixels, as drawn so far; they live as long as the context. What was recorded is drawn into
 *  them first. NULL, with an error in the log, when there is no memory for that. */
CG_EXPORT void* CGBitmapContextGetData(CGContextRef context);
/** The width in pixels. */
CG_EXPORT size_t CGBitmapContextGetWidth(CGContextRef context);
/** The height in pixels. */
CG_EXPORT size_t CGBitmapContextGetHeight(CGContextRef context);
CG_EXPORT size_t CGBitmapContextGetBitsPerComponent(CGContextRef context);
CG_EXPORT size_t CGBitmapContextGetBitsPerPixel(CGContextRef context);
CG_EXPORT size_t CGBitmapContextGetBytesPerRow(CGContextRef context);
/** The colour space, lent. */
CG_EXPORT CGColorSpaceRef CGBitmapContextGetColorSpace(CGContextRef context);
CG_EXPORT CGBitmapInfo CGBitmapContextGetBitmapInfo(CGContextRef context);
CG_EXPORT CGImageAlphaInfo CGBitmapContextGetAlphaInfo(CGContextRef context);
/** Whether the context records commands for a compositor and has no pixels yet. Bit 30 of the
 *  bitmap info, and of the infos of images made meanwhile, says the same. */
CG_EXPORT bool CGBitmapContextHasCommandQueue(CGContextRef context);

/** An image of the pixels as drawn so far, in the context's own layout and colour space; what is
 *  drawn later does not change it. NULL for contexts that are not bitmap contexts and when memory
 *  runs out.
 *
 *  The pixels are copied no sooner than the context is drawn to again, unless the caller can reach
 *  them: because it gave the memory or asked for it with CGBitmapContextGetData. Of a context that
 *  records nothing is copied: the image draws the commands when its bytes are first wanted. */
CG_EXPORT CGImageRef CGBitmapContextCreateImage(CGContextRef context);

CG_END_DECLS
