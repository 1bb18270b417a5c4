/* XGImage.h: what sibling libraries ask of images and keep with them.
 *
 * Setters are for an image's owner, before it is shared between threads; the bits of its bitmap
 * info may be set at any time. */
#pragma once

#include <CoreFoundation/CFDictionary.h>
#include <CoreGraphics/CGImage.h>

CG_BEGIN_DECLS

/* Private bits of an image's bitmap info. The first three say what the info of the image's provider
 * is. */
#define kXGImageNativeBuffer 0x80000000U
#define kXGImageCommandQueue 0x40000000U
#define kXGImageOffscreenTarget 0x20000000U
#define kXGImageRigid 0x10000000U
#define kXGImageUploaded 0x08000000U    /**< A copy of the pixels lies with a graphics processor. */
#define kXGImageUncacheable 0x04000000U /**< Not worth keeping in other layouts. */

/** As CGImageCreate, but the provider's bytes are left alone, so that a provider which decodes when
 *  it is asked has nothing to do yet. */
CG_EXPORT CGImageRef XGImageCreateDeferred(size_t width, size_t height, size_t bitsPerComponent,
                                           size_t bitsPerPixel, size_t bytesPerRow,
                                           CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                                           CGDataProviderRef provider, const CGFloat* decode,
                                           bool shouldInterpolate, CGColorRenderingIntent intent);

/* ---- Bits ---------------------------------------------------------------------------------- */

/** Sets `bits`, of those above, in the bitmap info. */
CG_EXPORT void CGImageAddFlags(CGImageRef image, CGBitmapInfo bits);
CG_EXPORT bool XGImageIsRigid(CGImageRef image);
/** An uploaded image is handed to the list of images to finalise when it goes. */
CG_EXPORT bool XGImageIsUploaded(CGImageRef image);
CG_EXPORT void XGImageSetUploaded(CGImageRef image, bool uploaded);
/** Converted pixels are not kept with an uncacheable image; those that were are dropped when it
 *  becomes one. */
CG_EXPORT bool XGImageIsUncacheable(CGImageRef image);
CG_EXPORT void XGImageSetUncacheable(CGImageRef image, bool uncacheable);
/** Whether the byte order has a bit of the little-endian ones; 16-bit big-endian has both. */
CG_EXPORT bool XGImageIsLittleEndian(CGImageRef image);
/** Images have no caching flags: 0, and nothing to set. */
CG_EXPORT uint32_t CGImageGetCachingFlags(CGImageRef image);
CG_EXPORT void CGImageSetCachingFlags(CGImageRef image, uint32_t flags);

/** The info of the image's provider where the bit says that it is one of these, else NULL. It lives
 *  as long as the provider. */
CG_EXPORT void* XGImageGetNativeBuffer(CGImageRef image);
CG_EXPORT void* XGImageGetCommandQueue(CGImageRef image);
CG_EXPORT void* XGImageGetOffscreenRenderTarget(CGImageRef image);

/* ---- Masks --------------------------------------------------------------------------------- */

/** Whether CGImageMaskCreate made the image, or the one that it was copied or cropped from. */
CG_EXPORT bool XGImageWasCreatedAsMask(CGImageRef image);
/** The mask of an image made by CGImageCreateWithMask, or NULL. */
CG_EXPORT CGImageRef XGImageGetMask(CGImageRef image);
/** Whether there is nothing left to do for drawing the image masked: it has neither a mask nor
 *  masking colours, or keeps a copy with them applied. */
CG_EXPORT bool CGImageIsMaskBaked(CGImageRef image);

/* ---- Notes --------------------------------------------------------------------------------- */

/** The size at which the image is meant to be shown, in points; (0, 0) unless set. */
CG_EXPORT void XGImageSetSizeInPoints(CGImageRef image, CGSize size);
CG_EXPORT CGSize XGImageGetSizeInPoints(CGImageRef image);
/** The provider that the image was decoded from, retained. */
CG_EXPORT void XGImageSetSourceDataProvider(CGImageRef image, CGDataProviderRef provider);
CG_EXPORT CGDataProviderRef XGImageGetSourceDataProvider(CGImageRef image);
/** The type identifier of the file that the image was decoded from, retained: CGImageGetUTType. */
CG_EXPORT void XGImageSetUTType(CGImageRef image, CFStringRef type);
/** Where the image came from, for people who trace drawing; retained, and NULL for nowhere. */
CG_EXPORT void XGImageSetDebugSource(CGImageRef image, CFStringRef source);
/** A positive number that stands for the image in traces. Images of the same debug source (of
 *  which the first 256 bytes in UTF-8 count) have the same number in a process, as have all without
 *  one, and NULL; an image keeps the number that was asked for first. */
CG_EXPORT int32_t XGImageGetTraceID(CGImageRef image);

/** Whether both are the same object or the same picture: equal sizes, bits, public bitmap info,
 *  decode arrays and masks, spaces that need no conversion between them, and the same bytes, the
 *  ends of rows behind their pixels left out. NULL equals nothing. Compares bytes, unless the
 *  provider is the same; false when some are missing. */
CG_EXPORT bool XGImageEqualToImage(CGImageRef a, CGImageRef b);

/* ---- Pixels -------------------------------------------------------------------------------- */

/** Has the image's provider make its bytes: planar, or premultiplied, or plain ones, whichever it
 *  has first. Whether it had any. */
CG_EXPORT bool CGImageForceDecode(CGImageRef image);
CG_EXPORT bool XGImageForceDecode(CGImageRef image);
/** Whether the provider has planar data; their count of planes, the byte at offset 16 of the data,
 *  goes to `planeCount` (may be NULL), which is left alone otherwise. */
CG_EXPORT bool XGImageIsPlanar(CGImageRef image, uint32_t* planeCount);

/* ---- Alpha infos --------------------------------------------------------------------------- */

/** Whether pixels have no opacity: none, or skipped. */
CG_EXPORT bool XGImageAlphaInfoIsOpaque(CGImageAlphaInfo alpha);
/** Whether an opacity, skipped or not, stands before or behind the colours. */
CG_EXPORT bool CGImageIsAlphaFirst(CGImageAlphaInfo alpha);
CG_EXPORT bool CGImageIsAlphaLast(CGImageAlphaInfo alpha);
CG_EXPORT bool CGImageIsAlphaPremultiplied(CGImageAlphaInfo alpha);
CG_EXPORT bool CGImageSkipAlpha(CGImageAlphaInfo alpha);

/* ---- Decoding hooks ------------------------------------------------------------------------ */

/* The image file library writes its functions here when it is loaded; until then the slots are NULL
 * and pictures cannot be made from PNG and JPEG data. They are written once, before images are
 * made, and read without a lock. */

struct CGImageSource;

typedef struct CGImageSource* (*XGImageSourceCreateFunction)(CGDataProviderRef provider,
                                                             CFDictionaryRef options);
typedef CFStringRef (*XGImageSourceGetTypeFunction)(struct CGImageSource* source);
typedef CGImageRef (*XGImageSourceCreateImageFunction)(struct CGImageSource* source, size_t index,
                                                       CFDictionaryRef options);
typedef void (*XGImageSourceReleaseFunction)(struct CGImageSource* source);

CG_EXPORT XGImageSourceCreateFunction _ImageIOCGImageSourceCreateWithDataProvider;
CG_EXPORT XGImageSourceGetTypeFunction _ImageIOCGImageSourceGetType;
CG_EXPORT XGImageSourceCreateImageFunction _ImageIOCGImageSourceCreateImageAtIndex;
CG_EXPORT XGImageSourceReleaseFunction _ImageIOXGImageSourceRelease;
/** The key of a source's options under which the expected type identifier stands. */
CG_EXPORT CFStringRef _ImageIOkCGImageSourceTypeIdentifierHint;

CG_END_DECLS
