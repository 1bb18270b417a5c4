/* XGBitmapContext: what sibling libraries ask of bitmap contexts beyond the public interface. */
#pragma once

#include <CoreGraphics/CGBitmapContext.h>

CG_BEGIN_DECLS

/** Gives `size` bytes of pixel memory, or NULL. The context does not clear it. */
typedef void* (*XGBitmapContextAllocateCallback)(void* info, size_t size);

/** CGBitmapContextCreateWithData whose memory, when `data` is NULL, comes from `allocate(info,
 *  size)`. `release(info, pixels)` is called once with that memory, or with `data`, when the
 * context is gone; it may be NULL. With `allocate` NULL as well the context allocates for itself.
 */
CG_EXPORT CGContextRef _CGBitmapContextCreateWithDataAllocator(
    void* data, size_t width, size_t height, size_t bitsPerComponent, size_t bytesPerRow,
    CGColorSpaceRef space, CGBitmapInfo bitmapInfo, XGBitmapContextAllocateCallback allocate,
    CGBitmapContextReleaseDataCallback release, void* info);

/** ORs private bits into the bitmap info that the getters report. Nothing for other contexts. */
CG_EXPORT void XGBitmapContextAddFlags(CGContextRef context, CGBitmapInfo flags);

/** The clean-up of a bitmap context's own fields, run by the finaliser of contexts of its kind. */
CG_EXPORT void XGBitmapContextDispose(CGContextRef context);

CG_END_DECLS
