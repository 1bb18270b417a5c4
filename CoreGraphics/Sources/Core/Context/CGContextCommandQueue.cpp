// CGContextCommandQueue.cpp: recorded commands drawn again, by a context.

#include "XGCommandQueue.h"
#include "XGContext.h"
#include "XGDataProvider.h"
#include "XGPath.h"
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGContext.h>

#include "Core/CommandQueue/XGCommandQueueRecord.h"
#include "Core/Context/CGBitmapContextRecord.h"
#include "Core/Context/GlyphSprites.h"
#include "Core/Object/Diagnostics.h"

namespace {

// Without a copy where the canvas is the device's space.
void drawPath(CGContextRef context, CGPathRef path, CGPathDrawingMode mode) {
    if (!context->queue && CGAffineTransformIsIdentity(*cg::combinedCTM(context))) {
        cg::paintPath(*context, path, mode);
        return;
    }
    CGContextAddPath(context, path);
    CGContextDrawPath(context, mode);
}

void strokePath(CGContextRef context, const XGCommand& command) {
    const auto& stroke = command.parameters.stroke;
    CGContextSetStrokeColorWithColor(context, command.color);
    CGContextSetLineWidth(context, stroke.width);
    CGContextSetLineCap(context, static_cast<CGLineCap>(stroke.cap));
    CGContextSetLineJoin(context, static_cast<CGLineJoin>(stroke.join));
    CGContextSetMiterLimit(context, stroke.miterLimit);
    drawPath(context, command.path, kCGPathStroke);
}

void fillPath(CGContextRef context, CGPathRef path) {
    drawPath(context, path, _CGPathIsEvenOddFill(path) ? kCGPathEOFill : kCGPathFill);
}

void drawCommand(CGContextRef context, const XGCommand& command) {
    CGContextSetBlendMode(context, command.blendMode);
    CGContextSetFillColorWithColor(context, command.color);
    switch (command.kind) {
    case kXGCommandFillRects:
        CGContextFillRects(context, XGCommandGetRects(&command), command.itemCount);
        break;
    case kXGCommandDrawSprites:
        cg::drawSprites(context, command);
        break;
    case kXGCommandDrawImage:
        CGContextDrawImage(context, command.bounds, command.image);
        break;
    case kXGCommandFillPath:
        fillPath(context, command.path);
        break;
    case kXGCommandStrokePath:
        strokePath(context, command);
        break;
    case kXGCommandFillCircle:
        CGContextFillEllipseInRect(context, command.bounds);
        break;
    default:
        break;
    }
}

void logFailure(XGCommandQueueRef queue) {
    if (!HostLogIsEnabled(kHostLogError))
        return;
    const auto description = cf::adopt(CFCopyDescription(queue));
    char text[256] = "";
    if (description)
        CFStringGetCString(description.get(), text, sizeof text, kCFStringEncodingUTF8);
    HostLog(kHostLogError, "CommandQueue", "XGCommandQueueCreateDataProvider",
            "CommandQueue: Failed to create bitmap context for %s", text);
}

CGContextRef contextOf(void* info) {
    return static_cast<CGContextRef>(info);
}

constexpr XGDataProviderDirectCallbacks kPixelCallbacks = {
    .version = 0,
    .getBytePointer = [](void* info) -> const void* {
        return CGBitmapContextGetData(contextOf(info));
    },
    .releaseInfo = [](void* info) { CGContextRelease(contextOf(info)); },
};

} // namespace

void XGContextDrawCommandQueue(CGContextRef context, XGCommandQueueRef queue) {
    if (!context || !queue)
        return;
    CGContextSaveGState(context);
    CGContextBeginPath(context);
    for (const auto& command : queue->commands.all())
        drawCommand(context, *command);
    CGContextRestoreGState(context);
}

CGDataProviderRef XGCommandQueueCreateDataProvider(XGCommandQueueRef queue) {
    if (!queue)
        return nullptr;
    auto context = cf::adopt(cg::createWithPixels({.width = queue->width,
                                                   .height = queue->height,
                                                   .bitsPerComponent = queue->bitsPerComponent,
                                                   .space = queue->space.get(),
                                                   .info = queue->bitmapInfo}));
    if (!context) {
        logFailure(queue);
        return nullptr;
    }
    XGContextDrawCommandQueue(context.get(), queue);
    cg::closeQueue(queue);
    const size_t size =
        CGBitmapContextGetBytesPerRow(context.get()) * CGBitmapContextGetHeight(context.get());
    const CGDataProviderRef provider =
        XGDataProviderCreateDirect(context.get(), static_cast<off_t>(size), &kPixelCallbacks);
    if (provider)
        CGContextRetain(context.get()); // The provider's, released by its callback.
    return provider;
}
