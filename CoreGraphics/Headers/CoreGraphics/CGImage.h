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
CG_ENUM(uint32_t, CGImageAlphaInfo) {
    kCGImageAlphaNone = 0,
    kCGImageAlphaPremultipliedLast = 1,
    kCGImageAlphaPremultipliedFirst = 2,
    kCGImageAlphaLast = 3,
    kCGImageAlphaFirst = 4,
    kCGImageAlphaNoneSkipLast = 5, /**< As many bits as an opacity would take, without meaning. */
    kCGImageAlphaNoneSkipFirst = 6,
    kCGImageAlphaOnly = 7          /**< Opacity, and no colour. */
};

/** In which order the bytes of a 16-bit or 32-bit unit lie in memory. */
CG_ENUM(uint32_t, CGImageByteOrderInfo) {
    kCGImageByteOrderMask = 0x7000,
    kCGImageByteOrderDefault = 0x0000,
    kCGImageByteOrder16Little = 0x1000,
    kCGImageByteOrder32Little = 0x2000,
    kCGImageByteOrder16Big = 0x3000,
    kCGImageByteOrder32Big = 0x4000
};

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
#undef CG_BITMAP_INFO_OR
#endif
