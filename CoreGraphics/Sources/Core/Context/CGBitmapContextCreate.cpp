// CGBitmapContextCreate.cpp: new contexts of bitmaps.

#include "XGBitmapContext.h"
#include "XGGState.h"
#include <CoreFoundation/CFData.h>
#include <CoreGraphics/CGBitmapContext.h>

#include "Core/Context/CGBitmapContextRecord.h"
#include "Core/Context/NativeBuffer.h"
#include "Core/Context/XGBackend.h"
#include "Core/Image/CGImageRecord.h"
#include "Core/Object/CheckedSize.h"
#include "Core/Object/Diagnostics.h"

#include <cstring>
#include <new>
#include <utility>

using cg::BitmapContext;
using cg::BitmapFields;
using cg::fieldsOf;

namespace {

// ---- Creation

struct PixelSource {
    void* data = nullptr;
    XGBitmapContextAllocateCallback allocate = nullptr;
    CGBitmapContextReleaseDataCallback release = nullptr;
    void* info = nullptr;
    // What fresh pixels are a copy of.
    const std::byte* original = nullptr;
    // Whether drawing may be recorded as long as nobody needs pixels.
    bool mayRecord = false;
};

std::size_t componentsPerPixel(CGColorSpaceRef space, CGImageAlphaInfo alpha) {
    if (alpha == kCGImageAlphaOnly)
        return 1;
    return CGColorSpaceGetNumberOfComponents(space) + (alpha == kCGImageAlphaNone ? 0 : 1);
}

// 0 when the numbers overflow.
std::size_t bitsPerPixel(CGColorSpaceRef space, CGImageAlphaInfo alpha,
                         std::size_t bitsPerComponent) {
    constexpr std::size_t kBitsOf555 = 16;
    if (bitsPerComponent == 5)
        return kBitsOf555;
    return (cg::CheckedSize(componentsPerPixel(space, alpha)) * bitsPerComponent)
        .value()
        .value_or(0);
}

std::optional<std::size_t> packedBytesPerRow(std::size_t bitsPerPixel, std::size_t width) {
    const auto bits = (cg::CheckedSize(bitsPerPixel) * width + 7).value();
    return bits ? std::optional(*bits / 8) : std::nullopt;
}

// The pixels' owner: memory of our own is zeroed, the caller's is wrapped.
cf::Ref<CFDataRef> obtainPixels(const cg::Bitmap& bitmap, const PixelSource& source, void* given) {
    if (given)
        return cf::adopt(CFDataCreateWithBytesNoCopy(
            nullptr, static_cast<const UInt8*>(given),
            static_cast<CFIndex>(bitmap.bytesPerRow * bitmap.height), kCFAllocatorNull));
    if (source.data || source.allocate)
        return nullptr;
    return cg::allocatePixels(bitmap);
}

// A context with the bitmap's backend, which the context frees from then on.
CGContextRef makeContext(const cg::Bitmap& bitmap) {
    void* const backend = cg::createRasterBackend(bitmap);
    if (!backend)
        return nullptr;
    const XGContextCallbacks& callbacks = cg::rasterBackendCallbacks();
    const CGContextRef context = cg::makeBitmapContext(callbacks, backend);
    if (!context)
        callbacks.releaseInfo(backend);
    return context;
}

} // namespace

// ---- For the files of bitmap contexts

cf::Ref<CFDataRef> cg::allocatePixels(const Bitmap& bitmap) {
    const auto size = static_cast<CFIndex>(bitmap.bytesPerRow * bitmap.height);
    const auto data = cf::adopt(CFDataCreateMutable(nullptr, 0));
    if (!data)
        return nullptr;
    CFDataSetLength(data.get(), size);
    const bool isWhole = CFDataGetLength(data.get()) == size;
    return isWhole ? cf::retain(static_cast<CFDataRef>(data.get())) : nullptr;
}

CGContextRef cg::makeBitmapContext(const XGContextCallbacks& callbacks, void* backend) {
    const CGContextRef context =
        XGContextCreate(kXGContextKindBitmap, &callbacks, backend, sizeof(BitmapContext));
    if (!context)
        return nullptr;
    new (&reinterpret_cast<BitmapContext*>(context)->bitmap) BitmapFields{};
    context->holdsBitmap = true;
    return context;
}

void cg::setUpBitmapContext(CGContextRef context, const Bitmap& bitmap, cf::Ref<CFDataRef> data) {
    *fieldsOf(context) = {.width = bitmap.width,
                          .height = bitmap.height,
                          .bitsPerComponent = bitmap.bitsPerComponent,
                          .bytesPerRow = bitmap.bytesPerRow,
                          .bitsPerPixel = bitmap.bitsPerPixel,
                          .pixels = bitmap.pixels,
                          .space = cf::retain(bitmap.space),
                          .data = std::move(data),
                          .info = bitmap.info,
                          .buffer = bitmap.buffer};
    CGContextSetFillColorSpace(context, bitmap.space);
    CGContextSetStrokeColorSpace(context, bitmap.space);
    CGContextClipToRect(context, CGRectMake(0, 0, static_cast<CGFloat>(bitmap.width),
                                            static_cast<CGFloat>(bitmap.height)));
}

namespace {

CGContextRef createOver(cg::Bitmap bitmap, const PixelSource& source) {
    const auto size = (cg::CheckedSize(bitmap.bytesPerRow) * bitmap.height).value();
    if (!size || *size > static_cast<std::size_t>(LONG_MAX)) {
        cg::logFailedAllocation(nullptr, bitmap);
        return nullptr;
    }
    if (source.mayRecord && !source.data && !source.allocate) {
        if (const CGContextRef recording = cg::createRecording(bitmap))
            return recording;
    }
    void* const allocated =
        !source.data && source.allocate ? source.allocate(source.info, *size) : nullptr;
    void* const given = source.data ? source.data : allocated;

    const auto data = obtainPixels(bitmap, source, given);
    bitmap.pixels =
        given || !data ? given : CFDataGetMutableBytePtr(const_cast<CFMutableDataRef>(data.get()));
    if (bitmap.pixels && source.original)
        std::memcpy(bitmap.pixels, source.original, *size);
    auto made = cf::adopt(data ? makeContext(bitmap) : nullptr);
    if (made)
        cg::setUpBitmapContext(made.get(), bitmap, data);
    // The clip is the whole bitmap's: a context without one had no memory for it.
    if (!made || !XGGStateGetClipping(made.get()->state.get())) {
        made = nullptr;
        cg::logFailedAllocation(nullptr, bitmap);
        if (allocated && source.release)
            source.release(source.info, allocated);
        return nullptr;
    }
    // Only now: a context that is given up leaves the caller's memory alone.
    BitmapFields& fields = *fieldsOf(made.get());
    fields.release = given ? source.release : nullptr;
    fields.releaseInfo = source.info;
    fields.isReachable = given;
    return made.release();
}

bool isAlphaSupported(CGBitmapInfo info) {
    const CGImageAlphaInfo alpha = cg::alphaInfo(info);
    return alpha <= kCGImageAlphaOnly && alpha != kCGImageAlphaLast && alpha != kCGImageAlphaFirst;
}

// Every message of creation carries this function's name.
CGContextRef _CGBitmapContextCreateInternal(cg::Bitmap bitmap, const PixelSource& source) {
    if (bitmap.width == 0 || bitmap.height == 0 || bitmap.bitsPerComponent == 0)
        return nullptr;
    bitmap.info &= ~cg::kRecordsCommands;
    const CGImageAlphaInfo alpha = cg::alphaInfo(bitmap.info);
    if (!isAlphaSupported(bitmap.info)) {
        if (alpha <= kCGImageAlphaOnly)
            CG_LOG_ERROR("Unsupported alpha format: %s",
                         alpha == kCGImageAlphaLast ? "kCGImageAlphaLast" : "kCGImageAlphaFirst");
        return nullptr;
    }

    bitmap.bitsPerPixel = bitsPerPixel(bitmap.space, alpha, bitmap.bitsPerComponent);
    const auto packed = packedBytesPerRow(bitmap.bitsPerPixel, bitmap.width);
    if (!packed || (bitmap.bytesPerRow != 0 && bitmap.bytesPerRow < *packed)) {
        CG_LOG_ERROR("Unable to create context: invalid arguments (bytesPerRow=%zu, "
                     "bitsPerPixel=%zu, width=%zu)",
                     bitmap.bytesPerRow, bitmap.bitsPerPixel, bitmap.width);
        return nullptr;
    }
    if (bitmap.bytesPerRow == 0)
        bitmap.bytesPerRow = *packed;
    if (!cg::rasterBackendAccepts(bitmap)) {
        CG_LOG_ERROR("Unable to validate context with arguments (colorpace=%@ bitmapInfo=%x "
                     "bitsPerPixel=%zu bitsPerComponent=%zu)",
                     static_cast<const void*>(bitmap.space), static_cast<unsigned>(bitmap.info),
                     bitmap.bitsPerPixel, bitmap.bitsPerComponent);
        return nullptr;
    }
    return createOver(bitmap, source);
}

} // namespace

CGContextRef _CGBitmapContextCreateWithDataAllocator(void* data, size_t width, size_t height,
                                                     size_t bitsPerComponent, size_t bytesPerRow,
                                                     CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                                                     XGBitmapContextAllocateCallback allocate,
                                                     CGBitmapContextReleaseDataCallback release,
                                                     void* info) {
    return _CGBitmapContextCreateInternal(
        {.width = width,
         .height = height,
         .bitsPerComponent = bitsPerComponent,
         .bytesPerRow = bytesPerRow,
         .space = space,
         .info = bitmapInfo},
        {.data = data, .allocate = allocate, .release = release, .info = info, .mayRecord = true});
}

CGContextRef cg::createWithPixels(Bitmap bitmap) {
    return _CGBitmapContextCreateInternal(bitmap, {});
}

CGContextRef CGBitmapContextCreateWithData(void* data, size_t width, size_t height,
                                           size_t bitsPerComponent, size_t bytesPerRow,
                                           CGColorSpaceRef space, CGBitmapInfo bitmapInfo,
                                           CGBitmapContextReleaseDataCallback release,
                                           void* releaseInfo) {
    return _CGBitmapContextCreateWithDataAllocator(data, width, height, bitsPerComponent,
                                                   bytesPerRow, space, bitmapInfo, nullptr, release,
                                                   releaseInfo);
}

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bitsPerComponent,
                                   size_t bytesPerRow, CGColorSpaceRef space,
                                   CGBitmapInfo bitmapInfo) {
    return CGBitmapContextCreateWithData(data, width, height, bitsPerComponent, bytesPerRow, space,
                                         bitmapInfo, nullptr, nullptr);
}

// ---- Native buffers and clones

CGContextRef XGBitmapContextCreateWithNativeBuffer(XGNativeBuffer* buffer, size_t bitsPerComponent,
                                                   CGColorSpaceRef space, CGBitmapInfo bitmapInfo) {
    void* const pixels = buffer ? cg::lockNativeBuffer(*buffer) : nullptr;
    if (!pixels)
        return nullptr;
    const CGContextRef context =
        _CGBitmapContextCreateInternal({.width = buffer->width,
                                        .height = buffer->height,
                                        .bitsPerComponent = bitsPerComponent,
                                        .bytesPerRow = buffer->bytesPerRow,
                                        .space = space,
                                        .info = bitmapInfo,
                                        .buffer = buffer},
                                       {.data = pixels});
    cg::unlockNativeBuffer(*buffer);
    return context;
}

CGContextRef XGBitmapContextCreateClone(CGContextRef context) {
    const BitmapFields* const fields = fieldsOf(context);
    if (!fields)
        return nullptr;
    // What is only recorded is drawn first.
    if (!cg::bringIntoPixels(context))
        return nullptr;
    const cg::LockedPixels pixels(*fields);
    if (!pixels.get())
        return nullptr;
    cg::Bitmap bitmap = cg::describe(*fields);
    bitmap.buffer = nullptr;
    return createOver(bitmap, {.original = pixels.get()});
}
