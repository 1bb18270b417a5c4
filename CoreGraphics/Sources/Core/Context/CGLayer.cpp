// CGLayer.cpp: bitmaps kept for drawing them again.

#include "XGBitmapContext.h"
#include <CoreFoundation/CFRef.h>
#include <CoreFoundation/CFRuntime.h>
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGLayer.h>

#include "Core/Context/CGBitmapContextRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/RuntimeObject.h"
#include "Core/Object/Saturate.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

struct CGLayer {
    CFRuntimeBase base;
    cf::Ref<CGContextRef> context;
    CGSize size = {0, 0};
    cf::Ref<CFDictionaryRef> auxiliaryInfo;
};

namespace {

using cg::BitmapFields;

// A private bit of bitmap infos that layers share with the context they are meant for.
constexpr CGBitmapInfo kRigid = 0x10000000;

bool areEqual(CGLayerRef a, CGLayerRef b) {
    return CFEqual(a->context.get(), b->context.get()) && CGSizeEqualToSize(a->size, b->size) &&
           cf::equalOrBothAbsent(a->auxiliaryInfo.get(), b->auxiliaryInfo.get());
}

// Equal layers share their context.
CFHashCode hash(CGLayerRef layer) {
    return CFHash(layer->context.get());
}

constexpr CFRuntimeClass kLayerClass = {
    .className = "CGLayer",
    .copy = cg::copyByRetaining,
    .finalize = cg::finalize<CGLayer>,
    .equal = cg::equalBy<areEqual>,
    .hash = cg::hashBy<hash>,
};

// The bitmap that a context draws into now. Looking at it must not bring recorded drawing into
// pixels.
const BitmapFields* pixelsOf(CGContextRef context) {
    const BitmapFields* const bitmap = cg::fieldsOf(context);
    const bool hasPixels = bitmap && bitmap->pixels && !(bitmap->info & cg::kRecordsCommands);
    return hasPixels ? bitmap : nullptr;
}

// Rows hold whole pixels, whatever fraction of one the size has.
cf::Ref<CGContextRef> makeContext(const BitmapFields& like, CGSize size) {
    const auto width = cg::saturate<std::size_t>(size.width);
    const auto height = cg::saturate<std::size_t>(size.height);
    const auto bytesPerRow = (cg::CheckedSize(like.bitsPerPixel / 8) * width).value();
    if (!bytesPerRow)
        return nullptr;
    auto context = cf::adopt(cg::createWithPixels({.width = width,
                                                   .height = height,
                                                   .bitsPerComponent = like.bitsPerComponent,
                                                   .bytesPerRow = *bytesPerRow,
                                                   .space = like.space.get(),
                                                   .info = like.info}));
    XGBitmapContextAddFlags(context.get(), like.info & kRigid);
    return context;
}

// What both cover of the upper left; the layer's memory is fresh, and all zero.
void seed(const BitmapFields& layer, const BitmapFields& from) {
    const std::size_t rows = std::min(layer.height, from.height);
    const std::size_t bytes = std::min(layer.width, from.width) * (from.bitsPerPixel / 8);
    for (std::size_t y = 0; y < rows; ++y)
        std::memcpy(static_cast<std::byte*>(layer.pixels) + y * layer.bytesPerRow,
                    static_cast<const std::byte*>(from.pixels) + y * from.bytesPerRow, bytes);
}

} // namespace

CFTypeID CGLayerGetTypeID(void) {
    static const CFTypeID id = _CFRuntimeRegisterClass(&kLayerClass);
    return id;
}

CGLayerRef CGLayerCreateWithContext(CGContextRef context, CGSize size,
                                    CFDictionaryRef auxiliaryInfo) {
    const BitmapFields* const reference = pixelsOf(context);
    if (!reference || (size.width == 0 && size.height == 0))
        return nullptr;
    auto own = makeContext(*reference, size);
    const BitmapFields* const bitmap = pixelsOf(own.get());
    auto* const layer = bitmap ? cg::create<CGLayer>(CGLayerGetTypeID()) : nullptr;
    if (!layer)
        return nullptr;
    seed(*bitmap, *reference);
    layer->context = std::move(own);
    layer->size = size;
    layer->auxiliaryInfo = cf::retain(auxiliaryInfo);
    return layer;
}

CGLayerRef CGLayerRetain(CGLayerRef layer) {
    return cg::retain(layer);
}
void CGLayerRelease(CGLayerRef layer) {
    cg::release(layer);
}

CGContextRef CGLayerGetContext(CGLayerRef layer) {
    return layer ? layer->context.get() : nullptr;
}
CGSize CGLayerGetSize(CGLayerRef layer) {
    return layer ? layer->size : CGSizeZero;
}
