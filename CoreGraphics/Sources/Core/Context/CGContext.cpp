// CGContext.cpp: the context object: creation, lifetime, destination.

#include "XGBitmapContext.h"
#include "XGContext.h"
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGContext.h>

#include "Core/Context/CGContextRecord.h"
#include "Core/Object/RuntimeObject.h"
#include "Core/Object/RuntimeOptions.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

bool fontAntialiasingIsDisabled = false;

constexpr cg::OptionTexts kFontAntialiasingOption = {
    .name = "NIMBRA_DISABLE_FONT_ANTIALIASING",
    .title = "Disable Font Antialiasing",
    .category = "Font Settings",
    .description = "Disable antialiasing during font rasterization. This makes it very easy to see "
                   "blurry text - all glyphs should be a solid color without any of the blending "
                   "around the edges.",
};

// The destination goes last: what the states hold may still refer to it.
void finalize(CFTypeRef object) {
    auto* const context = cg::as<CGContextRef>(object);
    if (context->kind == kXGContextKindBitmap)
        XGBitmapContextDispose(context);
    cg::dropStack(std::move(context->state));
    if (context->callbacks.releaseInfo)
        context->callbacks.releaseInfo(context->info);
    context->~CGContext();
}

constexpr CFRuntimeClass kContextClass = {
    .className = "CGContext",
    .copy = cg::copyByRetaining,
    .finalize = finalize,
};

} // namespace

bool cg::disablesFontAntialiasing() {
    return fontAntialiasingIsDisabled;
}

CFTypeID CGContextGetTypeID(void) {
    static const CFTypeID id = [] {
        cg::registerOption(kFontAntialiasingOption, fontAntialiasingIsDisabled);
        return _CFRuntimeRegisterClass(&kContextClass);
    }();
    return id;
}

CGContextRef XGContextCreate(uint32_t kind, const XGContextCallbacks* callbacks, void* info,
                             size_t size) {
    if (!callbacks || callbacks->version != 0)
        return nullptr;
    const std::size_t extra = std::max(size, sizeof(CGContext)) - sizeof(CGContext);
    auto context = cf::adopt(cg::create<CGContext>(CGContextGetTypeID(), extra));
    if (!context)
        return nullptr;
    context.get()->state = cf::adopt(XGGStateCreate());
    if (!context.get()->state)
        return nullptr;

    // Only a finished context has callbacks: giving up before leaves `info` to the caller.
    context.get()->kind = kind;
    context.get()->callbacks = *callbacks;
    context.get()->info = info;
    return context.release();
}

CGContextRef CGContextRetain(CGContextRef context) {
    return cg::retain(context);
}
void CGContextRelease(CGContextRef context) {
    cg::release(context);
}

uint32_t CGContextGetType(CGContextRef context) {
    return context ? context->kind : 0;
}

// ---- Destination

void CGContextFlush(CGContextRef context) {
    if (context && context->callbacks.flush)
        context->callbacks.flush(context->state.get(), context->allowsFlags, context->info);
}

void CGContextSynchronize(CGContextRef context) {
    if (context && context->callbacks.synchronize)
        context->callbacks.synchronize(context->state.get(), context->allowsFlags, context->info);
}

void CGContextSetAllowsAcceleration(CGContextRef context, bool allows) {
    if (context && !allows && context->kind == kXGContextKindBitmap)
        cg::prepare(*context);
}

void XGContextSetScales(CGContextRef context, bool flipped, CGFloat xScale, CGFloat yScale,
                        CGFloat deviceScale) {
    XGGStateSetScales(cg::stateOf(context), CGBitmapContextGetWidth(context),
                      CGBitmapContextGetHeight(context), flipped, xScale, yScale, deviceScale);
}

void XGContextSetSizeInPoints(CGContextRef context, CGFloat width, CGFloat height, CGFloat third) {
    if (!context)
        return;
    context->sizeInPoints[0] = width;
    context->sizeInPoints[1] = height;
    context->sizeInPoints[2] = third;
}

void XGContextGetSizeInPoints(CGContextRef context, CGFloat* width, CGFloat* height,
                              CGFloat* third) {
    CGFloat* const outputs[] = {width, height, third};
    for (std::size_t index = 0; index < std::size(outputs); ++index) {
        if (outputs[index])
            *outputs[index] = context ? context->sizeInPoints[index] : 0;
    }
}
