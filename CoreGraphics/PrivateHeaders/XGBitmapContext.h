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

/** Pixel memory of the host that is there while it is locked. The record is the host's: it outlives
 *  the contexts over it, and releases its memory by setting `data` to NULL, from when on marks are
 *  dropped with an error in the log. */
typedef struct XGNativeBuffer {
    /** The picture's top row; may change while the buffer is not locked. */
    void* data;
    /** In pixels. */
    size_t width;
    size_t height;
    /** From a row to the next; 0 means packed rows. */
    size_t bytesPerRow;
    /** Called before pixels are touched and afterwards, once each; either may be NULL. */
    void (*lock)(struct XGNativeBuffer* buffer);
    void (*unlock)(struct XGNativeBuffer* buffer);
} XGNativeBuffer;

/** A context that draws into a native buffer, which is locked for each mark, for images of the
 *  context and while it is made. CGBitmapContextGetData gives the address without locking. NULL, as
 *  for CGBitmapContextCreate, and for NULL or a buffer that has been released. */
CG_EXPORT CGContextRef XGBitmapContextCreateWithNativeBuffer(XGNativeBuffer* buffer,
                                                             size_t bitsPerComponent,
                                                             CGColorSpaceRef space,
                                                             CGBitmapInfo bitmapInfo);

/** A bitmap context of the same format over a copy of the pixels, in memory of its own and with a
 *  fresh graphics state. NULL for contexts of other kinds, and with an error in the log when memory
 *  runs out. */
CG_EXPORT CGContextRef XGBitmapContextCreateClone(CGContextRef context);

/** CGBitmapContextCreateImage of the `width` × `height` pixels in the upper left corner. NULL when
 * a size is 0, and with an error in the log when the bitmap is not as large. */
CG_EXPORT CGImageRef XGBitmapContextCreateImageWithSize(CGContextRef context, size_t width,
                                                        size_t height);

/** Takes the opacities of an alpha-only context for grays from now on: its colour space becomes the
 *  device's gray and its alpha info "none", pixels stay as they are, and so do the colours of the
 *  graphics state. False, and nothing changes, for other contexts and when memory runs out. */
CG_EXPORT bool XGBitmapContextConvertFromAlphaToGrayscale(CGContextRef context);

/** Writes the pixels to a TGA file at `path`: 32 bits, colours not premultiplied, in the bitmap's
 *  own space if that is gray or RGB and otherwise in the device's RGB. False, with an error in the
 *  log, when the file cannot be written or the bitmap has more than 65535 rows or columns; false
 *  for NULL and for contexts that are not bitmap contexts. */
CG_EXPORT bool XGBitmapContextDumpTGA(CGContextRef context, const char* path);

/** ORs private bits into the bitmap info that the getters report. Nothing for other contexts. */
CG_EXPORT void XGBitmapContextAddFlags(CGContextRef context, CGBitmapInfo flags);

/** The clean-up of a bitmap context's own fields, run by the finaliser of contexts of its kind. */
CG_EXPORT void XGBitmapContextDispose(CGContextRef context);

CG_END_DECLS
