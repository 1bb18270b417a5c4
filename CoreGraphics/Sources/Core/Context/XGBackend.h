// XGBackend.h: what the front end asks of the backends, and the only way in which it reaches them.
#pragma once

#include "XGBitmapContext.h"
#include "XGContext.h"
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGPath.h>

#include <cstddef>
#include <cstdint>

namespace cg {

// Where a bitmap's pixels lie and how they are made up, checked by whoever fills it in: sizes are
// not 0, and `bytesPerRow × height` does not overflow.
struct Bitmap {
    void* pixels = nullptr;
    std::size_t width = 0;
    std::size_t height = 0;
    std::size_t bitsPerComponent = 0;
    std::size_t bitsPerPixel = 0;
    std::size_t bytesPerRow = 0;
    CGColorSpaceRef space = nullptr;
    CGBitmapInfo info = 0;
    XGNativeBuffer* buffer = nullptr; // Where the pixels are while it is locked, if there is one.
};

// Whether the raster backend can draw into bitmaps made up like this one (its pixels are not looked
// at). Says in the log why not.
bool rasterBackendAccepts(const Bitmap& bitmap);

// A raster backend that draws into `bitmap`, to be handed to the callbacks below as their info and
// freed by their `releaseInfo`. NULL when the format is not accepted or memory runs out.
void* createRasterBackend(const Bitmap& bitmap);
const XGContextCallbacks& rasterBackendCallbacks();

// Before the backend next writes into the bitmap's own pixels it calls `takeBack(owner)`, once;
// when that is false it keeps the pixels as they are, drops the mark, and asks again before the
// next.
void callBeforeNextMark(void* backend, bool (*takeBack)(void* owner), void* owner);
// The bitmap's pixels, as they are, lie at another place from now on.
void movePixels(void* backend, void* pixels);
// The same pixels mean something else from now on: a format of as many bits, which has been
// accepted. False, and nothing has changed, when memory runs out.
bool reinterpretPixels(void* backend, const Bitmap& bitmap);

// CGPathAddLineToPoint, which warns on behalf of `function` when there is no current point.
void addLine(CGMutablePathRef path, const CGAffineTransform* m, CGFloat x, CGFloat y,
             const char* function);

// Whether the path is, to the bit, what CGPathAddEllipseInRect makes of `rect`.
bool isEllipse(CGPathRef path, CGRect rect);

// Computes what is otherwise computed, and kept, when first asked for: from now on threads may read
// the path at once.
void settlePath(CGPathRef path);

// Empties a path but keeps the memory of its points, for the next path to use.
void rewindPath(CGMutablePathRef path);

} // namespace cg
