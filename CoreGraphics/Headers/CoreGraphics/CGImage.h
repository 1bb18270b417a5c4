/* CGImage.h: immutable grids of pixels, and the words that describe how a pixel is made up.
 *
 * A bitmap info word is one CGImageAlphaInfo, one byte order and the float flag, or-ed. Enumerators
 * may be or-ed without a cast, in C and in C++. */
#pragma once

#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGGeometry.h>

CG_BEGIN_DECLS

typedef struct CGImage* CGImageRef;

/** Where a pixel's opacity stands, and whether the other components are multiplied by it. */
CG_ENUM(uint32_t, CGImageAlphaInfo){
    kCGImageAlphaNone = 0,
    kCGImageAlphaPremultipliedLast = 1,
    kCGImageAlphaPremultipliedFirst = 2,
    kCGImageAlphaLast = 3,
    kCGImageAlphaFirst = 4,
    kCGImageAlphaNoneSkipLast = 5, /**< As many bits as an opacity would take, without meaning. */
    kCGImageAlphaNoneSkipFirst = 6,
    kCGImageAlphaOnly = 7 /**< Opacity, and no colour. */
};

/** In which order the bytes of a 16-bit or 32-bit unit lie in memory. */
CG_ENUM(uint32_t, CGImageByteOrderInfo){
    kCGImageByteOrderMask = 0x7000,     kCGImageByteOrderDefault = 0x0000,
    kCGImageByteOrder16Little = 0x1000, kCGImageByteOrder32Little = 0x2000,
    kCGImageByteOrder16Big = 0x3000,    kCGImageByteOrder32Big = 0x4000};

/** How the components of a pixel share its bits, where they are not all of one width. */
CG_ENUM(uint32_t, CGImagePixelFormatInfo){
    kCGImagePixelFormatMask = 0xF0000,
    kCGImagePixelFormatPacked = 0x00000, /**< As many bits for each. */
    kCGImagePixelFormatRGB555 = 0x10000, /**< 5 bits each, and one that is skipped or opacity. */
    kCGImagePixelFormatRGB565 = 0x20000, /**< 5 bits of red, 6 of green and 5 of blue. */
    kCGImagePixelFormatRGB101010 = 0x30000,
    kCGImagePixelFormatRGBCIF10 = 0x40000};

typedef uint32_t CGBitmapInfo;

/* Named in C++ alone, where the or of two enumerations needs an operator. */
#if defined(__cplusplus)
enum CGBitmapInfoFlags : uint32_t {
#else
enum {
#endif
    kCGBitmapAlphaInfoMask = 0x1F,
    kCGBitmapFloatInfoMask = 0xF00,
    kCGBitmapFloatComponents = 0x100, /**< Components are floats of the component's size. */
    kCGBitmapByteOrderMask = 0x7000,
    kCGBitmapByteOrderDefault = 0x0000,
    kCGBitmapByteOrder16Little = 0x1000,
    kCGBitmapByteOrder32Little = 0x2000,
    kCGBitmapByteOrder16Big = 0x3000,
    kCGBitmapByteOrder32Big = 0x4000
};

/* The byte orders of the machine that the program runs on. */
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
#define kCGBitmapByteOrder16Host kCGBitmapByteOrder16Big
#define kCGBitmapByteOrder32Host kCGBitmapByteOrder32Big
#define kCGImageByteOrder16Host kCGImageByteOrder16Big
#define kCGImageByteOrder32Host kCGImageByteOrder32Big
#else
#define kCGBitmapByteOrder16Host kCGBitmapByteOrder16Little
#define kCGBitmapByteOrder32Host kCGBitmapByteOrder32Little
#define kCGImageByteOrder16Host kCGImageByteOrder16Little
#define kCGImageByteOrder32Host kCGImageByteOrder32Little
#endif

CG_EXPORT CFTypeID CGImageGetTypeID(void);

/* ---- Creation ------------------------------------------------------------------------------ */

/* Sizes are in pixels. An image retains its provider and space; when it cannot be made they are as
 * before, and the provider's release callback does not run. Bytes are read when the image is used,
 * and never copied for it. */

/** An image of `width` x `height` pixels over the bytes of `provider`, the top row first.
 *
 *  A pixel has a component for each of the space's and one more for an alpha info other than
 *  "none"; of "only" it has one. NULL for an empty image, for no provider, for components of more
 *  than 32 bits, for floats that are not 32 bits alone in their pixel, and for components that do
 *  not fit into `bitsPerPixel`. Bits left over are accepted from "none", which becomes "none, skip
 *  last", and from the skipped infos. A `space` of NULL goes with "none" and "only".
 *
 *  `bytesPerRow` is not checked, nor whether the provider has as many bytes as the rows take: what
 *  lies outside the provider is never read, and drawing does without it.
 *
 *  `decode` (may be NULL) gives a minimum and a maximum for each component, to which its least and
 *  its largest value are mapped; it is copied. Where the bytes lie in memory at an address that is
 *  not a multiple of 4, an error is logged, and the image made. */
CG_EXPORT CGImageRef CGImageCreate(size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bitsPerPixel, size_t bytesPerRow, CGColorSpaceRef space,
                                   CGBitmapInfo bitmapInfo, CGDataProviderRef provider,
                                   const CGFloat* decode, bool shouldInterpolate,
                                   CGColorRenderingIntent intent);
/** An image mask: paint passes where its samples are 0, or by a `decode` of {1, 0} where they are
 *  greatest. NULL for an empty mask, for no provider, for components that do not have 1, 2, 4 or 8
 *  bits, and for rows with padding: `bytesPerRow` must be the bytes that the bits of a row need. */
CG_EXPORT CGImageRef CGImageMaskCreate(size_t width, size_t height, size_t bitsPerComponent,
                                       size_t bitsPerPixel, size_t bytesPerRow,
                                       CGDataProviderRef provider, const CGFloat* decode,
                                       bool shouldInterpolate);

/** The same pixels over the same provider, without mask and masking colours and without what the
 *  image was noted to come from. */
CG_EXPORT CGImageRef CGImageCreateCopy(CGImageRef image);
/** A copy whose components are taken for those of another space. NULL for image masks and images
 *  without a space, for no space, and when the spaces' counts of components differ. */
CG_EXPORT CGImageRef CGImageCreateCopyWithColorSpace(CGImageRef image, CGColorSpaceRef space);
/** A copy masked by `mask`, which is retained and has the same size: an image mask, or an image in
 *  device gray or without a space that shows where it is white. NULL if `image` is a mask itself,
 *  or masked already. */
CG_EXPORT CGImageRef CGImageCreateWithMask(CGImageRef image, CGImageRef mask);
/** A copy in which colours are see-through whose every component lies in its range. `components`
 *  are a minimum and a maximum for each component of the space, in sample values before the decode
 *  array. NULL as above. */
CG_EXPORT CGImageRef CGImageCreateWithMaskingColors(CGImageRef image, const CGFloat* components);
/** The part of `image` within `rect`, which is rounded outwards to whole pixels; its origin is the
 *  top left corner and y goes down. The part shares the image's bytes, and has no mask and no
 *  masking colours. The image itself, retained, if that is all of it; NULL if they do not overlap,
 *  and with an error in the log if the left edge does not fall on a whole byte. */
CG_EXPORT CGImageRef CGImageCreateWithImageInRect(CGImageRef image, CGRect rect);

/** The picture of a PNG or JPEG file (JPEG 2000 as well), with its own decode array unless there
 *  is one here. NULL for data of another type; with an error in the log unless the image file
 *  library is loaded. */
CG_EXPORT CGImageRef CGImageCreateWithPNGDataProvider(CGDataProviderRef provider,
                                                      const CGFloat* decode, bool shouldInterpolate,
                                                      CGColorRenderingIntent intent);
CG_EXPORT CGImageRef CGImageCreateWithJPEGDataProvider(CGDataProviderRef provider,
                                                       const CGFloat* decode,
                                                       bool shouldInterpolate,
                                                       CGColorRenderingIntent intent);

CG_EXPORT CGImageRef CGImageRetain(CGImageRef image);
CG_EXPORT void CGImageRelease(CGImageRef image);

/* ---- Questions ----------------------------------------------------------------------------- */

/** Whether the image is an image mask, or has no component but opacity. */
CG_EXPORT bool CGImageIsMask(CGImageRef image);
CG_EXPORT size_t CGImageGetWidth(CGImageRef image);
CG_EXPORT size_t CGImageGetHeight(CGImageRef image);
CG_EXPORT size_t CGImageGetBitsPerComponent(CGImageRef image);
CG_EXPORT size_t CGImageGetBitsPerPixel(CGImageRef image);
CG_EXPORT size_t CGImageGetBytesPerRow(CGImageRef image);
/** Of an image mask NULL. */
CG_EXPORT CGColorSpaceRef CGImageGetColorSpace(CGImageRef image);
CG_EXPORT CGImageAlphaInfo CGImageGetAlphaInfo(CGImageRef image);
CG_EXPORT CGBitmapInfo CGImageGetBitmapInfo(CGImageRef image);
CG_EXPORT CGDataProviderRef CGImageGetDataProvider(CGImageRef image);
/** The decode array that the image was given, which lives as long as the image, or NULL. */
CG_EXPORT const CGFloat* CGImageGetDecode(CGImageRef image);
CG_EXPORT bool CGImageGetShouldInterpolate(CGImageRef image);
CG_EXPORT CGColorRenderingIntent CGImageGetRenderingIntent(CGImageRef image);
/** The uniform type identifier of the file that the image was decoded from, or NULL. */
CG_EXPORT CFStringRef CGImageGetUTType(CGImageRef image);

CG_END_DECLS

#if defined(__cplusplus)
/* C++20 deprecates arithmetic between enumerations: these take part in the or as the word's type.
 */
#define CG_BITMAP_INFO_OR(A, B)                                                                    \
    constexpr CGBitmapInfo operator|(A a, B b) {                                                   \
        return static_cast<CGBitmapInfo>(a) | static_cast<CGBitmapInfo>(b);                        \
    }
CG_BITMAP_INFO_OR(CGImageAlphaInfo, CGBitmapInfoFlags)
CG_BITMAP_INFO_OR(CGBitmapInfoFlags, CGImageAlphaInfo)
CG_BITMAP_INFO_OR(CGImageAlphaInfo, CGImageByteOrderInfo)
CG_BITMAP_INFO_OR(CGImageByteOrderInfo, CGImageAlphaInfo)
CG_BITMAP_INFO_OR(CGBitmapInfoFlags, CGImageByteOrderInfo)
CG_BITMAP_INFO_OR(CGImageByteOrderInfo, CGBitmapInfoFlags)
CG_BITMAP_INFO_OR(CGImageAlphaInfo, CGImagePixelFormatInfo)
CG_BITMAP_INFO_OR(CGImagePixelFormatInfo, CGImageAlphaInfo)
CG_BITMAP_INFO_OR(CGBitmapInfoFlags, CGImagePixelFormatInfo)
CG_BITMAP_INFO_OR(CGImagePixelFormatInfo, CGBitmapInfoFlags)
CG_BITMAP_INFO_OR(CGImageByteOrderInfo, CGImagePixelFormatInfo)
CG_BITMAP_INFO_OR(CGImagePixelFormatInfo, CGImageByteOrderInfo)
#undef CG_BITMAP_INFO_OR
#endif
