// PatternCells.cpp: bitmap contexts for a pattern's callback.

#include "Backend/Raster/PatternCells.h"

#include "XGPattern.h"
#include <CoreFoundation/CFRef.h>
#include <CoreGraphics/CGBitmapContext.h>

#include "Backend/Raster/RasterBackend.h"
#include "Core/Context/CGContextRecord.h"
#include "Core/Object/Diagnostics.h"
#include "Core/Paint/PatternSerial.h"
#include "include/core/SkPixelRef.h"

namespace cg {

namespace {

// A pattern being drawn by this thread, and those whose drawing led to it. Patterns may use other
// patterns, also by way of contexts of their own, but not without end.
class PatternScope {
public:
    explicit PatternScope(CGPatternRef pattern)
        : serial_(serialOf(pattern)), outer_(innermost_), depth_(outer_ ? outer_->depth_ + 1 : 1) {
        for (const PatternScope* scope = outer_; scope; scope = scope->outer_)
            isRepeated_ = isRepeated_ || scope->serial_ == serial_;
        innermost_ = this;
    }
    ~PatternScope() { innermost_ = outer_; }
    PatternScope(const PatternScope&) = delete;
    PatternScope& operator=(const PatternScope&) = delete;

    bool mayDraw() const {
        // Each takes a few kilobytes of the stack; drawings nest two or three.
        constexpr int kDeepest = 24;
        return !isRepeated_ && depth_ <= kDeepest;
    }

private:
    static constinit thread_local const PatternScope* innermost_;

    std::uint64_t serial_;
    const PatternScope* outer_;
    int depth_;
    bool isRepeated_ = false;
};

constinit thread_local const PatternScope* PatternScope::innermost_ = nullptr;

// A callback may keep its context: the pixels live as long as either needs them.
cf::Ref<CGContextRef> contextOver(const SkBitmap& bitmap, CGColorSpaceRef space) {
    constexpr CGBitmapInfo kBGRA =
        CGBitmapInfo{kCGImageAlphaPremultipliedFirst} | CGBitmapInfo{kCGBitmapByteOrder32Little};
    SkPixelRef* const pixels = bitmap.pixelRef();
    const auto release = [](void* info, void*) { static_cast<SkPixelRef*>(info)->unref(); };
    auto context = cf::adopt(
        CGBitmapContextCreateWithData(bitmap.getPixels(), static_cast<std::size_t>(bitmap.width()),
                                      static_cast<std::size_t>(bitmap.height()), 8,
                                      bitmap.rowBytes(), space, kBGRA, release, pixels));
    if (context)
        pixels->ref();
    return context;
}

// Colours are those of the bitmap that the pattern is for, where it has three components.
cf::Ref<CGColorSpaceRef> spaceOfCells(CGColorSpaceRef destination) {
    if (CGColorSpaceGetModel(destination) == kCGColorSpaceModelRGB)
        return cf::retain(destination);
    return cf::adopt(CGColorSpaceCreateDeviceRGB());
}

// Rows and columns count from the top, contexts from the bottom.
CGAffineTransform toContext(const SkMatrix& matrix, int height) {
    return {matrix.getScaleX(),     -matrix.getSkewY(),
            matrix.getSkewX(),      -matrix.getScaleY(),
            matrix.getTranslateX(), static_cast<CGFloat>(height) - matrix.getTranslateY()};
}

// The colour that an uncoloured cell is drawn in: its opacity is that of the paint.
cf::Ref<CGColorRef> stencilColor(CGColorRef color) {
    const CGColorSpaceRef base = CGColorSpaceGetBaseColorSpace(CGColorGetColorSpace(color));
    const auto full = cf::adopt(CGColorCreate(base, CGColorGetComponents(color)));
    return cf::adopt(CGColorCreateCopyWithAlpha(full.get(), 1));
}

void drawCell(const PatternInk& ink, CGContextRef context, const SkMatrix& matrix,
              ClipToBounds clip) {
    const CGAffineTransform ctm =
        toContext(matrix, static_cast<int>(CGBitmapContextGetHeight(context)));
    // A pattern used in the cell lies in this pattern's space.
    static_cast<RasterBackend*>(context->info)->setPatternBase(ctm);
    CGContextConcatCTM(context, ctm);
    if (clip == ClipToBounds::Yes)
        CGContextClipToRect(context, XGPatternGetBounds(ink.pattern));
    if (!XGPatternIsColored(ink.pattern)) {
        const auto color = stencilColor(ink.color);
        CGContextSetFillColorWithColor(context, color.get());
        CGContextSetStrokeColorWithColor(context, color.get());
    }
    XGPatternDraw(ink.pattern, context);
}

} // namespace

SkBitmap drawCells(const PatternInk& ink, SkISize size, std::span<const SkMatrix> cells,
                   ClipToBounds clip) {
    const PatternScope scope(ink.pattern);
    if (!scope.mayDraw()) {
        CG_LOG_ERROR("A pattern draws itself, or too many others within each other");
        return {};
    }
    SkBitmap bitmap;
    if (!bitmap.tryAllocPixelsFlags(
            SkImageInfo::Make(size, kBGRA_8888_SkColorType, kPremul_SkAlphaType),
            SkBitmap::kZeroPixels_AllocFlag)) {
        CG_LOG_ERROR("Failed to allocate a pattern's cell of %d × %d", size.width(), size.height());
        return {};
    }
    const auto space = spaceOfCells(ink.destination);
    for (const SkMatrix& matrix : cells) {
        // A fresh one for each cell: what the callback leaves behind is its own affair.
        const auto context = contextOver(bitmap, space.get());
        if (!context)
            return {};
        drawCell(ink, context.get(), matrix, clip);
    }
    return bitmap;
}

} // namespace cg
